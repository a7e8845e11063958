#include "SyncEngine/Push/PushExecutor.h"

#include <algorithm>

#include "ASCKit/Resources/AppStoreVersions.h"
#include "ASCKit/Resources/ResourceRequests.h"
#include "KestrinCore/UnicodeText.h"
#include "SyncEngine/Push/AttributeValues.h"
#include "SyncEngine/Push/MediaPushError.h"
#include "SyncEngine/Push/ProductPageActions.h"

namespace kestrin {
namespace {

using AttributeValues::attributes;

constexpr int kConflict = 409;

JSONObject withLocale(JSONObject attributes, const StoreLocale& locale) {
    attributes.insert_or_assign("locale", locale.rawValue);
    return attributes;
}

// An empty id clears the category.
JSONValue categoryRelationship(const std::string& id) {
    return ASC::relationship("appCategories", id.empty() ? std::nullopt : std::optional(id));
}

bool isConflict(const ASCError& error) {
    const auto* http = error.as<ASCError::HTTP>();
    return http && http->status == kConflict;
}

// Performs the actions of one run.
class Actions {
 public:
    explicit Actions(const PushExecutor& executor) : executor_(executor) {}

    void perform(const PushStep::UpdateAppInfoLocalization& action) {
        update("appInfoLocalizations", action.id, attributes(action.values));
    }

    void perform(const PushStep::CreateAppInfoLocalization& action) {
        create("appInfoLocalizations", withLocale(attributes(action.values), action.locale),
               {{"appInfo", ASC::relationship("appInfos", action.appInfoID)}});
    }

    void perform(const PushStep::UpdateVersionLocalization& action) {
        update("appStoreVersionLocalizations", action.id, attributes(action.values));
    }

    void perform(const PushStep::CreateVersionLocalization& action) {
        const auto key = RunState::versionLocalizationKey(action.versionID, action.locale);
        state_.versionLocalizations.insert_or_assign(key, createdOrUpdated(action));
    }

    void perform(const PushStep::UpdateVersion& action) {
        update("appStoreVersions", action.id, attributes(action.values));
    }

    void perform(const PushStep::UpdateCategories& action) {
        JSONObject relationships;
        if (action.primary) relationships.emplace("primaryCategory", categoryRelationship(*action.primary));
        if (action.secondary)
            relationships.emplace("secondaryCategory", categoryRelationship(*action.secondary));
        ASC::update(executor_.client,
                    {.type = "appInfos", .id = action.appInfoID, .relationships = relationships});
    }

    void perform(const PushStep::EnsureAsset& action) {
        const auto asset = media().ensureAsset(action.path, action.md5, action.slot, executor_.client);
        state_.assets.insert_or_assign(action.md5, asset);
    }

    void perform(const PushStep::PlaceMedia& action) {
        media().place(action.placement, state_, executor_.client);
    }

    void perform(const PushStep::UpdateReviewDetail& action) {
        update("appStoreReviewDetails", action.id, AttributeValues::reviewAttributes(action.values));
    }

    void perform(const PushStep::CreateReviewDetail& action) {
        create("appStoreReviewDetails", AttributeValues::reviewAttributes(action.values),
               {{"appStoreVersion", ASC::relationship("appStoreVersions", action.versionID)}});
    }

    void perform(const auto& action) { performProductPage(action, state_, executor_.client); }

 private:
    void update(const char* type, const std::string& id, JSONObject values) {
        ASC::update(executor_.client, {.type = type, .id = id, .attributes = std::move(values)});
    }

    ResourceObject create(const char* type, JSONObject values, JSONObject relationships) {
        return ASC::create(
            executor_.client,
            {.type = type, .attributes = std::move(values), .relationships = std::move(relationships)});
    }

    // A localization can exist that the listing didn't show: somebody has made it since.
    std::string createdOrUpdated(const PushStep::CreateVersionLocalization& action) {
        try {
            return create("appStoreVersionLocalizations",
                          withLocale(attributes(action.values), action.locale),
                          {{"appStoreVersion", ASC::relationship("appStoreVersions", action.versionID)}})
                .id;
        } catch (const ASCError& error) {
            if (!isConflict(error)) throw;
            const auto existing = existingLocalization(action);
            if (!existing) throw;
            update("appStoreVersionLocalizations", *existing, attributes(action.values));
            return *existing;
        }
    }

    std::optional<std::string> existingLocalization(const PushStep::CreateVersionLocalization& action) {
        const auto localizations = ASC::appStoreVersionLocalizations(executor_.client, action.versionID);
        const auto found = std::find_if(
            localizations.begin(), localizations.end(),
            [&](const auto& localization) { return StoreLocale{localization.locale} == action.locale; });
        return found == localizations.end() ? std::nullopt : std::optional(found->id);
    }

    const MediaPushContext& media() const {
        if (!executor_.media) throw MediaPushError(MediaPushError::NoMediaContext{});
        return *executor_.media;
    }

    const PushExecutor& executor_;
    RunState state_;
};

}  // namespace

std::vector<PushStep> PushExecutor::run(const std::vector<PushStep>& steps,
                                        const PushEventHandler& onEvent) const {
    Actions actions(*this);
    std::vector<PushStep> completed;
    for (const auto& step : steps) {
        throwIfStopped(stop);
        onEvent({PushEvent::Started{step}});
        try {
            std::visit([&](const auto& action) { actions.perform(action); }, step.action);
        } catch (const std::exception& error) {
            const auto sentence = text::repaired(error.what());
            onEvent({PushEvent::Failed{step, sentence}});
            throw PushFailure(std::move(completed), step, sentence);
        }
        completed.push_back(step);
        onEvent({PushEvent::Finished{step}});
    }
    return completed;
}

}  // namespace kestrin
