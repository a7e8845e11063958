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
void ProductPageActions::operator()(const PushStep::CreateCustomPage& action) {
    ASC::NewCustomProductPage page{action.appID, action.name, action.deepLink};
    for (const auto& [locale, text] : action.localizations)
        page.localizations.push_back(newLocalization(locale, text));
    const auto created = ASC::createCustomProductPage(client_, page);

    const auto versions = ASC::customProductPageVersions(client_, created.id);
    if (versions.empty()) {
        throw ASCError(ASCError::InvalidResponse{"/v1/appCustomProductPages/" + created.id +
                                                 "/appCustomProductPageVersions"});
    }
    const auto& versionID = versions.front().id;
    state_.pages.insert_or_assign(action.page, RunState::Page{created.id, versionID});
    for (const auto& localization : ASC::customProductPageLocalizations(client_, versionID)) {
        const auto key = RunState::pageLocalizationKey(action.page, {localization.locale});
        state_.pageLocalizations.insert_or_assign(key, localization.id);
    }
}

void ProductPageActions::operator()(const PushStep::UpdateCustomPage& action) {
    JSONObject attributes;
    if (action.name) attributes.emplace("name", *action.name);
    if (action.visible) attributes.emplace("visible", *action.visible);
    ASC::update(client_,
                {.type = "appCustomProductPages", .id = pageID(action, state_), .attributes = attributes});
}

void ProductPageActions::operator()(const PushStep::UpdateCustomPageVersion& action) {
    ASC::update(client_, {.type = "appCustomProductPageVersions",
                          .id = action.id,
                          .attributes = {{"deepLink", AttributeValues::text(action.deepLink)}}});
}

void ProductPageActions::operator()(const PushStep::UpdateCustomPageLocalization& action) {
    ASC::update(client_,
                {.type = "appCustomProductPageLocalizations",
                 .id = action.id,
                 .attributes = {{"promotionalText", AttributeValues::text(action.promotionalText)}}});
}

void ProductPageActions::operator()(const PushStep::CreateCustomPageLocalization& action) {
    const auto created = ASC::createCustomProductPageLocalization(
        client_, action.versionID, newLocalization(action.locale, action.promotionalText));
    const auto key = RunState::pageLocalizationKey(action.page, action.locale);
    state_.pageLocalizations.insert_or_assign(key, created.id);
}

void ProductPageActions::operator()(const PushStep::CreateExperiment& action) {
    const auto created = ASC::createExperiment(
        client_, {action.appID, action.name, action.platform.rawValue, action.trafficProportion});
    state_.experiments.insert_or_assign(action.experiment, created.id);
}

void ProductPageActions::operator()(const PushStep::UpdateExperiment& action) {
    ASC::updateExperiment(client_, action.id,
                          {.name = action.name, .trafficProportion = action.trafficProportion});
}

void ProductPageActions::operator()(const PushStep::CreateTreatment& action) {
    const auto created =
        ASC::createTreatment(client_, {experimentID(action, state_), action.name, action.appIconName});
    const auto key = RunState::treatmentKey(action.experiment, action.treatment);
    state_.treatments.insert_or_assign(key, created.id);
}

void ProductPageActions::operator()(const PushStep::UpdateTreatment& action) {
    JSONObject attributes;
    if (action.name) attributes.emplace("name", *action.name);
    if (action.appIconName) attributes.emplace("appIconName", AttributeValues::text(*action.appIconName));
    ASC::update(client_,
                {.type = "appStoreVersionExperimentTreatments", .id = action.id, .attributes = attributes});
}

void ProductPageActions::operator()(const PushStep::CreateTreatmentLocalization& action) {
    const auto created =
        ASC::createTreatmentLocalization(client_, treatmentID(action, state_), action.locale.rawValue);
    const auto key = RunState::treatmentLocalizationKey(action.experiment, action.treatment, action.locale);
    state_.treatmentLocalizations.insert_or_assign(key, created.id);
}

}  // namespace kestrin
