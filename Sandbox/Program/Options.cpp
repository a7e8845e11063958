#include "Sandbox/Program/Options.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <functional>
#include <limits>

namespace kestrin::sandbox {
namespace {

struct NamedSeed {
    const char* name;
    void (*seed)(State&);
};

constexpr NamedSeed kSeeds[] = {{"everyday", seeds::everyday},
                                {"new-app", seeds::newApp},
                                {"empty", seeds::empty},
                                {"large", seeds::large}};

const NamedSeed* findSeed(const std::string& name) {
    const auto found = std::find_if(std::begin(kSeeds), std::end(kSeeds),
                                    [&](const NamedSeed& each) { return each.name == name; });
    return found == std::end(kSeeds) ? nullptr : &*found;
}

template <class Number>
Number numberOf(const std::string& name, const std::string& text, Number least = 0,
                Number most = std::numeric_limits<Number>::max()) {
    Number value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool isNumber = error == std::errc{} && end == text.data() + text.size();
    if (isNumber && value >= least && value <= most) return value;
    throw UsageError(fmt::format("{}: \"{}\" is no number that it takes", name, text));
}

void readSeed(Options& options, const std::string& name) {
    if (findSeed(name) == nullptr) throw UsageError(fmt::format("--seed: there is no seed \"{}\"", name));
    options.seed = name;
}

void readFault(Options& options, const std::string& line) {
    try {
        Fault::parse(line);
    } catch (const std::invalid_argument& error) {
        throw UsageError(error.what());
    }
    options.faults.push_back(line);
}

void readLatency(Options& options, const std::string& text) {
    readFault(options, fmt::format("*=latency:{}", numberOf<unsigned>("--latency", text)));
}

struct Option {
    const char* name;
    const char* value;  // "" for an option that has none
    const char* meaning;
    std::function<void(Options&, const std::string&)> read;
};

const std::vector<Option>& allOptions() {
    static const std::vector<Option> options{
        {"--port", "N", "listen there; otherwise on any free port",
         [](Options& o, const std::string& v) { o.port = numberOf("--port", v, 1, 65535); }},
        {"--seed", "NAME", "begin with everyday (default), new-app, empty or large", readSeed},
        {"--load", "FILE", "begin with a state that was saved, in place of a seed",
         [](Options& o, const std::string& v) { o.stateToLoad = v; }},
        {"--env-file", "FILE", "write the environment of the client there once requests are answered",
         [](Options& o, const std::string& v) { o.envFile = v; }},
        {"--state-file", "FILE", "save the state there at the end and at SIGUSR1",
         [](Options& o, const std::string& v) { o.stateFile = v; }},
        {"--log-file", "FILE", "write a line there for every request: METHOD PATH STATUS",
         [](Options& o, const std::string& v) { o.logFile = v; }},
        {"--latency", "MS", "answer every request that much later", readLatency},
        {"--fault", "RULE", "let something go wrong; may be given several times", readFault},
        {"--requests-per-hour", "N", "the rate limit of the key (3600)",
         [](Options& o, const std::string& v) {
             o.settings.requestsPerHour = numberOf<std::size_t>("--requests-per-hour", v);
         }},
        {"--requests-made", "N", "how much of the hour is used up at the start",
         [](Options& o, const std::string& v) {
             o.settings.requestsMade = numberOf<std::size_t>("--requests-made", v, 0, 1'000'000);
         }},
        {"--page-size", "N", "no page holds more, whatever is asked for (200)",
         [](Options& o, const std::string& v) {
             o.settings.largestPage = numberOf<std::size_t>("--page-size", v, 1);
         }},
        {"--processing-reads", "N", "how often processing is seen before it ends (2)",
         [](Options& o, const std::string& v) {
             o.settings.processingReads = numberOf<int>("--processing-reads", v);
         }},
        {"--part-size", "BYTES", "of an upload's parts (5242880)",
         [](Options& o, const std::string& v) {
             o.settings.uploadPartSize = numberOf<std::uint64_t>("--part-size", v, 1);
         }},
        {"--any-media", "", "take pictures and films of any size",
         [](Options& o, const std::string&) { o.settings.inspectsMedia = false; }},
        {"--linked-locales", "", "a new language of the app info appears in the versions too",
         [](Options& o, const std::string&) { o.settings.linksLocales = true; }},
        {"--private-key", "FILE", "the key pair of this .p8 file in place of a new one",
         [](Options& o, const std::string& v) { o.privateKey = v; }},
        {"--key-id", "ID", "the name of the key", [](Options& o, const std::string& v) { o.keyID = v; }},
        {"--issuer-id", "ID", "of a team key; \"\" makes it an individual one",
         [](Options& o, const std::string& v) { o.issuerID = v; }},
        {"--reads-only", "", "the key may not write",
         [](Options& o, const std::string&) { o.readsOnly = true; }},
        {"--help", "", "print this", [](Options& o, const std::string&) { o.showsHelp = true; }}};
    return options;
}

const Option& findOption(const std::string& name) {
    for (const auto& option : allOptions()) {
        if (option.name == name) return option;
    }
    throw UsageError(fmt::format("there is no option \"{}\"", name));
}

}  // namespace

Options parseOptions(const std::vector<std::string>& words) {
    Options options;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i] == "--") {
            options.command.assign(words.begin() + static_cast<std::ptrdiff_t>(i) + 1, words.end());
            if (options.command.empty()) throw UsageError("there is no command behind \"--\"");
            break;
        }
        const auto equals = words[i].find('=');
        const auto& option = findOption(words[i].substr(0, equals));
        const bool takesValue = *option.value != '\0';
        std::string value;
        if (equals != std::string::npos) {
            if (!takesValue) throw UsageError(fmt::format("{} takes no value", option.name));
            value = words[i].substr(equals + 1);
        } else if (takesValue) {
            if (i + 1 == words.size()) throw UsageError(fmt::format("{} wants a value", option.name));
            value = words[++i];
        }
        option.read(options, value);
    }
    return options;
}

std::string usageText() {
    std::string text =
        "kestrin-sandbox [OPTIONS] [-- COMMAND …]\n"
        "A local App Store Connect on this machine, until SIGINT or SIGTERM or until COMMAND, which gets "
        "the\n"
        "environment of a client, ends. Its addresses below /sandbox/ look at it and change it.\n\n";
    for (const auto& option : allOptions()) {
        text += fmt::format("  {:<24}{}\n", fmt::format("{} {}", option.name, option.value), option.meaning);
    }
    return text;
}

Seed seedOf(const Options& options) {
    if (options.stateToLoad) return seeds::fromFile(*options.stateToLoad);
    return findSeed(options.seed)->seed;
}

}  // namespace kestrin::sandbox
