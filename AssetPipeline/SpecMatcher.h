// Whether a media file fits a slot, and if it doesn't, why.
//
// Pure functions of the file's properties and the published reference data: no file and no network.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "ASCKit/Resources/AssetLibraryRefData.h"
#include "AssetPipeline/MediaInfo.h"
#include "KestrinModel/PlacementSlot.h"

namespace kestrin {

struct MediaProblem {
    struct WrongSize {
        std::int64_t width, height;
        std::vector<std::string> accepted;  // as describeSize gives them, without repeats
        bool operator==(const WrongSize&) const = default;
    };
    struct WrongFileType {
        std::string fileExtension;
        bool operator==(const WrongFileType&) const = default;
    };
    struct TooLarge {
        std::int64_t bytes, maximum;
        bool operator==(const TooLarge&) const = default;
    };
    struct UnknownSlot {
        bool operator==(const UnknownSlot&) const = default;
    };
    struct WrongKind {
        bool operator==(const WrongKind&) const = default;
    };
    struct AlphaWillBeRemoved {
        bool operator==(const AlphaWillBeRemoved&) const = default;
    };

    std::variant<WrongSize, WrongFileType, TooLarge, UnknownSlot, WrongKind, AlphaWillBeRemoved> kind;

    // Transparency alone doesn't block: an opaque copy of the image is sent.
    bool isBlocking() const { return !std::holds_alternative<AlphaWillBeRemoved>(kind); }

    bool operator==(const MediaProblem&) const = default;
};

namespace SpecMatcher {

using Spec = AssetLibraryRefData::Spec;

// The specifications of a slot in the order of the reference data; none for an unknown slot. They belong to
// `refData`.
std::vector<const Spec*> specs(const PlacementSlot& slot, const AssetLibraryRefData& refData);

// The first specification of the slot that the file fits wholly; null when there is none. Kinds aren't compared:
// size and extension tell them apart.
const Spec* matching(const MediaInfo& media, const PlacementSlot& slot, const AssetLibraryRefData& refData);

// Empty: the file fits as it is. Otherwise what is wrong, the size before the type before the length.
std::vector<MediaProblem> problems(const MediaInfo& media, const PlacementSlot& slot,
                                   const AssetLibraryRefData& refData);

// "16:9" as a number; nothing for a text that isn't two numbers, the second above 0.
std::optional<double> aspect(std::string_view ratio);

// "1290×2796", or a range for a side whose bounds differ: "100–200". An absent bound prints as 0.
std::string describeSize(const Spec& spec);

}  // namespace SpecMatcher

}  // namespace kestrin
