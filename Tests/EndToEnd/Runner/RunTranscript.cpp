// run-transcript [--update] --tools DIR --fixtures DIR --program NAME=FILE … TRANSCRIPT …
//
// Plays each transcript on a stage of its own. Status 0: all promises were kept. Status 1: not; standard output has
// the diff of each transcript that differs. With --update the file gets what was really shown; read the
// difference before you commit it.
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <span>
#include <stdexcept>
#include <string>

#include "Tests/EndToEnd/Runner/Stage.h"

namespace kestrin::endtoend {
namespace {

struct Options {
    bool update = false;
    Stage::Props props;
    std::vector<std::string> transcripts;
};

Options optionsIn(std::span<char*> words) {
    Options options;
    std::size_t next = 0;
    const auto value = [&](const std::string& name) -> std::string {
        if (next == words.size()) throw std::invalid_argument(name + " needs a value");
        return words[next++];
    };
    while (next < words.size()) {
        const std::string word = words[next++];
        if (word == "--update") {
            options.update = true;
        } else if (word == "--tools") {
            options.props.tools = value(word);
        } else if (word == "--fixtures") {
            options.props.fixtures = value(word);
        } else if (word == "--program") {
            const auto program = value(word);
            const auto equals = program.find('=');
            if (equals == std::string::npos) throw std::invalid_argument("--program NAME=FILE");
            options.props.programs[program.substr(0, equals)] = program.substr(equals + 1);
        } else {
            options.transcripts.push_back(word);
        }
    }
    if (options.transcripts.empty()) throw std::invalid_argument("no transcript given");
    return options;
}

std::string contentOf(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    if (!file) throw std::runtime_error("can't read it");
    return {std::istreambuf_iterator<char>(file), {}};
}

void append(std::string& text, const std::vector<std::string>& lines) {
    for (const auto& line : lines) text.append(line) += '\n';
}

bool isKept(const std::string& name, const Options& options) {
    const auto transcript = parseTranscript(contentOf(name));
    Stage stage(options.props);
    bool isEqual = true;
    std::string diff, updated;
    for (const auto& exchange : transcript.exchanges) {
        const auto comparison = compare(exchange, stage.play(exchange));
        isEqual = isEqual && comparison.isEqual;
        diff += comparison.diff;
        append(updated, exchange.head);
        append(updated, comparison.updated);
    }
    append(updated, transcript.tail);
    if (!isEqual) std::cout << "Broken: " << transcript.promise << '\n' << name << '\n' << diff << '\n';
    if (!isEqual && options.update) std::ofstream(name, std::ios::binary) << updated;
    return isEqual;
}

bool isKeptOrReported(const std::string& name, const Options& options) {
    try {
        return isKept(name, options);
    } catch (const std::exception& error) {
        std::cout << name << ": " << error.what() << '\n';
        return false;
    }
}

}  // namespace
}  // namespace kestrin::endtoend

int main(int argc, char* argv[]) {
    try {
        const auto options = kestrin::endtoend::optionsIn({argv + 1, static_cast<std::size_t>(argc - 1)});
        bool allKept = true;
        for (const auto& name : options.transcripts) {
            allKept = kestrin::endtoend::isKeptOrReported(name, options) && allKept;
        }
        return allKept ? 0 : 1;
    } catch (const std::exception& error) {
        std::cerr << "run-transcript: " << error.what() << '\n';
        return 2;
    }
}
