#include "SyncEngine/Media/AssetProcessing.h"

namespace kestrin::AssetProcessing {

const std::set<std::string> processing = {"AWAITING_UPLOAD", "UPLOAD_COMPLETE"};
const std::set<std::string> dead = {"FAILED", "REJECTED", "ARCHIVED"};

bool isProcessing(const std::optional<std::string>& state) {
    return state && processing.contains(*state);
}

bool isDead(const std::optional<std::string>& state) {
    return state && dead.contains(*state);
}

bool awaitsUpload(const std::optional<std::string>& state) {
    return state == "AWAITING_UPLOAD";
}

}  // namespace kestrin::AssetProcessing
