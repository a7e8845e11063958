#include "SyncEngine/Push/PushStep.h"

#include "KestrinCore/Error.h"

namespace kestrin {
namespace {

std::string joinedIDs(const std::vector<ContentKey>& keys) {
    std::string ids;
    for (const auto& key : keys) {
        if (&key != &keys.front()) ids += '|';
        ids += key.id();
    }
    return ids;
}

}  // namespace

std::string PushStep::id() const {
    return std::visit(Overloaded{
                          [](const EnsureAsset& asset) { return "asset:" + asset.md5 + ":" + asset.path; },
                          [](const CreateTreatmentLocalization& made) {
                              return "treatment-localization:" + made.experiment.rawValue + "/" +
                                     made.treatment.rawValue + "/" + made.locale.rawValue;
                          },
                          [&](const CreateCustomPageLocalization& made) {
                              if (!keys.empty()) return joinedIDs(keys);
                              return "page-localization:" + made.page.rawValue + "/" + made.locale.rawValue;
                          },
                          [&](const auto&) { return joinedIDs(keys); },
                      },
                      action);
}

bool PushStep::isCreate() const {
    return std::visit(Overloaded{
                          [](const CreateAppInfoLocalization&) { return true; },
                          [](const CreateVersionLocalization&) { return true; },
                          [](const CreateReviewDetail&) { return true; },
                          [](const CreateCustomPage&) { return true; },
                          [](const CreateCustomPageLocalization&) { return true; },
                          [](const CreateExperiment&) { return true; },
                          [](const CreateTreatment&) { return true; },
                          [](const CreateTreatmentLocalization&) { return true; },
                          [](const auto&) { return false; },
                      },
                      action);
}

}  // namespace kestrin
