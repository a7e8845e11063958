// Texts for the user, looked up by key in a message catalogue.
//
// The catalogue is GNU gettext's (https://www.gnu.org/software/gettext/manual/), domain "kestrin"; the message id
// is the key. Where no catalogue has the key, the English given with it is shown, so that a program without
// catalogues speaks plain English.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace kestrin::message {

// A name in braces and the text that takes its place: {"path", "App/info.json"} fills "{path}".
using Argument = std::pair<std::string_view, std::string_view>;

// The text of `key`, with each argument set in once, from left to right over the template; text that an argument
// brings in is never read as a template again. A name that no argument has stays as it stands.
std::string localized(const char* key, std::string_view english,
                      std::initializer_list<Argument> arguments = {});

// Makes the user's language take effect (LC_MESSAGES of the environment). Called once, by main; character
// classes and number formats of the C library stay those of the "C" locale.
void useEnvironmentLanguage();

}  // namespace kestrin::message
