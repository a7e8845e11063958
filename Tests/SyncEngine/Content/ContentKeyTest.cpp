#include "SyncEngine/Content/ContentKey.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>

#include "KestrinCore/UnicodeText.h"
#include "Tests/SyncEngine/Content/ContentGenerators.h"
#include "Tests/SyncEngine/Content/SampleListing.h"

namespace kestrin {
namespace {

using sample::english;
using sample::screenshots;

using Key = ContentKey;
using Path = ContentKey::ExperimentPath;

const auto none = std::nullopt;
constexpr bool yes = true;
constexpr bool no = false;

struct CaseRow {
    std::string id;
    Key key;
    bool isMedia;
    bool isDefaultProductPage;
    std::optional<StorePlatform> platform;
    std::optional<StoreLocale> locale;
    std::optional<Slug> page;
    std::optional<Path> experiment;
};

const CaseRow kCases[] = {
    // id, key, media, default page, platform, locale, page, experiment
    {"app/primaryCategory", Key::AppInfo{AppInfoAttribute::primaryCategory}, no, yes, none, none, none, none},
    {"app/en-US/name", Key::AppInfoLocale{english, ListingField::name}, no, yes, none, english, none, none},
    {"IOS/version/copyright", Key::Version{StorePlatform::iOS, VersionAttribute::copyright}, no, yes,
     StorePlatform::iOS, none, none, none},
    {"IOS/en-US/description", Key::VersionLocale{StorePlatform::iOS, english, ListingField::description}, no,
     yes, StorePlatform::iOS, english, none, none},
    {"MAC_OS/en-US/media/IPHONE_65/SCREENSHOT", Key::Placements{StorePlatform::macOS, english, screenshots},
     yes, yes, StorePlatform::macOS, english, none, none},
    {"IOS/review/notes", Key::Review{StorePlatform::iOS, ReviewAttribute::notes}, no, yes, StorePlatform::iOS,
     none, none, none},
    {"pages/winter/deepLink", Key::Page{{"winter"}, PageAttribute::deepLink}, no, no, none, none,
     Slug{"winter"}, none},
    {"pages/winter/en-US/promotionalText", Key::PagePromotionalText{{"winter"}, english}, no, no, none,
     english, Slug{"winter"}, none},
    {"pages/winter/en-US/media/IPHONE_65/SCREENSHOT", Key::PagePlacements{{"winter"}, english, screenshots},
     yes, no, none, english, Slug{"winter"}, none},
    {"experiments/icons/platform", Key::Experiment{{"icons"}, ExperimentAttribute::platform}, no, no, none,
     none, none, Path{{"icons"}, none}},
    {"experiments/icons/treatments/blue/appIconName",
     Key::Treatment{{"icons"}, {"blue"}, TreatmentAttribute::appIconName}, no, no, none, none, none,
     Path{{"icons"}, Slug{"blue"}}},
    {"experiments/icons/treatments/blue/en-US/media/IPHONE_65/SCREENSHOT",
     Key::TreatmentPlacements{{"icons"}, {"blue"}, english, screenshots}, yes, no, none, english, none,
     Path{{"icons"}, Slug{"blue"}}},
};

TEST(ContentKey, IDJoinsThePartsOfEachCase) {
    for (const CaseRow& row : kCases) {
        SCOPED_TRACE(row.id);
        EXPECT_EQ(row.key.id(), row.id);
        EXPECT_EQ(row.key.description(), row.id);
    }
}

TEST(ContentKey, IsPrintedAsItsID) {
    std::ostringstream out;
    out << kCases[0].key;
    EXPECT_EQ(out.str(), "app/primaryCategory");
}

TEST(ContentKey, IDParsesToItsKey) {
    for (const CaseRow& row : kCases) {
        SCOPED_TRACE(row.id);
        EXPECT_EQ(Key::fromID(row.id), row.key);
    }
}

TEST(ContentKey, HasTheCasesInTheirOrder) {
    for (std::size_t i = 0; i < std::size(kCases); ++i) EXPECT_EQ(kCases[i].key.kind().index(), i);
}

TEST(ContentKey, TellsThePartsOfItsPayload) {
    for (const CaseRow& row : kCases) {
        SCOPED_TRACE(row.id);
        EXPECT_EQ(row.key.isMedia(), row.isMedia);
        EXPECT_EQ(row.key.isDefaultProductPage(), row.isDefaultProductPage);
        EXPECT_EQ(row.key.platform(), row.platform);
        EXPECT_EQ(row.key.locale(), row.locale);
        EXPECT_EQ(row.key.page(), row.page);
        EXPECT_EQ(row.key.experiment(), row.experiment);
    }
}

TEST(ContentKey, GivesThePayloadOfItsOwnCaseOnly) {
    const Key key = Key::Page{{"winter"}, PageAttribute::name};

    ASSERT_NE(key.as<Key::Page>(), nullptr);
    EXPECT_EQ(key.as<Key::Page>()->page, Slug{"winter"});
    EXPECT_EQ(key.as<Key::Experiment>(), nullptr);
}

TEST(ContentKey, ParsesEveryFieldAtItsLevelOnly) {
    for (const auto field : ListingFields::all) {
        const auto name = std::string(rawValue(field));
        SCOPED_TRACE(name);
        const bool ofApp = parent(field) == ListingFieldInfo::Parent::appInfoLocalization;
        const auto app = Key::fromID("app/en-US/" + name);
        const auto version = Key::fromID("IOS/en-US/" + name);
        EXPECT_EQ(app.has_value(), ofApp);
        EXPECT_EQ(version.has_value(), !ofApp);
        const Key expected = ofApp ? Key(Key::AppInfoLocale{english, field})
                                   : Key(Key::VersionLocale{StorePlatform::iOS, english, field});
        EXPECT_EQ(ofApp ? app : version, expected);
    }
}

template <class Attribute, class Case, class... Parts>
void expectEachAttributeParses(const std::string& prefix, Parts... parts) {
    for (const auto attribute : allCases<Attribute>) {
        const auto id = prefix + std::string(rawValue(attribute));
        SCOPED_TRACE(id);
        EXPECT_EQ(Key::fromID(id), Key(Case{parts..., attribute}));
    }
}

TEST(ContentKey, ParsesEveryAttribute) {
    expectEachAttributeParses<AppInfoAttribute, Key::AppInfo>("app/");
    expectEachAttributeParses<VersionAttribute, Key::Version>("TV_OS/version/", StorePlatform::tvOS);
    expectEachAttributeParses<ReviewAttribute, Key::Review>("TV_OS/review/", StorePlatform::tvOS);
    expectEachAttributeParses<PageAttribute, Key::Page>("pages/p/", Slug{"p"});
    expectEachAttributeParses<ExperimentAttribute, Key::Experiment>("experiments/e/", Slug{"e"});
    expectEachAttributeParses<TreatmentAttribute, Key::Treatment>("experiments/e/treatments/t/", Slug{"e"},
                                                                  Slug{"t"});
}

TEST(ContentKey, TextOutsideTheGrammarIsNoKey) {
    struct Row {
        const char* when;
        const char* id;
    };
    const Row rows[] = {
        {"an empty text", ""},
        {"one component", "app"},
        {"pages alone", "pages"},
        {"experiments alone", "experiments"},
        {"two components of pages", "pages/winter"},
        {"an unknown app attribute", "app/category"},
        {"a platform with an app attribute", "IOS/primaryCategory"},
        {"a version field of the app", "app/en-US/description"},
        {"an app field of a platform", "IOS/en-US/name"},
        {"an unknown field", "IOS/en-US/title"},
        {"media of the app", "app/en-US/media/a/b"},
        {"five components without media", "IOS/en-US/medium/a/b"},
        {"a field where a review attribute stands", "IOS/review/description"},
        {"a field where a version attribute stands", "IOS/version/description"},
        {"a review attribute of a locale", "IOS/en-US/notes"},
        {"four components", "IOS/en-US/media/a"},
        {"six components of a platform", "IOS/en-US/media/a/b/c"},
        {"a fourth component other than promotionalText", "pages/x/name/extra"},
        {"an unknown page attribute", "pages/x/trafficProportion"},
        {"five components of pages", "pages/x/en-US/media/a"},
        {"five components of pages with media third", "pages/x/media/a/b"},
        {"six components of pages without media", "pages/x/en-US/text/a/b"},
        {"seven components of pages", "pages/x/en-US/media/a/b/c"},
        {"an unknown test attribute", "experiments/x/visible"},
        {"four components of experiments", "experiments/x/treatments/y"},
        {"a treatment without the word", "experiments/x/treatment/y/name"},
        {"an unknown treatment attribute", "experiments/x/treatments/y/platform"},
        {"treatment media without treatments", "experiments/x/y/z/en-US/media/a/b"},
        {"treatment media without media", "experiments/x/treatments/z/en-US/text/a/b"},
        {"six components of experiments", "experiments/x/treatments/y/en-US/media"},
        {"a ninth component", "experiments/x/treatments/z/en-US/media/a/b/c"},
        {"a trailing slash", "app/primaryCategory/"},
        {"a leading slash", "/app/primaryCategory"},
        {"another letter case", "APP/primaryCategory"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(Key::fromID(row.id), std::nullopt);
    }
    EXPECT_EQ(Key::fromID(std::string(1 << 20, '/')), std::nullopt);
}

TEST(ContentKey, PlatformsLocalesSlugsAndSlotsAreTakenAsTheyStand) {
    EXPECT_EQ(Key::fromID("AMIGA/xx-YY/keywords"),
              Key(Key::VersionLocale{{"AMIGA"}, {"xx-YY"}, ListingField::keywords}));
    EXPECT_EQ(Key::fromID("pages//name"), Key(Key::Page{{""}, PageAttribute::name}));
    EXPECT_EQ(Key::fromID("//media//"), Key(Key::Placements{{""}, {""}, {"", ""}}));
    EXPECT_EQ(Key::fromID("pages/app/app/media/a/b"), Key(Key::PagePlacements{{"app"}, {"app"}, {"a", "b"}}));
    EXPECT_EQ(Key::fromID("app/version/name"), Key(Key::AppInfoLocale{{"version"}, ListingField::name}));
    EXPECT_EQ(Key::fromID("IOS/review/media/a/b"),
              Key(Key::Placements{StorePlatform::iOS, {"review"}, {"a", "b"}}));
}

TEST(ContentKey, OrderIsThatOfTheIDsAsText) {
    const char* ascending[] = {
        "IOS/en-US/keywords",  "IOS/version/copyright", "app/en-US/name",
        "app/primaryCategory", "experiments/a/name",
        "pages/a-2/name",  // "-" comes before "/"
        "pages/a/deepLink",    "pages/a/name",          "pages/e/name",
        "pages/e\u0301/name",  // the composed é, behind all of ASCII
        "pages/日/name",       "zzz/en-US/keywords",    "\U0001f600/en-US/keywords",
    };
    for (std::size_t i = 1; i < std::size(ascending); ++i) {
        SCOPED_TRACE(ascending[i]);
        const auto before = Key::fromID(ascending[i - 1]);
        const auto after = Key::fromID(ascending[i]);
        ASSERT_TRUE(before && after);
        EXPECT_LT(*before, *after);
        EXPECT_NE(*before, *after);
    }
}

TEST(ContentKey, CanonicallyEquivalentPayloadsAreTheSameKey) {
    const Key composed = Key::Page{{"caf\u00e9"}, PageAttribute::name};
    const Key decomposed = Key::Page{{"cafe\u0301"}, PageAttribute::name};
    std::map<Key, int> values{{composed, 1}};

    EXPECT_EQ(composed, decomposed);
    EXPECT_EQ(values.count(decomposed), 1u);
    EXPECT_EQ(decomposed.id(), "pages/cafe\u0301/name");
}

// A locale named "b/media/c" can only come from a server that breaks its own rules; its values must still be its own.
TEST(ContentKey, DifferentKeysOfOneIDStayApart) {
    const std::vector<Key> keys = {
        Key::Placements{{"a"}, {"b/c"}, {"d", "e"}},
        Key::Placements{{"a/b"}, {"c"}, {"d", "e"}},
        Key::AppInfoLocale{english, ListingField::keywords},
        Key::VersionLocale{{"app"}, english, ListingField::keywords},
    };
    EXPECT_EQ(keys[0].id(), keys[1].id());
    EXPECT_EQ(keys[2].id(), keys[3].id());
    EXPECT_NE(keys[0], keys[1]);
    EXPECT_NE(keys[2], keys[3]);

    std::map<Key, int> values;
    for (const auto& key : keys) ++values[key];

    EXPECT_EQ(values.size(), keys.size());
}

RC_GTEST_PROP(ContentKeyProperties, AnIDParsesToItsKey, ()) {
    const auto key = *generated::key(generated::component());
    RC_ASSERT(Key::fromID(key.id()) == key);
}

RC_GTEST_PROP(ContentKeyProperties, AParsedKeyHasTheIDItWasParsedFrom, ()) {
    const auto parts =
        *rc::gen::container<std::vector<std::string>>(rc::gen::elementOf<std::vector<std::string>>(
            {"app", "pages", "experiments", "treatments", "media", "version", "review", "IOS", "name",
             "notes", "description", "promotionalText", "copyright", "primaryCategory", "", "x"}));
    std::string id;
    for (const auto& part : parts) id += (id.empty() ? "" : "/") + part;

    const auto key = Key::fromID(id);
    if (key) RC_ASSERT(key->id() == id);
}

RC_GTEST_PROP(ContentKeyProperties, OrderFollowsTheIDsAndTellsAllKeysApart, ()) {
    const auto keys = *rc::gen::container<std::vector<Key>>(
        3, rc::gen::oneOf(generated::key(generated::component()),
                          generated::key(generated::componentWithSlashes())));
    const auto &a = keys[0], &b = keys[1], &c = keys[2];

    const auto byID = text::compare(a.id(), b.id());
    if (byID != 0) RC_ASSERT((a <=> b) == byID);
    RC_ASSERT((a == b) == (a.kind() == b.kind()));
    RC_ASSERT((a < b) == (b > a));
    RC_ASSERT(!(a <= b && b <= c) || a <= c);
}

}  // namespace
}  // namespace kestrin
