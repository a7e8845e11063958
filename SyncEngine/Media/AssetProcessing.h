// What the state of a library asset says about using it.
#pragma once

#include <optional>
#include <set>
#include <string>

namespace kestrin::AssetProcessing {

extern const std::set<std::string> processing;  // "AWAITING_UPLOAD", "UPLOAD_COMPLETE"
extern const std::set<std::string> dead;        // "FAILED", "REJECTED", "ARCHIVED"

// An absent state is neither; every other state is usable.
bool isProcessing(const std::optional<std::string>& state);
bool isDead(const std::optional<std::string>& state);

// Whether the bytes haven't all arrived: an upload is under way, or was cut.
bool awaitsUpload(const std::optional<std::string>& state);

}  // namespace kestrin::AssetProcessing
