#include "Sandbox/Resources/States.h"

#include <fmt/format.h>

#include <algorithm>

#include "Sandbox/Refusal.h"

namespace kestrin::sandbox {

bool isEditableState(std::string_view state) {
    constexpr std::string_view kEditable[] = {
        "PREPARE_FOR_SUBMISSION", "DEVELOPER_REJECTED", "REJECTED",
        "METADATA_REJECTED",      "INVALID_BINARY",     "READY_FOR_REVIEW"};
    return std::find(std::begin(kEditable), std::end(kEditable), state) != std::end(kEditable);
}

std::string appStoreState(std::string_view state) {
    if (state == "READY_FOR_DISTRIBUTION") return "READY_FOR_SALE";
    if (state == "PROCESSING_FOR_DISTRIBUTION") return "PROCESSING_FOR_APP_STORE";
    if (state == "PENDING_RELEASE") return "PENDING_DEVELOPER_RELEASE";
    if (state == "REPLACED_WITH_NEW_INFO") return "REPLACED_WITH_NEW_VERSION";
    return std::string(state);
}

void setVersionState(Resource& version, const std::string& state) {
    version.attributes["appVersionState"] = state;
    version.attributes["appStoreState"] = appStoreState(state);
}

void setAppInfoState(Resource& appInfo, const std::string& state) {
    appInfo.attributes["state"] = state;
    appInfo.attributes["appStoreState"] = appStoreState(state);
}

void requireEditable(const Resource& resource, std::string_view stateAttribute, std::string_view what) {
    const auto state = resource.text(stateAttribute);
    if (isEditableState(state)) return;
    throw Refusal(refusals::state(
        "ENTITY_STATE_INVALID",
        fmt::format("The {} '{}' can't be changed in its current state, {}", what, resource.id(), state)));
}

}  // namespace kestrin::sandbox
