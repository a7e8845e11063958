// Which slug a remote page, test or treatment bears, once and for good.
//
// The service has only ids and display names, a package is organised by slugs. A slug, once given to an id, stays
// with it through any rename on either side.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "KestrinCore/UnicodeText.h"
#include "KestrinModel/Project.h"
#include "KestrinModel/Slug.h"
#include "SyncEngine/Remote/RemoteIDs.h"

namespace kestrin {

// For resources of one kind.
class SlugAssigner {
 public:
    using SlugsByID = std::map<std::string, Slug>;
    using NamesBySlug = std::map<Slug, std::string>;

    SlugAssigner() = default;

    // `previous`: slugs that ids bear from earlier runs. `local`: the project's own, with their names.
    SlugAssigner(SlugsByID previous, const NamesBySlug& local);

    // The id's slug. An id that is new takes the smallest local slug of exactly this name that no id has yet; so a
    // page that was made here binds to the one of its name there. Failing that it gets a new slug that nothing has.
    Slug slug(const std::string& remoteID, std::string_view name);

 private:
    SlugsByID previous_;
    text::TextMap<std::vector<Slug>> unmatchedNames_;  // slugs in ascending order
    std::set<Slug> taken_;
};

// For a whole project.
class ProductPageSlugs {
 public:
    ProductPageSlugs(const std::optional<RemoteIDs>& previous, const Project& local);

    SlugAssigner pages;
    SlugAssigner experiments;

    // A fresh assigner for the treatments of one test.
    SlugAssigner treatments(const Slug& experiment) const;

 private:
    std::map<Slug, SlugAssigner::SlugsByID> previousTreatments_;
    std::map<Slug, SlugAssigner::NamesBySlug> localTreatments_;
};

}  // namespace kestrin
