#include "Sandbox/Document.h"
#include "Sandbox/Reads.h"
#include "Sandbox/Refusal.h"
#include "Sandbox/Resources/Endpoints.h"
#include "Sandbox/Resources/Localizations.h"
#include "Sandbox/Resources/States.h"
#include "Sandbox/WriteForm.h"

namespace kestrin::sandbox {
namespace {

QueryRules localizationListRules() {
    QueryRules rules;
    rules.filters = {{"locale"}};
    rules.includes = {"appStoreVersion", "appScreenshotSets", "appPreviewSets"};
    rules.fields = {"appStoreVersionLocalizations", "appStoreVersions", "appScreenshotSets",
                    "appPreviewSets"};
    rules.relationshipLimits = {"appScreenshotSets", "appPreviewSets"};
    return rules;
}

std::vector<AttributeRule> localizedTexts() {
    return {{.name = "description", .limit = 4000},      {.name = "keywords", .limit = 100},
            {.name = "marketingUrl", .kind = Kind::uri}, {.name = "promotionalText", .limit = 170},
            {.name = "supportUrl", .kind = Kind::uri},   {.name = "whatsNew", .limit = 4000}};
}

WriteForm createForm() {
    WriteForm form{
        .type = "appStoreVersionLocalizations",
        .attributes = localizedTexts(),
        .relationships = {{.name = "appStoreVersion", .type = "appStoreVersions", .need = Need::required}}};
    form.attributes.push_back({.name = "locale", .kind = Kind::locale, .need = Need::required});
    return form;
}

HTTPReply createLocalization(State& state, const Call& call) {
    static const auto form = createForm();
    const auto write = readCreate(call.request.body, form, state.store);
    const auto& version = write.ref("appStoreVersion");
    requireEditableVersion(state.store.at(version));
    requireFreeLocale(state, form.type, "appStoreVersion", version, write.text("locale"));
    return createdReply(state, call,
                        state.store.add(form.type, write.attributes, {{"appStoreVersion", version}}));
}

// The promotional text alone may change while a version is on sale.
bool touchesReviewedTexts(const Write& write) {
    for (const auto& [name, value] : write.attributes.items()) {
        if (name != "promotionalText") return true;
    }
    return false;
}

HTTPReply updateLocalization(State& state, const Call& call) {
    static const WriteForm form{.type = "appStoreVersionLocalizations", .attributes = localizedTexts()};
    auto& localization = named(state, form.type, call);
    const auto write = readUpdate(call.request.body, form, state.store, localization.id());
    if (touchesReviewedTexts(write)) {
        requireEditableVersion(state.store.at(localization.related.at("appStoreVersion")));
    }
    applyAttributes(write.attributes, localization);
    return singleReply(state, call, localization);
}

}  // namespace

void addVersionLocalizationEndpoints(Router& router) {
    router.add(listEndpoint(
        "/v1/appStoreVersions/{id}/appStoreVersionLocalizations", localizationListRules(),
        {.type = "appStoreVersionLocalizations", .parent = "appStoreVersions", .via = "appStoreVersion"}));
    router.add({"POST", "/v1/appStoreVersionLocalizations", {}, createLocalization});
    router.add({"PATCH", "/v1/appStoreVersionLocalizations/{id}", {}, updateLocalization});
}

}  // namespace kestrin::sandbox
