#include "SyncEngine/Push/PushPlanner.h"

#include <iterator>

#include "KestrinCore/Error.h"
#include "SyncEngine/Push/ChangedValues.h"

namespace kestrin::PushPlanner {
namespace {

// The changes of one resource: its values and the keys that they came from, in the order of the changes.
template <class Attribute>
struct Group {
    std::map<Attribute, std::string> values;
    std::vector<ContentKey> keys;

    void add(Attribute attribute, const Change& change) {
        values[attribute] = change.local;
        keys.push_back(change.key);
    }
};

struct Groups {
    Group<AppInfoAttribute> categories;
    std::map<StoreLocale, Group<ListingField>> appInfoLocales;
    std::map<StorePlatform, Group<VersionAttribute>> versions;
    std::map<StorePlatform, std::map<StoreLocale, Group<ListingField>>> versionLocales;
    std::map<StorePlatform, Group<ReviewAttribute>> reviews;
};

Groups grouped(const std::vector<Change>& changes) {
    Groups groups;
    for (const auto& change : changes) {
        std::visit(Overloaded{
                       [&](const ContentKey::AppInfo& key) { groups.categories.add(key.attribute, change); },
                       [&](const ContentKey::AppInfoLocale& key) {
                           groups.appInfoLocales[key.locale].add(key.field, change);
                       },
                       [&](const ContentKey::Version& key) {
                           groups.versions[key.platform].add(key.attribute, change);
                       },
                       [&](const ContentKey::VersionLocale& key) {
                           groups.versionLocales[key.platform][key.locale].add(key.field, change);
                       },
                       [&](const ContentKey::Review& key) {
                           groups.reviews[key.platform].add(key.attribute, change);
                       },
                       [](const auto&) {},  // pages, tests and media have steps of their own
                   },
                   change.key.kind());
    }
    return groups;
}

// An update clears a field with an empty value; a create leaves it out.
template <class Attribute>
std::map<Attribute, std::string> nonEmpty(std::map<Attribute, std::string> values) {
    std::erase_if(values, [](const auto& entry) { return entry.second.empty(); });
    return values;
}

using Steps = std::vector<PushStep>;

void append(Steps& steps, Steps more) {
    steps.insert(steps.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

Steps categorySteps(const Groups& groups, const RemoteIDs& ids) {
    const auto& [values, keys] = groups.categories;
    if (!ids.appInfoID || values.empty()) return {};
    return {{PushStep::UpdateCategories{*ids.appInfoID, changed(values, AppInfoAttribute::primaryCategory),
                                        changed(values, AppInfoAttribute::secondaryCategory)},
             keys}};
}

Steps appInfoLocalizationSteps(const Groups& groups, const RemoteIDs& ids) {
    Steps steps;
    if (!ids.appInfoID) return steps;
    for (const auto& [locale, group] : groups.appInfoLocales) {
        if (const auto* id = valueIn(ids.appInfoLocalizations, locale)) {
            steps.push_back({PushStep::UpdateAppInfoLocalization{*id, group.values}, group.keys});
        } else {
            steps.push_back(
                {PushStep::CreateAppInfoLocalization{*ids.appInfoID, locale, nonEmpty(group.values)},
                 group.keys});
        }
    }
    return steps;
}

Steps versionSteps(const Groups& groups, const RemoteIDs& ids) {
    Steps steps;
    for (const auto& [platform, group] : groups.versions) {
        const auto* version = valueIn(ids.versions, platform);
        if (version) steps.push_back({PushStep::UpdateVersion{version->id, group.values}, group.keys});
    }
    return steps;
}

Steps versionLocalizationSteps(const Groups& groups, const RemoteIDs& ids) {
    Steps steps;
    for (const auto& [platform, locales] : groups.versionLocales) {
        const auto* version = valueIn(ids.versions, platform);
        if (!version) continue;
        for (const auto& [locale, group] : locales) {
            if (const auto* id = valueIn(version->localizations, locale)) {
                steps.push_back({PushStep::UpdateVersionLocalization{*id, group.values}, group.keys});
            } else {
                steps.push_back(
                    {PushStep::CreateVersionLocalization{version->id, locale, nonEmpty(group.values)},
                     group.keys});
            }
        }
    }
    return steps;
}

Steps reviewSteps(const Groups& groups, const RemoteIDs& ids) {
    Steps steps;
    for (const auto& [platform, group] : groups.reviews) {
        const auto* version = valueIn(ids.versions, platform);
        if (!version) continue;
        if (version->reviewDetailID) {
            steps.push_back(
                {PushStep::UpdateReviewDetail{*version->reviewDetailID, group.values}, group.keys});
        } else {
            steps.push_back({PushStep::CreateReviewDetail{version->id, nonEmpty(group.values)}, group.keys});
        }
    }
    return steps;
}

}  // namespace

Steps plan(const std::vector<Change>& changes, const RemoteListing& remote, const MediaHashes& hashes,
           const std::optional<AssetLibraryRefData>& refData) {
    const auto groups = grouped(changes);
    Steps steps;
    append(steps, categorySteps(groups, remote.ids));
    append(steps, appInfoLocalizationSteps(groups, remote.ids));
    append(steps, versionSteps(groups, remote.ids));
    append(steps, versionLocalizationSteps(groups, remote.ids));
    append(steps, reviewSteps(groups, remote.ids));
    append(steps, productPageSteps(changes, remote));
    append(steps, mediaSteps(changes, remote, hashes, refData));
    return steps;
}

Steps plan(const std::vector<Change>& changes, const RemoteIDs& remote) {
    RemoteListing listing;
    listing.ids = remote;
    return plan(changes, listing, {}, std::nullopt);
}

}  // namespace kestrin::PushPlanner
