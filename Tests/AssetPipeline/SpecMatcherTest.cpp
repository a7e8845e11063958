#include "AssetPipeline/SpecMatcher.h"
#include "Tests/Support/ListingNames.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

using Spec = AssetLibraryRefData::Spec;

MediaInfo image(std::int64_t width, std::int64_t height) {
    MediaInfo media;
    media.width = width;
    media.height = height;
    media.fileSize = 1000;
    media.fileExtension = ".png";
    return media;
}

Spec exactly(std::string id, std::int64_t width, std::int64_t height) {
    Spec spec;
    spec.id = std::move(id);
    spec.minWidth = spec.maxWidth = width;
    spec.minHeight = spec.maxHeight = height;
    return spec;
}

// Reference data in which kSlot has these specifications, in this order.
AssetLibraryRefData slotWith(const std::vector<Spec>& specs) {
    AssetLibraryRefData data;
    AssetLibraryRefData::PlacementType type{kSlot.type, {}, {{kSlot.group, {}}}};
    for (const auto& spec : specs) {
        type.specIDsByGroup[kSlot.group].push_back(spec.id);
        data.specs.emplace(spec.id, spec);
    }
    data.placementTypes.push_back(type);
    return data;
}

std::vector<MediaProblem> problems(const MediaInfo& media, const std::vector<Spec>& specs) {
    return SpecMatcher::problems(media, kSlot, slotWith(specs));
}

template <class Problem>
MediaProblem problem(Problem kind) {
    return {std::move(kind)};
}

TEST(SpecMatcher, AspectIsTwoNumbersWithTheSecondAboveZero) {
    struct Row {
        const char* ratio;
        std::optional<double> aspect;
    };
    const Row rows[] = {
        {"16:9", 16.0 / 9},   {"1.5:1", 1.5},           {":16::9:", 16.0 / 9},  {"16:x:9", 16.0 / 9},
        {"16", std::nullopt}, {"16:9:1", std::nullopt}, {"16:0", std::nullopt}, {"16:-9", std::nullopt},
        {"", std::nullopt},   {"x:y", std::nullopt},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.ratio);
        EXPECT_EQ(SpecMatcher::aspect(row.ratio), row.aspect);
    }
}

TEST(SpecMatcher, DescribesASizeByItsBounds) {
    EXPECT_EQ(SpecMatcher::describeSize(exactly("a", 1290, 2796)), "1290×2796");
    EXPECT_EQ(SpecMatcher::describeSize(Spec{}), "0×0");
    Spec range;
    range.minWidth = 100;
    range.minHeight = 10;
    range.maxHeight = 20;
    EXPECT_EQ(SpecMatcher::describeSize(range), "100–0×10–20");
    Spec upTo;
    upTo.maxWidth = 200;
    upTo.maxHeight = 0;
    EXPECT_EQ(SpecMatcher::describeSize(upTo), "0–200×0–0");
}

TEST(SpecMatcher, SpecsComeInTheOrderOfTheReferenceDataAndUnknownIdsArePassedOver) {
    auto data = slotWith({exactly("b", 1, 1), exactly("a", 2, 2)});
    data.placementTypes[0].specIDsByGroup[kSlot.group].insert(
        data.placementTypes[0].specIDsByGroup[kSlot.group].begin(), "gone");

    const auto specs = SpecMatcher::specs(kSlot, data);

    ASSERT_EQ(specs.size(), 2u);
    EXPECT_EQ(specs[0]->id, "b");
    EXPECT_EQ(specs[1]->id, "a");
}

TEST(SpecMatcher, OfTwoPlacementTypesWithOneIdTheFirstCounts) {
    auto data = slotWith({exactly("a", 1, 1)});
    data.placementTypes.push_back({kSlot.type, {}, {}});
    EXPECT_EQ(SpecMatcher::specs(kSlot, data).size(), 1u);
}

TEST(SpecMatcher, BoundsAreInclusiveAndAbsentOnesDontBind) {
    Spec range;
    range.id = "range";
    range.minWidth = 100;
    range.maxWidth = 200;
    const auto data = slotWith({range});
    for (const auto width : {100, 150, 200})
        EXPECT_TRUE(SpecMatcher::matching(image(width, 7), kSlot, data)) << width;
    for (const auto width : {99, 201})
        EXPECT_FALSE(SpecMatcher::matching(image(width, 7), kSlot, data)) << width;

    Spec tall;
    tall.id = "tall";
    tall.minHeight = 100;
    tall.maxHeight = 200;
    const auto tallData = slotWith({tall});
    for (const auto height : {100, 150, 200})
        EXPECT_TRUE(SpecMatcher::matching(image(7, height), kSlot, tallData)) << height;
    for (const auto height : {99, 201})
        EXPECT_FALSE(SpecMatcher::matching(image(7, height), kSlot, tallData)) << height;
}

TEST(SpecMatcher, RatioIsToleratedByOnePerCentOfItself) {
    Spec wide;
    wide.id = "wide";
    wide.aspectRatio = "16:9";
    const auto data = slotWith({wide});
    EXPECT_TRUE(SpecMatcher::matching(image(1920, 1080), kSlot, data));
    EXPECT_TRUE(SpecMatcher::matching(image(1920, 1090), kSlot, data));
    EXPECT_FALSE(SpecMatcher::matching(image(1920, 1100), kSlot, data));
    EXPECT_FALSE(SpecMatcher::matching(image(1920, 0), kSlot, data)) << "a height of 0 counts as 1";
}

TEST(SpecMatcher, AWrongRatioIsAWrongSize) {
    Spec wide;
    wide.id = "wide";
    wide.minWidth = wide.maxWidth = 1920;
    wide.aspectRatio = "16:9";
    EXPECT_EQ(problems(image(1920, 1100), {wide}),
              std::vector{problem(MediaProblem::WrongSize{1920, 1100, {"1920×0"}})});
}

TEST(SpecMatcher, ARatioThatDoesntParsePasses) {
    Spec odd;
    odd.id = "odd";
    odd.aspectRatio = "wide";
    EXPECT_TRUE(SpecMatcher::matching(image(1, 99), kSlot, slotWith({odd})));
}

TEST(SpecMatcher, ExtensionsAreComparedExactlyAndAnEmptyListTakesAny) {
    auto spec = exactly("a", 1, 1);
    spec.fileExtensions = {".PNG", ".jpg"};
    EXPECT_FALSE(SpecMatcher::matching(image(1, 1), kSlot, slotWith({spec})));
    spec.fileExtensions = {".png"};
    EXPECT_TRUE(SpecMatcher::matching(image(1, 1), kSlot, slotWith({spec})));
    spec.fileExtensions = {};
    EXPECT_TRUE(SpecMatcher::matching(image(1, 1), kSlot, slotWith({spec})));
}

TEST(SpecMatcher, AFileOfTheGreatestSizeFitsAndOneByteMoreDoesnt) {
    auto spec = exactly("a", 1, 1);
    spec.maxFileSize = 1000;
    EXPECT_TRUE(SpecMatcher::matching(image(1, 1), kSlot, slotWith({spec})));
    spec.maxFileSize = 999;
    EXPECT_FALSE(SpecMatcher::matching(image(1, 1), kSlot, slotWith({spec})));
    EXPECT_EQ(problems(image(1, 1), {spec}), std::vector{problem(MediaProblem::TooLarge{1000, 999})});
}

TEST(SpecMatcher, MatchingIsTheFirstThatFitsWhollyWhateverItsKind) {
    auto video = exactly("video", 1, 1);
    video.kind = Spec::Kind::video;
    const auto data = slotWith({exactly("other", 2, 2), video, exactly("image", 1, 1)});
    const auto* match = SpecMatcher::matching(image(1, 1), kSlot, data);
    ASSERT_TRUE(match);
    EXPECT_EQ(match->id, "video");
}

TEST(SpecMatcher, AFileThatFitsHasNoProblem) {
    EXPECT_EQ(problems(image(1, 1), {exactly("a", 1, 1)}), std::vector<MediaProblem>{});
}

TEST(SpecMatcher, ASlotWithoutSpecsIsUnknownAndNothingElse) {
    const auto unknown = std::vector{problem(MediaProblem::UnknownSlot{})};
    EXPECT_EQ(problems(image(1, 1), {}), unknown);
    const auto data = slotWith({exactly("a", 1, 1)});
    EXPECT_EQ(SpecMatcher::problems(image(1, 1), {"ANOTHER_GROUP", kSlot.type}, data), unknown);
    EXPECT_EQ(SpecMatcher::problems(image(1, 1), {kSlot.group, "ANOTHER_TYPE"}, data), unknown);
    EXPECT_EQ(SpecMatcher::problems(image(1, 1), kSlot, {}), unknown);
}

TEST(SpecMatcher, AnImageForASlotOfVideosIsOfTheWrongKindAndNothingElse) {
    auto video = exactly("v", 5, 5);
    video.kind = Spec::Kind::video;
    EXPECT_EQ(problems(image(1, 1), {video}), std::vector{problem(MediaProblem::WrongKind{})});
}

TEST(SpecMatcher, SpecsOfTheOtherKindAreLeftOutOfWhatIsSaid) {
    auto video = exactly("v", 1, 1);
    video.kind = Spec::Kind::video;
    video.maxFileSize = 10'000;
    auto small = exactly("a", 2, 2);
    small.maxFileSize = 10;
    EXPECT_EQ(problems(image(1, 1), {video, small}),
              (std::vector{problem(MediaProblem::WrongSize{1, 1, {"2×2"}}),
                           problem(MediaProblem::TooLarge{1000, 10})}));
}

TEST(SpecMatcher, OneFittingSpecIsEnoughAndTheFirstOfThemDecidesOnAlpha) {
    auto media = image(1, 1);
    media.hasAlpha = true;
    auto forbids = exactly("forbids", 1, 1);
    forbids.alphaAllowed = false;
    auto allows = exactly("allows", 1, 1);
    allows.alphaAllowed = true;
    const auto other = exactly("other", 2, 2);
    EXPECT_TRUE(problems(media, {other, allows, forbids}).empty());
    EXPECT_EQ(problems(media, {other, forbids, allows}),
              std::vector{problem(MediaProblem::AlphaWillBeRemoved{})});
}

TEST(SpecMatcher, AWrongTypeAloneIsTheOnlyProblem) {
    auto spec = exactly("a", 1, 1);
    spec.fileExtensions = {".jpg", ".jpeg"};
    EXPECT_EQ(problems(image(1, 1), {spec}), std::vector{problem(MediaProblem::WrongFileType{".png"})});
}

TEST(SpecMatcher, AlphaIsAProblemOnlyWhereTheFirstFittingSpecForbidsIt) {
    auto media = image(1, 1);
    media.hasAlpha = true;
    auto spec = exactly("a", 1, 1);
    EXPECT_TRUE(problems(media, {spec}).empty()) << "absent";
    spec.alphaAllowed = true;
    EXPECT_TRUE(problems(media, {spec}).empty()) << "allowed";
    spec.alphaAllowed = false;
    const auto found = problems(media, {spec});
    EXPECT_EQ(found, std::vector{problem(MediaProblem::AlphaWillBeRemoved{})});
    EXPECT_FALSE(found[0].isBlocking());
}

TEST(SpecMatcher, SizeTypeAndLengthAreReportedInThisOrder) {
    auto small = exactly("a", 1, 1);
    small.fileExtensions = {".jpg"};
    small.maxFileSize = 10;
    auto same = small;
    same.id = "b";
    same.maxFileSize = 20;

    const auto found = problems(image(3, 4), {small, same});

    EXPECT_EQ(found, (std::vector{problem(MediaProblem::WrongSize{3, 4, {"1×1"}}),
                                  problem(MediaProblem::WrongFileType{".png"}),
                                  problem(MediaProblem::TooLarge{1000, 20})}));
    for (const auto& one : found) EXPECT_TRUE(one.isBlocking());
}

TEST(SpecMatcher, WhereEachTestPassesSomewhereButNoSpecPassesAllASizeIsNamed) {
    auto rightSize = exactly("a", 1, 1);
    rightSize.fileExtensions = {".jpg"};
    auto rightType = exactly("b", 2, 2);
    rightType.fileExtensions = {".png"};
    EXPECT_EQ(problems(image(1, 1), {rightSize, rightType}),
              std::vector{problem(MediaProblem::WrongSize{1, 1, {"1×1", "2×2"}})});
}

}  // namespace
}  // namespace kestrin
