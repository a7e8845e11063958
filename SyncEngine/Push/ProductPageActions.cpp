#include "SyncEngine/Push/ProductPageActions.h"

#include "ASCKit/Resources/CustomProductPages.h"
#include "ASCKit/Resources/Experiments.h"
#include "KestrinCore/MapLookup.h"
#include "SyncEngine/Push/AttributeValues.h"
#include "SyncEngine/Push/PushStepError.h"

namespace kestrin {
namespace {

[[noreturn]] void failForMissing(std::string parent) {
    throw PushStepError(PushStepError::MissingParent{std::move(parent)});
}

std::string pageID(const PushStep::UpdateCustomPage& action, const RunState& state) {
    if (action.pageID) return *action.pageID;
    if (const auto* made = valueIn(state.pages, action.page)) return made->pageID;
    failForMissing("page " + action.page.rawValue);
}

std::string experimentID(const PushStep::CreateTreatment& action, const RunState& state) {
    if (action.experimentID) return *action.experimentID;
    if (const auto* made = valueIn(state.experiments, action.experiment)) return *made;
    failForMissing("test " + action.experiment.rawValue);
}

std::string treatmentID(const PushStep::CreateTreatmentLocalization& action, const RunState& state) {
    if (action.treatmentID) return *action.treatmentID;
    const auto key = RunState::treatmentKey(action.experiment, action.treatment);
    if (const auto* made = valueIn(state.treatments, key)) return *made;
    failForMissing("treatment " + key);
}

// A create leaves an empty text out.
ASC::NewPageLocalization newLocalization(const StoreLocale& locale, const std::string& text) {
    return {locale.rawValue, text.empty() ? std::nullopt : std::optional(text)};
}

}  // namespace

// The reply to the create names neither the version nor the localizations that came with the page, and later steps
// need their ids.
void performProductPage(const PushStep::CreateCustomPage& action, RunState& state, ASCClient& client) {
    ASC::NewCustomProductPage page{action.appID, action.name, action.deepLink};
    for (const auto& [locale, text] : action.localizations)
        page.localizations.push_back(newLocalization(locale, text));
    const auto created = ASC::createCustomProductPage(client, page);

    const auto versions = ASC::customProductPageVersions(client, created.id);
    if (versions.empty()) {
        throw ASCError(ASCError::InvalidResponse{"/v1/appCustomProductPages/" + created.id +
                                                 "/appCustomProductPageVersions"});
    }
    const auto& versionID = versions.front().id;
    state.pages.insert_or_assign(action.page, RunState::Page{created.id, versionID});
    for (const auto& localization : ASC::customProductPageLocalizations(client, versionID)) {
        const auto key = RunState::pageLocalizationKey(action.page, {localization.locale});
        state.pageLocalizations.insert_or_assign(key, localization.id);
    }
}

void performProductPage(const PushStep::UpdateCustomPage& action, RunState& state, ASCClient& client) {
    JSONObject attributes;
    if (action.name) attributes.emplace("name", *action.name);
    if (action.visible) attributes.emplace("visible", *action.visible);
    ASC::update(client,
                {.type = "appCustomProductPages", .id = pageID(action, state), .attributes = attributes});
}

void performProductPage(const PushStep::UpdateCustomPageVersion& action, RunState&, ASCClient& client) {
    ASC::update(client, {.type = "appCustomProductPageVersions",
                         .id = action.id,
                         .attributes = {{"deepLink", AttributeValues::text(action.deepLink)}}});
}

void performProductPage(const PushStep::UpdateCustomPageLocalization& action, RunState&, ASCClient& client) {
    ASC::update(client, {.type = "appCustomProductPageLocalizations",
                         .id = action.id,
                         .attributes = {{"promotionalText", AttributeValues::text(action.promotionalText)}}});
}

void performProductPage(const PushStep::CreateCustomPageLocalization& action, RunState& state,
                        ASCClient& client) {
    const auto created = ASC::createCustomProductPageLocalization(
        client, action.versionID, newLocalization(action.locale, action.promotionalText));
    const auto key = RunState::pageLocalizationKey(action.page, action.locale);
    state.pageLocalizations.insert_or_assign(key, created.id);
}

void performProductPage(const PushStep::CreateExperiment& action, RunState& state, ASCClient& client) {
    const auto created = ASC::createExperiment(
        client, {action.appID, action.name, action.platform.rawValue, action.trafficProportion});
    state.experiments.insert_or_assign(action.experiment, created.id);
}

void performProductPage(const PushStep::UpdateExperiment& action, RunState&, ASCClient& client) {
    ASC::updateExperiment(client, action.id,
                          {.name = action.name, .trafficProportion = action.trafficProportion});
}

void performProductPage(const PushStep::CreateTreatment& action, RunState& state, ASCClient& client) {
    const auto created =
        ASC::createTreatment(client, {experimentID(action, state), action.name, action.appIconName});
    const auto key = RunState::treatmentKey(action.experiment, action.treatment);
    state.treatments.insert_or_assign(key, created.id);
}

void performProductPage(const PushStep::UpdateTreatment& action, RunState&, ASCClient& client) {
    JSONObject attributes;
    if (action.name) attributes.emplace("name", *action.name);
    if (action.appIconName) attributes.emplace("appIconName", AttributeValues::text(*action.appIconName));
    ASC::update(client,
                {.type = "appStoreVersionExperimentTreatments", .id = action.id, .attributes = attributes});
}

void performProductPage(const PushStep::CreateTreatmentLocalization& action, RunState& state,
                        ASCClient& client) {
    const auto created =
        ASC::createTreatmentLocalization(client, treatmentID(action, state), action.locale.rawValue);
    const auto key = RunState::treatmentLocalizationKey(action.experiment, action.treatment, action.locale);
    state.treatmentLocalizations.insert_or_assign(key, created.id);
}

}  // namespace kestrin
