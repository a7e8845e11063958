// A plan as text: a line a step, with all that the step carries.
//
//     updateVersion V {copyright="2026"} <- IOS/version/copyright
//
// An absent part of a step isn't shown, an empty one is ""; behind the arrow are the keys that the step settles.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KestrinCore/Error.h"
#include "SyncEngine/Push/PushStep.h"

namespace kestrin {

class StepText {
 public:
    static std::string of(const PushStep& step) {
        std::string line = std::visit(StepText(), step.action);
        const char* separator = " <- ";
        for (const auto& key : step.keys) {
            line += separator + key.id();
            separator = ", ";
        }
        return line;
    }

    static std::string of(const std::vector<PushStep>& steps) {
        std::string lines;
        for (const auto& step : steps) lines += of(step) + "\n";
        return lines;
    }

    std::string operator()(const PushStep::UpdateAppInfoLocalization& a) const {
        return "updateAppInfoLocalization " + a.id + braced(a.values);
    }
    std::string operator()(const PushStep::CreateAppInfoLocalization& a) const {
        return "createAppInfoLocalization " + a.appInfoID + " " + a.locale.rawValue + braced(a.values);
    }
    std::string operator()(const PushStep::UpdateVersionLocalization& a) const {
        return "updateVersionLocalization " + a.id + braced(a.values);
    }
    std::string operator()(const PushStep::CreateVersionLocalization& a) const {
        return "createVersionLocalization " + a.versionID + " " + a.locale.rawValue + braced(a.values);
    }
    std::string operator()(const PushStep::UpdateVersion& a) const {
        return "updateVersion " + a.id + braced(a.values);
    }
    std::string operator()(const PushStep::UpdateCategories& a) const {
        return "updateCategories " + a.appInfoID + named("primary", a.primary) +
               named("secondary", a.secondary);
    }
    std::string operator()(const PushStep::EnsureAsset& a) const {
        return "ensureAsset " + a.path + " " + a.md5 + " " + a.slot.description();
    }
    std::string operator()(const PushStep::PlaceMedia& a) const {
        const auto& placement = a.placement;
        std::string text = "placeMedia " + std::visit(*this, placement.target.kind) + " " +
                           placement.locale.rawValue + " " + placement.slot.description() + " want";
        for (const auto& item : placement.desired) text += " " + item.token();
        text += " have";
        for (const auto& one : placement.existing) text += " " + one.placementID + "=" + one.assetID;
        return placement.maxCount ? text + " max " + std::to_string(*placement.maxCount) : text;
    }
    std::string operator()(const PushStep::UpdateReviewDetail& a) const {
        return "updateReviewDetail " + a.id + braced(a.values);
    }
    std::string operator()(const PushStep::CreateReviewDetail& a) const {
        return "createReviewDetail " + a.versionID + braced(a.values);
    }
    std::string operator()(const PushStep::CreateCustomPage& a) const {
        return "createCustomPage " + a.page.rawValue + " " + a.appID + named("name", a.name) +
               named("deepLink", a.deepLink) + braced(a.localizations);
    }
    std::string operator()(const PushStep::UpdateCustomPage& a) const {
        return "updateCustomPage " + a.page.rawValue + " " + a.pageID.value_or("-") + named("name", a.name) +
               (a.visible ? *a.visible ? " visible" : " invisible" : "");
    }
    std::string operator()(const PushStep::UpdateCustomPageVersion& a) const {
        return "updateCustomPageVersion " + a.id + named("deepLink", a.deepLink);
    }
    std::string operator()(const PushStep::UpdateCustomPageLocalization& a) const {
        return "updateCustomPageLocalization " + a.id + named("text", a.promotionalText);
    }
    std::string operator()(const PushStep::CreateCustomPageLocalization& a) const {
        return "createCustomPageLocalization " + a.page.rawValue + " " + a.versionID + " " +
               a.locale.rawValue + named("text", a.promotionalText);
    }
    std::string operator()(const PushStep::CreateExperiment& a) const {
        return "createExperiment " + a.experiment.rawValue + " " + a.appID + named("name", a.name) + " " +
               a.platform.rawValue + " " + std::to_string(a.trafficProportion) + "%";
    }
    std::string operator()(const PushStep::UpdateExperiment& a) const {
        return "updateExperiment " + a.id + named("name", a.name) +
               (a.trafficProportion ? " " + std::to_string(*a.trafficProportion) + "%" : "");
    }
    std::string operator()(const PushStep::CreateTreatment& a) const {
        return "createTreatment " + a.experiment.rawValue + "/" + a.treatment.rawValue + " " +
               a.experimentID.value_or("-") + named("name", a.name) + named("icon", a.appIconName);
    }
    std::string operator()(const PushStep::UpdateTreatment& a) const {
        return "updateTreatment " + a.id + named("name", a.name) + named("icon", a.appIconName);
    }
    std::string operator()(const PushStep::CreateTreatmentLocalization& a) const {
        return "createTreatmentLocalization " + a.experiment.rawValue + "/" + a.treatment.rawValue + " " +
               a.treatmentID.value_or("-") + " " + a.locale.rawValue;
    }

    std::string operator()(const PlacementTarget::Version& t) const {
        return "version " + t.platform.rawValue + " " + t.versionID + "/" + t.localizationID.value_or("-");
    }
    std::string operator()(const PlacementTarget::Page& t) const {
        return "page " + t.page.rawValue + "/" + t.localizationID.value_or("-");
    }
    std::string operator()(const PlacementTarget::Treatment& t) const {
        return "treatment " + t.experiment.rawValue + "/" + t.treatment.rawValue + "/" +
               t.localizationID.value_or("-");
    }

 private:
    static std::string named(std::string_view name, const std::optional<std::string>& value) {
        return value ? " " + std::string(name) + "=\"" + *value + "\"" : "";
    }

    static std::string_view nameOf(const StoreLocale& locale) { return locale.rawValue; }
    template <class Attribute>
    static std::string_view nameOf(Attribute attribute) {
        return rawValue(attribute);
    }

    template <class Key>
    static std::string braced(const std::map<Key, std::string>& values) {
        std::string text;
        for (const auto& [key, value] : values) text += named(nameOf(key), value);
        return " {" + (text.empty() ? "" : text.substr(1)) + "}";
    }
};

inline void PrintTo(const PushStep& step, std::ostream* out) {
    *out << StepText::of(step);
}

}  // namespace kestrin
