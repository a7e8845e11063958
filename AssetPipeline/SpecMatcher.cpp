#include "AssetPipeline/SpecMatcher.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace kestrin::SpecMatcher {
namespace {

constexpr double kRatioTolerance = 0.01;  // of the ratio itself

bool isWithin(std::int64_t value, const std::optional<std::int64_t>& minimum,
              const std::optional<std::int64_t>& maximum) {
    return (!minimum || value >= *minimum) && (!maximum || value <= *maximum);
}

bool fitsRatio(const MediaInfo& media, const Spec& spec) {
    const auto ratio = spec.aspectRatio ? aspect(*spec.aspectRatio) : std::nullopt;
    if (!ratio) return true;
    const auto height = static_cast<double>(std::max<std::int64_t>(media.height, 1));
    const double actual = static_cast<double>(media.width) / height;
    return std::abs(actual - *ratio) / *ratio <= kRatioTolerance;
}

bool fitsSize(const MediaInfo& media, const Spec& spec) {
    return isWithin(media.width, spec.minWidth, spec.maxWidth) &&
           isWithin(media.height, spec.minHeight, spec.maxHeight) && fitsRatio(media, spec);
}

bool fitsType(const MediaInfo& media, const Spec& spec) {
    const auto& extensions = spec.fileExtensions;
    return extensions.empty() ||
           std::find(extensions.begin(), extensions.end(), media.fileExtension) != extensions.end();
}

bool fits(const MediaInfo& media, const Spec& spec) {
    return fitsSize(media, spec) && fitsType(media, spec) &&
           (!spec.maxFileSize || media.fileSize <= *spec.maxFileSize);
}

bool isSameKind(MediaInfo::Kind kind, Spec::Kind specKind) {
    return (kind == MediaInfo::Kind::video) == (specKind == Spec::Kind::video);
}

MediaProblem wrongSize(const MediaInfo& media, const std::vector<const Spec*>& kept) {
    std::vector<std::string> accepted;
    for (const auto* spec : kept) {
        auto size = describeSize(*spec);
        if (std::find(accepted.begin(), accepted.end(), size) == accepted.end())
            accepted.push_back(std::move(size));
    }
    return {MediaProblem::WrongSize{media.width, media.height, std::move(accepted)}};
}

std::optional<std::int64_t> greatestFileSize(const std::vector<const Spec*>& kept) {
    std::optional<std::int64_t> greatest;
    for (const auto* spec : kept) {
        if (spec->maxFileSize) greatest = std::max(greatest.value_or(*spec->maxFileSize), *spec->maxFileSize);
    }
    return greatest;
}

std::vector<MediaProblem> misfits(const MediaInfo& media, const std::vector<const Spec*>& kept) {
    const auto none = [&](auto test) {
        return std::none_of(kept.begin(), kept.end(), [&](const Spec* spec) { return test(media, *spec); });
    };
    std::vector<MediaProblem> found;
    if (none(fitsSize)) found.push_back(wrongSize(media, kept));
    if (none(fitsType)) found.push_back({MediaProblem::WrongFileType{media.fileExtension}});
    const auto maximum = greatestFileSize(kept);
    if (maximum && media.fileSize > *maximum)
        found.push_back({MediaProblem::TooLarge{media.fileSize, *maximum}});
    // Each test passes on some specification, but no one passes them all: a size must be named to the user.
    if (found.empty()) found.push_back(wrongSize(media, kept));
    return found;
}

std::string describeSide(const std::optional<std::int64_t>& minimum,
                         const std::optional<std::int64_t>& maximum) {
    if (minimum == maximum) return std::to_string(minimum.value_or(0));
    return std::to_string(minimum.value_or(0)) + "–" + std::to_string(maximum.value_or(0));
}

std::optional<double> number(std::string_view text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

}  // namespace

std::vector<const Spec*> specs(const PlacementSlot& slot, const AssetLibraryRefData& refData) {
    std::vector<const Spec*> found;
    const auto& types = refData.placementTypes;
    const auto type =
        std::find_if(types.begin(), types.end(), [&](const auto& t) { return t.id == slot.type; });
    if (type == types.end()) return found;
    const auto ids = type->specIDsByGroup.find(slot.group);
    if (ids == type->specIDsByGroup.end()) return found;
    for (const auto& id : ids->second) {
        const auto spec = refData.specs.find(id);
        if (spec != refData.specs.end()) found.push_back(&spec->second);
    }
    return found;
}

const Spec* matching(const MediaInfo& media, const PlacementSlot& slot, const AssetLibraryRefData& refData) {
    for (const auto* spec : specs(slot, refData)) {
        if (fits(media, *spec)) return spec;
    }
    return nullptr;
}

std::vector<MediaProblem> problems(const MediaInfo& media, const PlacementSlot& slot,
                                   const AssetLibraryRefData& refData) {
    auto kept = specs(slot, refData);
    if (kept.empty()) return {{MediaProblem::UnknownSlot{}}};
    std::erase_if(kept, [&](const Spec* spec) { return !isSameKind(media.kind, spec->kind); });
    if (kept.empty()) return {{MediaProblem::WrongKind{}}};

    const auto fitting =
        std::find_if(kept.begin(), kept.end(), [&](const Spec* spec) { return fits(media, *spec); });
    if (fitting == kept.end()) return misfits(media, kept);
    if (!media.hasAlpha || (*fitting)->alphaAllowed.value_or(true)) return {};
    return {{MediaProblem::AlphaWillBeRemoved{}}};
}

std::optional<double> aspect(std::string_view ratio) {
    std::vector<double> numbers;
    for (std::size_t start = 0; start <= ratio.size();) {
        const auto end = std::min(ratio.find(':', start), ratio.size());
        if (const auto value = number(ratio.substr(start, end - start))) numbers.push_back(*value);
        start = end + 1;
    }
    if (numbers.size() != 2 || !(numbers[1] > 0)) return std::nullopt;
    return numbers[0] / numbers[1];
}

std::string describeSize(const Spec& spec) {
    return describeSide(spec.minWidth, spec.maxWidth) + "×" + describeSide(spec.minHeight, spec.maxHeight);
}

}  // namespace kestrin::SpecMatcher
