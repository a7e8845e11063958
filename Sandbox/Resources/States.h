// In which states a thing may be changed, and how the two spellings of a version's state go together.
#pragma once

#include <string>
#include <string_view>

#include "Sandbox/Store.h"

namespace kestrin::sandbox {

// Versions, app infos, page versions and tests alike: it is being prepared, or was sent back. A thing that was added
// to a submission which isn't sent yet counts as being prepared.
bool isEditableState(std::string_view state);

// The deprecated appStoreState that goes with an appVersionState or an app info's state.
std::string appStoreState(std::string_view state);

// Sets both spellings.
void setVersionState(Resource& version, const std::string& state);
void setAppInfoState(Resource& appInfo, const std::string& state);

// Throws Refusal 409 unless the state allows changes; `what` is "version", "app info", ….
void requireEditable(const Resource& resource, std::string_view stateAttribute, std::string_view what);

inline void requireEditableVersion(const Resource& version) {
    requireEditable(version, "appVersionState", "version");
}
inline void requireEditableAppInfo(const Resource& appInfo) {
    requireEditable(appInfo, "state", "app info");
}

}  // namespace kestrin::sandbox
