#include "KestrinCore/FileError.h"

#include <cerrno>

#include "KestrinCore/Message.h"
#include "KestrinCore/UnicodeText.h"

namespace kestrin {

FileError FileError::fromErrno(Operation failed, std::filesystem::path where) {
    return {failed, std::move(where), std::error_code(errno, std::generic_category())};
}

std::string FileError::errorDescription() const {
    const auto shownPath = text::repaired(path.native());
    const auto why = reason.message();
    const auto say = [&](const char* key, std::string_view english) {
        return message::localized(key, english, {{"path", shownPath}, {"reason", why}});
    };
    switch (operation) {
        case Operation::read:
            return say("fileErrorRead", "Couldn’t read “{path}”: {reason}.");
        case Operation::write:
            return say("fileErrorWrite", "Couldn’t write “{path}”: {reason}.");
        case Operation::create:
            return say("fileErrorCreate", "Couldn’t create “{path}”: {reason}.");
        case Operation::remove:
            return say("fileErrorRemove", "Couldn’t remove “{path}”: {reason}.");
        case Operation::list:
            return say("fileErrorList", "Couldn’t list the folder “{path}”: {reason}.");
    }
    return {};
}

std::string FileTooLargeError::errorDescription() const {
    return message::localized("fileErrorTooLarge", "“{path}” is too large: at most {limit} bytes are read.",
                              {{"path", text::repaired(path.native())}, {"limit", std::to_string(limit)}});
}

}  // namespace kestrin
