#include "Sandbox/Catalogue.h"
#include "Sandbox/Document.h"
#include "Sandbox/Resources/Endpoints.h"
#include "Sandbox/Resources/Values.h"

namespace kestrin::sandbox {
namespace {

// A filter and the items that it chooses from, by the member that is their id.
struct Choice {
    const char* filter;
    const char* attribute;
    const char* id;
};

constexpr Choice kChoices[] = {
    {"placementTypes", "placementTypes", "placementTypeId"},
    {"placementProfileGroups", "placementProfileGroups", "placementProfileGroupId"},
    {"features", "features", "featureId"},
    {"specs", "imageSpecs", "specId"},
    {"specs", "videoSpecs", "specId"},
};

Json chosen(const Json& items, const char* id, const std::vector<std::string>& wanted) {
    Json list = Json::array();
    for (const auto& item : items) {
        if (std::find(wanted.begin(), wanted.end(), item.value(id, "")) != wanted.end()) list.push_back(item);
    }
    return list;
}

HTTPReply readRefData(State& state, const Call& call) {
    Resource refData{{"appAssetLibraryRefData", "1"}, Catalogue::attributes()};
    for (const auto& choice : kChoices) {
        const auto wanted = call.options.filters.find(choice.filter);
        if (wanted == call.options.filters.end()) continue;
        auto& items = refData.attributes[choice.attribute];
        items = chosen(items, choice.id, wanted->second);
    }
    return listReply(state, call, {&refData});
}

}  // namespace

void addRefDataEndpoints(Router& router) {
    QueryRules rules;
    rules.filters = {
        {"placementTypes", kPlacementTypes}, {"placementProfileGroups"}, {"features", kFeatures}, {"specs"}};
    rules.fields = {"appAssetLibraryRefData"};
    router.add({"GET", "/v1/appAssetLibraryRefData", rules, readRefData});
}

}  // namespace kestrin::sandbox
