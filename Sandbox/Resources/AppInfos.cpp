#include <algorithm>

#include "Sandbox/Document.h"
#include "Sandbox/Reads.h"
#include "Sandbox/Resources/Endpoints.h"
#include "Sandbox/Resources/Localizations.h"
#include "Sandbox/Resources/States.h"
#include "Sandbox/WriteForm.h"

namespace kestrin::sandbox {
namespace {

constexpr std::size_t kNameLimit = 30, kSubtitleLimit = 30;

QueryRules appInfoListRules() {
    QueryRules rules;
    rules.includes = {"app",
                      "ageRatingDeclaration",
                      "appInfoLocalizations",
                      "primaryCategory",
                      "primarySubcategoryOne",
                      "primarySubcategoryTwo",
                      "secondaryCategory",
                      "secondarySubcategoryOne",
                      "secondarySubcategoryTwo"};
    rules.fields = {"appInfos", "apps", "ageRatingDeclarations", "appInfoLocalizations", "appCategories"};
    rules.relationshipLimits = {"appInfoLocalizations"};
    return rules;
}

QueryRules localizationListRules() {
    QueryRules rules;
    rules.filters = {{"locale"}};
    rules.includes = {"appInfo"};
    rules.fields = {"appInfoLocalizations", "appInfos"};
    return rules;
}

RelationshipRule category(std::string name) {
    return {.name = std::move(name), .type = "appCategories", .clearable = true};
}

const WriteForm kAppInfoUpdate{
    .type = "appInfos",
    .relationships = {category("primaryCategory"), category("primarySubcategoryOne"),
                      category("primarySubcategoryTwo"), category("secondaryCategory"),
                      category("secondarySubcategoryOne"), category("secondarySubcategoryTwo")}};

std::vector<AttributeRule> localizedTexts() {
    return {{.name = "name", .need = Need::required, .limit = kNameLimit},
            {.name = "subtitle", .limit = kSubtitleLimit},
            {.name = "privacyPolicyUrl"},
            {.name = "privacyChoicesUrl"},
            {.name = "privacyPolicyText"}};
}

WriteForm localizationCreate() {
    WriteForm form{.type = "appInfoLocalizations",
                   .attributes = localizedTexts(),
                   .relationships = {{.name = "appInfo", .type = "appInfos", .need = Need::required}}};
    form.attributes.push_back({.name = "locale", .kind = Kind::locale, .need = Need::required});
    return form;
}

HTTPReply updateAppInfo(State& state, const Call& call) {
    auto& info = named(state, "appInfos", call);
    const auto write = readUpdate(call.request.body, kAppInfoUpdate, state.store, info.id());
    requireEditableAppInfo(info);
    for (const auto& [relationship, other] : write.one) state.store.relate(info, relationship, other);
    return singleReply(state, call, info);
}

// Whoever read the versions before doesn't know of it, and is refused when adding it.
void addToVersions(State& state, const Resource& info, const std::string& locale) {
    for (const auto* version : state.store.pointing("appStoreVersions", "app", info.relatedID("app"))) {
        if (!isEditableState(version->text("appVersionState"))) continue;
        const auto texts =
            state.store.pointing("appStoreVersionLocalizations", "appStoreVersion", version->id());
        const bool hasIt = std::any_of(texts.begin(), texts.end(),
                                       [&](const Resource* each) { return each->text("locale") == locale; });
        if (hasIt) continue;
        state.store.add("appStoreVersionLocalizations", {{"locale", locale}},
                        {{"appStoreVersion", version->ref}});
    }
}

HTTPReply createLocalization(State& state, const Call& call) {
    static const auto form = localizationCreate();
    const auto write = readCreate(call.request.body, form, state.store);
    const auto& info = write.ref("appInfo");
    requireEditableAppInfo(state.store.at(info));
    requireFreeLocale(state, "appInfoLocalizations", "appInfo", info, write.text("locale"));
    if (state.settings.linksLocales) addToVersions(state, state.store.at(info), write.text("locale"));
    return createdReply(state, call,
                        state.store.add("appInfoLocalizations", write.attributes, {{"appInfo", info}}));
}

HTTPReply updateLocalization(State& state, const Call& call) {
    static const WriteForm form{.type = "appInfoLocalizations", .attributes = localizedTexts()};
    auto& localization = named(state, "appInfoLocalizations", call);
    const auto write = readUpdate(call.request.body, form, state.store, localization.id());
    requireEditableAppInfo(state.store.at(localization.related.at("appInfo")));
    applyAttributes(write.attributes, localization);
    return singleReply(state, call, localization);
}

}  // namespace

void addAppInfoEndpoints(Router& router) {
    router.add(listEndpoint("/v1/apps/{id}/appInfos", appInfoListRules(),
                            {.type = "appInfos", .parent = "apps", .via = "app"}));
    router.add({"PATCH", "/v1/appInfos/{id}", {}, updateAppInfo});
    router.add(listEndpoint("/v1/appInfos/{id}/appInfoLocalizations", localizationListRules(),
                            {.type = "appInfoLocalizations", .parent = "appInfos", .via = "appInfo"}));
    router.add({"POST", "/v1/appInfoLocalizations", {}, createLocalization});
    router.add({"PATCH", "/v1/appInfoLocalizations/{id}", {}, updateLocalization});
}

}  // namespace kestrin::sandbox
