// What a build says of itself.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kestrin {

struct BuildArchiveInfo {
    enum class Kind { ipa, pkg };

    Kind kind = Kind::ipa;
    std::optional<std::string> bundleID = std::nullopt;
    std::optional<std::string> shortVersion = std::nullopt;  // CFBundleShortVersionString
    std::optional<std::string> buildVersion = std::nullopt;  // CFBundleVersion
    std::string platform = {};  // as App Store Connect spells it: "IOS", "MAC_OS", "TV_OS", "VISION_OS"
    std::optional<bool> usesNonExemptEncryption = std::nullopt;
    std::int64_t fileSize = 0;  // in bytes

    // A copy with the versions that are given here in place of its own.
    BuildArchiveInfo with(const std::optional<std::string>& otherShortVersion,
                          const std::optional<std::string>& otherBuildVersion) const;

    bool operator==(const BuildArchiveInfo&) const = default;
};

}  // namespace kestrin
