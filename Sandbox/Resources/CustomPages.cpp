#include <fmt/format.h>

#include <set>

#include "Sandbox/Document.h"
#include "Sandbox/Reads.h"
#include "Sandbox/Refusal.h"
#include "Sandbox/Resources/Endpoints.h"
#include "Sandbox/Resources/Localizations.h"
#include "Sandbox/Resources/States.h"
#include "Sandbox/Resources/Values.h"
#include "Sandbox/WriteForm.h"

namespace kestrin::sandbox {
namespace {

constexpr std::size_t kPagesPerApp = 70;

constexpr const char* kPages = "appCustomProductPages";
constexpr const char* kVersions = "appCustomProductPageVersions";
constexpr const char* kLocalizations = "appCustomProductPageLocalizations";

QueryRules pageListRules() {
    QueryRules rules;
    rules.filters = {{"visible", {"true", "false"}}};
    rules.includes = {"app", kVersions};
    rules.fields = {kPages, "apps", kVersions};
    rules.relationshipLimits = {kVersions};
    return rules;
}

QueryRules versionListRules() {
    QueryRules rules;
    rules.filters = {{"state", kPageVersionStates}};
    rules.includes = {"appCustomProductPage", kLocalizations};
    rules.fields = {kVersions, kPages, kLocalizations};
    rules.relationshipLimits = {kLocalizations};
    return rules;
}

QueryRules localizationListRules() {
    QueryRules rules;
    rules.filters = {{"locale"}};
    rules.includes = {"appCustomProductPageVersion", "appScreenshotSets", "appPreviewSets"};
    rules.fields = {kLocalizations, kVersions, "appScreenshotSets", "appPreviewSets"};
    rules.relationshipLimits = {"appScreenshotSets", "appPreviewSets"};
    return rules;
}

const AttributeRule kPageName{.name = "name", .need = Need::required};
const AttributeRule kDeepLink{.name = "deepLink", .kind = Kind::uri};
const AttributeRule kLocale{.name = "locale", .kind = Kind::locale, .need = Need::required};
const AttributeRule kPromotionalText{.name = "promotionalText", .limit = 170};

WriteForm pageCreateForm() {
    WriteForm version{.type = kVersions,
                      .attributes = {kDeepLink},
                      .relationships = {{.name = kLocalizations, .type = kLocalizations, .many = true}}};
    WriteForm localization{.type = kLocalizations, .attributes = {kLocale, kPromotionalText}};
    return {.type = kPages,
            .attributes = {kPageName},
            .relationships = {{.name = "app", .type = "apps", .need = Need::required},
                              {.name = kVersions, .type = kVersions, .many = true}},
            .inclusions = {std::move(version), std::move(localization)}};
}

void requireFreeName(const State& state, const Ref& app, const std::string& name,
                     const Resource* except = nullptr) {
    for (const auto* other : state.store.pointing(kPages, "app", app.id)) {
        if (other == except || other->text("name") != name) continue;
        throw Refusal(
            refusals::attribute("INVALID.DUPLICATE", "name",
                                fmt::format("The app has a custom product page '{}' already", name)));
    }
}

// At most one version comes with a page, and it is a new one.
const Inclusion* versionToMake(const Write& write) {
    const auto found = write.many.find(kVersions);
    if (found == write.many.end() || found->second.empty()) return nullptr;
    const auto& wanted = found->second;
    for (const auto& inclusion : write.included) {
        if (wanted.size() == 1 && inclusion.id == wanted[0].id && inclusion.type == kVersions)
            return &inclusion;
    }
    throw Refusal(
        refusals::relationship("INVALID", kVersions, "A new page has one version, which is included"));
}

std::vector<const Inclusion*> localizationsToMake(const Write& write, const Inclusion& version) {
    std::vector<const Inclusion*> list;
    std::set<std::string> locales;
    const auto named = version.many.find(kLocalizations);
    if (named == version.many.end()) return list;
    for (const auto& ref : named->second) {
        for (const auto& inclusion : write.included) {
            if (inclusion.type == kLocalizations && inclusion.id == ref.id) list.push_back(&inclusion);
        }
    }
    if (list.size() != named->second.size()) {
        throw Refusal(refusals::relationship("INVALID", kLocalizations,
                                             "The localizations of a new page are included"));
    }
    for (const auto* localization : list) {
        const auto locale = localization->attributes.value("locale", "");
        if (locales.insert(locale).second) continue;
        throw Refusal(
            refusals::attribute("INVALID.DUPLICATE", "locale",
                                fmt::format("There is more than one localization for '{}'", locale)));
    }
    return list;
}

HTTPReply createPage(State& state, const Call& call) {
    static const auto form = pageCreateForm();
    const auto write = readCreate(call.request.body, form, state.store);
    const auto& app = write.ref("app");
    requireFreeName(state, app, write.text("name"));
    if (state.store.pointing(kPages, "app", app.id).size() >= kPagesPerApp) {
        throw Refusal(ErrorItem{409, "ENTITY_ERROR.RELATIONSHIP.INVALID",
                                fmt::format("An app has at most {} custom product pages", kPagesPerApp),
                                "/data/relationships/app"});
    }
    const auto* included = versionToMake(write);
    const auto localizations =
        included == nullptr ? std::vector<const Inclusion*>() : localizationsToMake(write, *included);

    auto& page = state.store.add(kPages, {{"name", write.text("name")}, {"visible", false}}, {{"app", app}});
    page.attributes["url"] = fmt::format("https://apps.apple.com/us/app/id{}?ppid={}", app.id, page.id());
    auto& version = state.store.add(kVersions, {{"version", "1"}, {"state", "PREPARE_FOR_SUBMISSION"}},
                                    {{"appCustomProductPage", page.ref}});
    if (included != nullptr) applyAttributes(included->attributes, version);
    for (const auto* localization : localizations) {
        state.store.add(kLocalizations, localization->attributes,
                        {{"appCustomProductPageVersion", version.ref}});
    }
    return createdReply(state, call, page);
}

HTTPReply updatePage(State& state, const Call& call) {
    static const WriteForm form{.type = kPages,
                                .attributes = {kPageName, {.name = "visible", .kind = Kind::truth}}};
    auto& page = named(state, kPages, call);
    const auto write = readUpdate(call.request.body, form, state.store, page.id());
    if (write.has("name")) requireFreeName(state, page.related.at("app"), write.text("name"), &page);
    applyAttributes(write.attributes, page);
    return singleReply(state, call, page);
}

void requireEditableVersionOf(const Resource& version) {
    requireEditable(version, "state", "custom product page version");
}

HTTPReply updateVersion(State& state, const Call& call) {
    static const WriteForm form{.type = kVersions, .attributes = {kDeepLink}};
    auto& version = named(state, kVersions, call);
    const auto write = readUpdate(call.request.body, form, state.store, version.id());
    requireEditableVersionOf(version);
    applyAttributes(write.attributes, version);
    return singleReply(state, call, version);
}

HTTPReply createLocalization(State& state, const Call& call) {
    static const WriteForm form{
        .type = kLocalizations,
        .attributes = {kLocale, kPromotionalText},
        .relationships = {
            {.name = "appCustomProductPageVersion", .type = kVersions, .need = Need::required}}};
    const auto write = readCreate(call.request.body, form, state.store);
    const auto& version = write.ref("appCustomProductPageVersion");
    requireEditableVersionOf(state.store.at(version));
    requireFreeLocale(state, kLocalizations, "appCustomProductPageVersion", version, write.text("locale"));
    return createdReply(
        state, call,
        state.store.add(kLocalizations, write.attributes, {{"appCustomProductPageVersion", version}}));
}

HTTPReply updateLocalization(State& state, const Call& call) {
    static const WriteForm form{.type = kLocalizations, .attributes = {kPromotionalText}};
    auto& localization = named(state, kLocalizations, call);
    const auto write = readUpdate(call.request.body, form, state.store, localization.id());
    requireEditableVersionOf(state.store.at(localization.related.at("appCustomProductPageVersion")));
    applyAttributes(write.attributes, localization);
    return singleReply(state, call, localization);
}

}  // namespace

void addCustomPageEndpoints(Router& router) {
    router.add(listEndpoint("/v1/apps/{id}/appCustomProductPages", pageListRules(),
                            {.type = kPages, .parent = "apps", .via = "app"}));
    router.add({"POST", "/v1/appCustomProductPages", {}, createPage});
    router.add({"PATCH", "/v1/appCustomProductPages/{id}", {}, updatePage});
    router.add(listEndpoint("/v1/appCustomProductPages/{id}/appCustomProductPageVersions", versionListRules(),
                            {.type = kVersions, .parent = kPages, .via = "appCustomProductPage"}));
    router.add({"PATCH", "/v1/appCustomProductPageVersions/{id}", {}, updateVersion});
    router.add(listEndpoint(
        "/v1/appCustomProductPageVersions/{id}/appCustomProductPageLocalizations", localizationListRules(),
        {.type = kLocalizations, .parent = kVersions, .via = "appCustomProductPageVersion"}));
    router.add({"POST", "/v1/appCustomProductPageLocalizations", {}, createLocalization});
    router.add({"PATCH", "/v1/appCustomProductPageLocalizations/{id}", {}, updateLocalization});
}

}  // namespace kestrin::sandbox
