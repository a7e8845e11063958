#include "KestrinModel/PackageNameError.h"

#include "KestrinCore/Message.h"
#include "KestrinCore/UnicodeText.h"

namespace kestrin {
namespace {

// A NUL would end the message for whatever prints it.
std::string shown(std::string_view name) {
    std::string result;
    for (const char c : text::repaired(name)) {
        if (c == '\0') {
            result += "\xEF\xBF\xBD";
        } else {
            result += c;
        }
    }
    return result;
}

std::string say(const char* key, std::string_view english, const std::string& name) {
    return message::localized(key, english, {{"name", shown(name)}});
}

}  // namespace

std::string PackageNameError::errorDescription() const {
    return std::visit(
        Overloaded{
            [](const NotAName& error) {
                return say("packageNameErrorNotAName", "“{name}” can’t be the name of a file or folder.",
                           error.name);
            },
            [](const ReservedName& error) {
                return say("packageNameErrorReservedName",
                           "A platform can’t be named “{name}”: the project needs that name "
                           "for itself.",
                           error.name);
            },
            [](const SharedFolder& error) {
                return say("packageNameErrorSharedFolder",
                           "Two platforms of this project would share the folder “{name}”.", error.name);
            },
            [](const NotAPath& error) {
                return say("packageNameErrorNotAPath",
                           "“{name}” isn’t the path of a file inside the project.", error.path);
            },
            [](const UnusableOnDisk& error) {
                return say("packageNameErrorUnusableOnDisk",
                           "The name of “{name}” in this project can’t be used. Rename it.", error.path);
            },
        },
        kind);
}

}  // namespace kestrin
