#include "KestrinModel/FastlaneExportError.h"

#include "KestrinCore/Message.h"
#include "KestrinCore/UnicodeText.h"

namespace kestrin {

std::string FastlaneExportError::errorDescription() const {
    return std::visit(
        Overloaded{
            [](const UnusableLocale& e) {
                return message::localized(
                    "fastlaneExportErrorUnusableLocale",
                    "This project has a locale named “{locale}”, which can’t be the name of a folder. "
                    "Nothing was exported.",
                    {{"locale", text::repaired(e.locale)}});
            },
            [](const LinkInTheWay& e) {
                return message::localized("fastlaneExportErrorLinkInTheWay",
                                          "“{path}” is a symbolic link, which may lead to another place. "
                                          "Remove it or choose another folder. Nothing was exported.",
                                          {{"path", text::repaired(e.folder.native())}});
            },
        },
        kind);
}

}  // namespace kestrin
