// Asking before something is sent to App Store Connect.
#pragma once

#include <string>
#include <string_view>

#include "KestrinCLI/CommandLine.h"
#include "KestrinCLI/Console.h"

namespace kestrin::Confirmation {

// The questions, as they are printed: with a leading line feed where one belongs to the question, and with the
// blank that stands between it and the answer.
std::string pushQuestion();
std::string createVersionQuestion(const StorePlatform& platform, std::string_view version);
std::string submitVersionQuestion();
std::string submitItemQuestion(std::string_view name);  // a custom product page or a test
std::string startTestQuestion(std::string_view name);

// Whether the user agrees. With `--yes` among the arguments nothing is asked. Else the question is printed and one
// line is read: yes is whatever begins with a "y" of either case; the end of input is a no.
bool isGiven(std::string_view question, const Arguments& args, Console& console);

// Ends the command with `refusal` unless the user agrees.
void require(std::string_view question, std::string_view refusal, const Arguments& args, Console& console);

// The refusals. That of a push isn't a failure: it is printed as a result, and the status is 1.
inline constexpr std::string_view nothingPushed = "Nothing pushed.";
inline constexpr std::string_view nothingCreated = "nothing created";
inline constexpr std::string_view nothingSubmitted = "nothing submitted";
inline constexpr std::string_view nothingSent = "nothing sent";

}  // namespace kestrin::Confirmation
