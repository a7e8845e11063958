#include "KestrinModel/StorePlatform.h"

namespace kestrin {
namespace {

// In the order of StorePlatform::editable.
const std::array<std::string, 4> kFolderNames = {"iOS", "macOS", "tvOS", "visionOS"};

}  // namespace

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
