// Why a project can't go out as a fastlane deliver folder, found before anything is written.
#pragma once

#include <filesystem>
#include <string>
#include <variant>

#include "KestrinCore/Error.h"

namespace kestrin {

class FastlaneExportError : public Error {
 public:
    // A locale of the project that can't be a folder's name ("", "..", "a/b"), and so could lead elsewhere.
    struct UnusableLocale {
        std::string locale;
        bool operator==(const UnusableLocale&) const = default;
    };
    // A folder below the target is a symbolic link, behind which the export would write.
    struct LinkInTheWay {
        std::filesystem::path folder;
        bool operator==(const LinkInTheWay&) const = default;
    };
    using Kind = std::variant<UnusableLocale, LinkInTheWay>;

    explicit FastlaneExportError(Kind what) : kind(std::move(what)) {}
    std::string errorDescription() const override;

    Kind kind;
};

}  // namespace kestrin
