// A project as keyed values: flattened, read, written and copied one value at a time.
//
// What the sync engine knows about the meaning of a value it knows from here, so these renderings decide what is a
// difference. A text is itself. A flag is "true" or "false", a traffic proportion its decimal number. A media list
// is the tokens of its items, one a line, in order: the same assets and files in another order are a difference, a
// changed file name of an asset isn't. The locale lists of pages and treatments and the manifest are no content.
//
// An absent value and an empty one are the same: the flat form has no empty value, reading gives "", and writing ""
// clears. Nothing here fails; what a value can't mean is absorbed as each operation says.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "KestrinCore/FlatMap.h"
#include "KestrinModel/Project.h"
#include "SyncEngine/Content/ContentKey.h"

namespace kestrin {

// Key to value, never an empty value.
using FlatValues = FlatMap<ContentKey, std::string>;

namespace ContentGraph {

// Every value of the project. Fields are taken where they are stored, also one of the other level.
FlatValues flatten(const Project& project);
// The same for content that isn't part of a project.
FlatValues flatten(const AppListing& app, const std::map<StorePlatform, PlatformListing>& platforms,
                   const std::map<Slug, CustomProductPage>& pages,
                   const std::map<Slug, Experiment>& experiments);

// The value of one key as flatten() renders it; "" when there is none.
std::string value(const ContentKey& key, const Project& project);

// Writes one value; "" clears it.
//
// - A platform comes into being with whatever is written to it, "" included. A page, test or treatment comes into
//   being with the first value that isn't empty, and goes with everything in it when its name is cleared: the name
//   is its life line, and so a deletion on the other side can be taken.
// - Clearing the platform of a test gives iOS. A proportion that is no number is none. A flag other than "true" is
//   false.
// - Of a media list, lines that are no tokens are dropped, and assets that the slot held keep their file names.
// - A text or media of a page or treatment adds its locale to the locale list; nothing takes it out again.
void set(std::string value, const ContentKey& key, Project& project);

// Carries one value across. Media go as items, not as text, so that file names come along.
void copy(const ContentKey& key, const Project& source, Project& destination);

// The tokens of the items, one a line.
std::string mediaValue(const MediaItems& items);

// One detail for App Review as it stands; nothing when absent.
std::optional<std::string> reviewValue(ReviewAttribute attribute, const ReviewDetailContent& review);

// The percentage that a value of the `trafficProportion` of a test stands for: decimal digits with an optional sign
// and nothing else, within 64 bits; otherwise nothing.
std::optional<std::int64_t> trafficProportion(std::string_view value);

}  // namespace ContentGraph

}  // namespace kestrin
