#include "KestrinModel/StorePlatform.h"

namespace kestrin {
namespace {

// In the order of StorePlatform::editable.
const std::array<std::string, 4> kFolderNames = {"iOS", "macOS", "tvOS", "visionOS"};

}  // namespace

const StorePlatform StorePlatform::iOS{"IOS"};
const StorePlatform StorePlatform::macOS{"MAC_OS"};
const StorePlatform StorePlatform::tvOS{"TV_OS"};
const StorePlatform StorePlatform::visionOS{"VISION_OS"};
const std::array<StorePlatform, 4> StorePlatform::editable = {iOS, macOS, tvOS, visionOS};

const std::string& StorePlatform::folderName() const {
    for (std::size_t i = 0; i < editable.size(); ++i) {
        if (*this == editable[i]) return kFolderNames[i];
    }
    return rawValue;
}

StorePlatform StorePlatform::fromFolderName(std::string_view name) {
    for (std::size_t i = 0; i < editable.size(); ++i) {
        if (text::equal(name, kFolderNames[i])) return editable[i];
    }
    return {std::string(name)};
}

}  // namespace kestrin
