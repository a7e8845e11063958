#include "SyncEngine/Remote/SlugAssigner.h"

namespace kestrin {
namespace {

template <class Remote>
SlugAssigner::SlugsByID slugsByID(const std::map<Slug, Remote>& remotes) {
    SlugAssigner::SlugsByID slugs;
    for (const auto& [slug, remote] : remotes) slugs.insert_or_assign(remote.id, slug);
    return slugs;
}

template <class Local>
SlugAssigner::NamesBySlug namesBySlug(const std::map<Slug, Local>& locals) {
    SlugAssigner::NamesBySlug names;
    for (const auto& [slug, local] : locals) names.emplace(slug, local.name);
    return names;
}

template <class Value>
Value valueOrEmpty(const std::map<Slug, Value>& values, const Slug& slug) {
    const auto found = values.find(slug);
    return found == values.end() ? Value{} : found->second;
}

}  // namespace

SlugAssigner::SlugAssigner(SlugsByID previous, const NamesBySlug& local) : previous_(std::move(previous)) {
    for (const auto& [id, slug] : previous_) taken_.insert(slug);
    for (const auto& [slug, name] : local) {
        if (!taken_.contains(slug)) unmatchedNames_[name].push_back(slug);
    }
    for (const auto& [slug, name] : local) taken_.insert(slug);
}

Slug SlugAssigner::slug(const std::string& remoteID, std::string_view name) {
    if (const auto known = previous_.find(remoteID); known != previous_.end()) return known->second;
    const auto unmatched = unmatchedNames_.find(name);
    if (unmatched != unmatchedNames_.end() && !unmatched->second.empty()) {
        const auto slug = unmatched->second.front();
        unmatched->second.erase(unmatched->second.begin());
        previous_.emplace(remoteID, slug);
        return slug;
    }
    const auto slug = Slug::make(name, taken_);
    taken_.insert(slug);
    previous_.emplace(remoteID, slug);
    return slug;
}

ProductPageSlugs::ProductPageSlugs(const std::optional<RemoteIDs>& previous, const Project& local) {
    const RemoteIDs known = previous.value_or(RemoteIDs{});
    pages = SlugAssigner(slugsByID(known.pages), namesBySlug(local.pages));
    experiments = SlugAssigner(slugsByID(known.experiments), namesBySlug(local.experiments));
    for (const auto& [slug, experiment] : known.experiments) {
        previousTreatments_.emplace(slug, slugsByID(experiment.treatments));
    }
    for (const auto& [slug, experiment] : local.experiments) {
        localTreatments_.emplace(slug, namesBySlug(experiment.treatments));
    }
}

SlugAssigner ProductPageSlugs::treatments(const Slug& experiment) const {
    return SlugAssigner(valueOrEmpty(previousTreatments_, experiment),
                        valueOrEmpty(localTreatments_, experiment));
}

}  // namespace kestrin
