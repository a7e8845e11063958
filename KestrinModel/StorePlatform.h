// A platform of the App Store, named as App Store Connect names it ("IOS", "MAC_OS", …).
#pragma once

#include <array>
#include <string>

#include "KestrinCore/UnicodeText.h"

namespace kestrin {

// Any name is taken as it stands: a platform that this version doesn't know is still a platform. Equal and ordered
// as text.
struct StorePlatform {
    std::string rawValue;

    // The name of the platform's folder in a package: "iOS", "macOS", "tvOS" or "visionOS"; of any other platform
    // the raw value itself.
    const std::string& folderName() const;

    // The platform whose folder has this name.
    static StorePlatform fromFolderName(std::string_view name);

    static const StorePlatform iOS, macOS, tvOS, visionOS;
    static const std::array<StorePlatform, 4> editable;  // those four, in that order

    bool operator==(const StorePlatform& other) const { return text::equal(rawValue, other.rawValue); }
    std::weak_ordering operator<=>(const StorePlatform& other) const {
        return text::compare(rawValue, other.rawValue);
    }
};

// Defined here so that they are there before any constant that is made of them, in whatever file it stands.
inline const StorePlatform StorePlatform::iOS{"IOS"};
inline const StorePlatform StorePlatform::macOS{"MAC_OS"};
inline const StorePlatform StorePlatform::tvOS{"TV_OS"};
inline const StorePlatform StorePlatform::visionOS{"VISION_OS"};
inline const std::array<StorePlatform, 4> StorePlatform::editable = {iOS, macOS, tvOS, visionOS};

}  // namespace kestrin
