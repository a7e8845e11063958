// What App Review looks at: versions, page versions and tests, and how their states go along with their submission.
//
// A version takes the app info that is being prepared with it; each of the three takes the media that stand on it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Sandbox/State.h"

namespace kestrin::sandbox {

// One of the kinds of things that a submission's item names.
struct ReviewedKind {
    std::string relationship;  // of the item, "appStoreVersion"
    std::string type;          // "appStoreVersions"
};

const std::vector<ReviewedKind>& reviewedKinds();

// The thing that an item names; nullptr for an item of nothing, which only an edited state has.
Resource* reviewedBy(State& state, const Resource& item);

// Its state, whatever the attribute is called.
std::string reviewState(const Resource& thing);

const Ref& appOf(const State& state, const Resource& thing);

// Gives the thing, its media and, with a version, the app info in preparation that state. A version's state that the
// others don't have becomes the one of theirs that goes with it.
void setReviewState(State& state, Resource& thing, const std::string& reviewState);

// Throws Refusal 409 with `meta.associatedErrors`, naming everything that the thing lacks for a review.
void requireComplete(State& state, const Resource& thing);

// What App Review does, which the API has no request for.
enum class Verdict { begin, approve, reject };

// For a submission that waits or is in review; std::invalid_argument otherwise.
void judge(State& state, Resource& submission, Verdict verdict);

}  // namespace kestrin::sandbox
