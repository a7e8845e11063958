#include "SyncEngine/Pull/PullMerger.h"

#include <algorithm>
#include <set>

#include "KestrinCore/UnicodeText.h"
#include "SyncEngine/Content/FlatValues.h"

namespace kestrin::PullMerger {
namespace {

enum class Outcome { same, takeRemote, keepLocal, conflict };

Outcome outcomeOf(const std::string& local, const std::string& remote, const std::string* base) {
    if (text::equal(local, remote)) return Outcome::same;
    if (!base) return local.empty() ? Outcome::takeRemote : Outcome::conflict;
    if (text::equal(local, *base)) return Outcome::takeRemote;
    if (text::equal(remote, *base)) return Outcome::keepLocal;
    return Outcome::conflict;
}

template <class Item>
bool contains(const std::vector<Item>& items, const Item& item) {
    return std::find(items.begin(), items.end(), item) != items.end();
}

void updatePlatforms(Project& project, const RemoteListing& remote, bool isFirstPull) {
    auto& platforms = project.manifest.platforms;
    if (isFirstPull) {
        std::erase_if(platforms, [&](const StorePlatform& p) { return !project.platforms.contains(p); });
    }
    for (const auto& [platform, listing] : remote.platforms) {
        if (!contains(platforms, platform)) platforms.push_back(platform);
    }
    std::sort(platforms.begin(), platforms.end());
    platforms.erase(std::unique(platforms.begin(), platforms.end()), platforms.end());
}

std::set<StoreLocale> localesInUse(const Project& project) {
    std::set<StoreLocale> used;
    for (const auto& [key, value] : ContentGraph::flatten(project)) {
        if (!key.isDefaultProductPage()) continue;
        if (auto locale = key.locale()) used.insert(*std::move(locale));
    }
    return used;
}

void updateLocales(Project& project, bool isFirstPull) {
    const auto used = localesInUse(project);
    auto& locales = project.manifest.locales;
    if (isFirstPull)
        std::erase_if(locales, [&](const StoreLocale& locale) { return !used.contains(locale); });
    for (const auto& locale : used) {
        if (!contains(locales, locale)) locales.push_back(locale);
    }
}

void movePrimaryLocaleToFront(ProjectManifest& manifest) {
    if (!manifest.primaryLocale) return;
    const auto primary = std::find(manifest.locales.begin(), manifest.locales.end(), *manifest.primaryLocale);
    if (primary != manifest.locales.end()) std::rotate(manifest.locales.begin(), primary, primary + 1);
}

void updateManifest(Project& project, const RemoteListing& remote, bool isFirstPull) {
    updatePlatforms(project, remote, isFirstPull);
    if (isFirstPull && remote.primaryLocale) project.manifest.primaryLocale = remote.primaryLocale;
    updateLocales(project, isFirstPull);
    movePrimaryLocaleToFront(project.manifest);
}

PullResult mergeValues(Project local, const RemoteListing& remote, const std::optional<FlatValues>& base) {
    const auto remoteProject = remote.project();
    const auto localValues = ContentGraph::flatten(local);
    PullResult result{std::move(local), {}, {}, ContentGraph::flatten(remoteProject)};
    const auto take = [&](const ContentKey& key, const std::string& here, const std::string& there,
                          const std::string& agreed) {
        switch (outcomeOf(here, there, base ? &agreed : nullptr)) {
            case Outcome::same:
            case Outcome::keepLocal:
                break;
            case Outcome::takeRemote:
                ContentGraph::copy(key, remoteProject, result.project);
                result.updatedKeys.push_back(key);
                break;
            case Outcome::conflict:
                result.conflicts.push_back({key, here, there});
                break;
        }
    };
    const FlatValues none;
    FlatValue::forEach(localValues, result.base, base ? *base : none, take);
    return result;
}

}  // namespace

PullResult merge(Project local, const RemoteListing& remote, const std::optional<FlatValues>& base) {
    auto result = mergeValues(std::move(local), remote, base);
    updateManifest(result.project, remote, !base);
    return result;
}

}  // namespace kestrin::PullMerger
