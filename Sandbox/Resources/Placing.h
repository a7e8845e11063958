// Where placements stand: the surface that a localization belongs to, and the order within a group of it.
//
// A surface is a version, a page version or a test. The placements of one localization and one group have one
// order, whatever their types.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Sandbox/State.h"

namespace kestrin::sandbox {

struct Surface {
    std::string relationship;      // of a placement to its localization, "appStoreVersionLocalization"
    std::string localizationType;  // "appStoreVersionLocalizations"
    std::string feature;           // of the reference data, "APP_STORE_VERSIONS"
    Ref reviewed;                  // the version, page version or test that is edited and reviewed
    std::string state;             // of `reviewed`
};

// The three relationships of a placement to a localization.
const std::vector<std::string>& surfaceRelationships();

// `localization` is one of the three kinds.
Surface surfaceOf(const State& state, const Resource& localization);

// The localization that a placement stands on.
const Resource& localizationOf(const State& state, const Resource& placement);

// Throws Refusal 409 STATE_ERROR.INVALID_STATE when media can't be placed on or taken off the surface.
void requireEditableSurface(const Surface& surface);

// The placements of a localization, by group and then by their order in it.
std::vector<Resource*> placementsOn(State& state, const Resource& localization);
bool standsBefore(const Resource& placement, const Resource& other);

// Adds a placement behind the others of its group.
Resource& place(State& state, const Resource& localization, const std::string& placementType,
                const std::string& placementGroup, const Ref& asset);

// The named placements change places among themselves so that they stand in that order; the others stay where they
// are. All are of one localization and one group; a second mention of the same one counts for nothing.
void arrange(State& state, const std::vector<Ref>& order);

// The same media in the same order on another localization.
void copyPlacements(State& state, const Resource& from, const Resource& to);

}  // namespace kestrin::sandbox
