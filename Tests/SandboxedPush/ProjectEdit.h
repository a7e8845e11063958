// Changes a project by the ids of its values.
#pragma once

#include <stdexcept>
#include <string>

#include "SyncEngine/Content/ContentGraph.h"

namespace kestrin {

// Slots of the everyday sandbox: "IOS/de-DE" + kPhoneScreenshots.
inline const std::string kPhoneScreenshots = "/media/IPHONE_DYNAMIC_ISLAND_LARGE_PROFILE/APP_SCREENSHOT";
inline const std::string kPhonePreviews = "/media/IPHONE_DYNAMIC_ISLAND_LARGE_PROFILE/APP_PREVIEW";
inline const std::string kWatchScreenshots = "/media/WATCH_SERIES_3_PROFILE/APP_SCREENSHOT";
inline const std::string kHeader = "/media/DEFAULT_PROFILE/PRODUCT_PAGE_HEADER_ASSET";

class ProjectEdit {
 public:
    explicit ProjectEdit(Project& project) : project_(project) {}

    void set(const std::string& id, const std::string& value) {
        ContentGraph::set(value, keyOf(id), project_);
    }

    // One item of a slot, counted from 0: "asset:4711".
    std::string item(const std::string& id, std::size_t place) const {
        std::string rest = ContentGraph::value(keyOf(id), project_);
        for (; place > 0; --place) rest.erase(0, rest.find('\n') + 1);
        return rest.substr(0, rest.find('\n'));
    }

 private:
    static ContentKey keyOf(const std::string& id) {
        const auto key = ContentKey::fromID(id);
        if (!key) throw std::invalid_argument("no key: " + id);
        return *key;
    }

    Project& project_;
};

}  // namespace kestrin
