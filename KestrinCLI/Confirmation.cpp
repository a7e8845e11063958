#include "KestrinCLI/Confirmation.h"

#include "KestrinCLI/Failure.h"
#include "KestrinCore/UnicodeText.h"

namespace kestrin::Confirmation {
namespace {

constexpr std::string_view kChoice = " [y/N] ";

std::string asking(std::string_view question) {
    return std::string(question).append(kChoice);
}

// A "y" that carries a combining mark is another letter.
bool beginsWithY(std::string_view line) {
    if (line.empty() || (line[0] != 'y' && line[0] != 'Y')) return false;
    const auto rest = line.substr(1);
    return text::isASCII(rest) || text::graphemeCount(line) == 1 + text::graphemeCount(rest);
}

}  // namespace

std::string pushQuestion() {
    return asking("\nPush to App Store Connect?");
}

std::string createVersionQuestion(const StorePlatform& platform, std::string_view version) {
    return asking("Create " + platform.rawValue + " version " + std::string(version) +
                  " in App Store Connect?");
}

std::string submitVersionQuestion() {
    return asking("\nSend this version to App Review?");
}

std::string submitItemQuestion(std::string_view name) {
    return asking("Send “" + std::string(name) + "” to App Review?");
}

std::string startTestQuestion(std::string_view name) {
    return asking("Start the test “" + std::string(name) + "”? People will start seeing its treatments.");
}

bool isGiven(std::string_view question, const Arguments& args, Console& console) {
    if (hasFlag("--yes", args)) return true;
    console.write(question);
    const auto answer = console.readLine();
    return answer && beginsWithY(*answer);
}

void require(std::string_view question, std::string_view refusal, const Arguments& args, Console& console) {
    if (!isGiven(question, args, console)) fail(std::string(refusal));
}

}  // namespace kestrin::Confirmation
