// The JSON forms of the records that are one file each, and the law that all of them keep: members of a newer version
// survive, known ones win.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "KestrinCore/StableJSON.h"
#include "KestrinModel/AppListing.h"
#include "KestrinModel/PlatformListing.h"
#include "KestrinModel/ProjectManifest.h"
#include "Tests/Support/Generators.h"

namespace kestrin {
namespace {

using StableJSON::decode;
using StableJSON::encode;
using StableJSON::encodeCompact;

// One of our records as a document, as it must be written and as it may be read.
struct Form {
    const char* record;
    std::string all;                             // with every known member
    std::string least;                           // the least that is written
    std::vector<std::string> known;              // the names of its members
    std::string (*rewritten)(std::string_view);  // read and written, compact
};

template <class Record>
std::string rewritten(std::string_view json) {
    return encodeCompact(decode<Record>(json).toJSON());
}

std::vector<Form> forms() {
    return {
        {"AppBinding",
         R"({"ascAppID":"6448311069","bundleID":"com.example.notes"})",
         R"({"bundleID":""})",
         {"bundleID", "ascAppID"},
         rewritten<AppBinding>},
        {"AppInfoContent",
         R"({"primaryCategory":"PRODUCTIVITY","secondaryCategory":"UTILITIES"})",
         "{}",
         {"primaryCategory", "secondaryCategory"},
         rewritten<AppInfoContent>},
        {"VersionContent",
         R"({"copyright":"2024 Example","releaseType":"MANUAL","versionString":"1.0"})",
         "{}",
         {"versionString", "copyright", "releaseType"},
         rewritten<VersionContent>},
        {"ReviewDetailContent",
         R"({"contactEmail":"a@example.com","contactFirstName":"Ada","contactLastName":"Lovelace",)"
         R"("contactPhone":"+44 1","demoAccountName":"demo","demoAccountRequired":false,"notes":"None."})",
         "{}",
         {"contactFirstName", "contactLastName", "contactPhone", "contactEmail", "demoAccountRequired",
          "demoAccountName", "notes"},
         rewritten<ReviewDetailContent>},
        {"ProjectManifest",
         R"({"app":{"ascAppID":"1","bundleID":"com.example.notes"},"format":"com.brennoway.kestrin.project",)"
         R"("locales":["en-US","de-DE"],"platforms":["IOS","MAC_OS"],"primaryLocale":"en-US",)"
         R"("projectID":"0F9C1B2A-3D4E-4F50-8A6B-7C8D9E0F1A2B","schemaVersion":1})",
         R"({"app":{"bundleID":""},"format":"com.brennoway.kestrin.project","locales":[],"platforms":[],)"
         R"("projectID":"0F9C1B2A-3D4E-4F50-8A6B-7C8D9E0F1A2B","schemaVersion":1})",
         {"format", "schemaVersion", "projectID", "app", "platforms", "primaryLocale", "locales"},
         rewritten<ProjectManifest>},
    };
}

std::string with(const std::string& json, const JSONObject& more) {
    auto members = *decode(json).objectValue();
    for (const auto& [name, value] : more) members.insert_or_assign(name, value);
    return encodeCompact(members);
}

TEST(RecordJSON, EveryKnownMemberIsReadAndWritten) {
    for (const auto& form : forms()) {
        SCOPED_TRACE(form.record);
        EXPECT_EQ(form.rewritten(form.all), form.all);
        EXPECT_EQ(form.rewritten(form.least), form.least);
    }
}

TEST(RecordJSON, AKnownOptionalMemberThatIsNullIsAbsentAndNotWrittenAgain) {
    for (const auto& form : forms()) {
        SCOPED_TRACE(form.record);
        for (const auto& name : form.known) {
            if (name == "projectID") continue;
            SCOPED_TRACE(name);
            const auto json = with(form.least, {{name, nullptr}});
            EXPECT_EQ(form.rewritten(json), form.least);
        }
    }
}

TEST(RecordJSON, AnUnknownMemberIsKeptAsItIsNullIncluded) {
    const JSONObject future = {{"a/b", "https://example.com/"},
                               {"futureNull", nullptr},
                               {"futureObject", JSONObject{{"z", JSONArray{1, nullptr, 0.5}}, {"a", true}}},
                               {"Bundleid", 1},
                               {"", ""},
                               {"cafe\u0301", 1},
                               {"caf\u00E9", 2}};
    for (const auto& form : forms()) {
        SCOPED_TRACE(form.record);
        const auto json = with(form.all, future);
        EXPECT_EQ(form.rewritten(json), json);
    }
}

TEST(RecordJSON, AnUnknownWholeNumberKeepsItsBytesFromTheFirstWritingOn) {
    const auto once = rewritten<AppInfoContent>(R"({"future":1.0,"large":18446744073709551615})");
    EXPECT_EQ(once, R"({"future":1,"large":1.8446744073709552e+19})");
    EXPECT_EQ(rewritten<AppInfoContent>(once), once);
}

TEST(RecordJSON, AKnownMemberOfTheWrongTypeIsNamed) {
    struct Row {
        const char* json;
        std::string (*rewritten)(std::string_view);
        const char* complaint;
    };
    constexpr auto manifest = rewritten<ProjectManifest>;
    const Row rows[] = {
        {R"({"bundleID":1})", rewritten<AppBinding>, "bundleID: expected a string"},
        {R"({"ascAppID":6448311069})", rewritten<AppBinding>, "ascAppID: expected a string"},
        {R"({"primaryCategory":[]})", rewritten<AppInfoContent>, "primaryCategory: expected a string"},
        {R"({"secondaryCategory":{}})", rewritten<AppInfoContent>, "secondaryCategory: expected a string"},
        {R"({"versionString":1.5})", rewritten<VersionContent>, "versionString: expected a string"},
        {R"({"copyright":true})", rewritten<VersionContent>, "copyright: expected a string"},
        {R"({"releaseType":1})", rewritten<VersionContent>, "releaseType: expected a string"},
        {R"({"demoAccountRequired":"true"})", rewritten<ReviewDetailContent>,
         "demoAccountRequired: expected true or false"},
        {R"({"demoAccountRequired":1})", rewritten<ReviewDetailContent>,
         "demoAccountRequired: expected true or false"},
        {R"({"notes":false})", rewritten<ReviewDetailContent>, "notes: expected a string"},
        {"[]", rewritten<AppInfoContent>, "expected an object"},
        {"null", rewritten<VersionContent>, "expected an object"},
        {"\"\"", rewritten<ReviewDetailContent>, "expected an object"},
        {"{}", manifest, "projectID: missing"},
        {R"({"projectID":null})", manifest, "projectID: missing"},
        {R"({"projectID":1})", manifest, "projectID: expected a string"},
        {R"({"projectID":"x"})", manifest, "projectID: expected a UUID"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.json);
        try {
            ADD_FAILURE() << row.rewritten(row.json);
        } catch (const DecodingError& error) {
            EXPECT_EQ(error.errorDescription(), row.complaint);
        }
    }
}

TEST(RecordJSON, OfAManifestNamesTheFaultWithin) {
    const std::string least = forms().back().least;
    struct Row {
        JSONObject member;
        const char* complaint;
    };
    const Row rows[] = {
        {{{"app", JSONArray{}}}, "app: expected an object"},
        {{{"app", JSONObject{{"bundleID", 1}}}}, "app.bundleID: expected a string"},
        {{{"platforms", "IOS"}}, "platforms: expected an array"},
        {{{"platforms", JSONArray{"IOS", 1}}}, "platforms[1]: expected a string"},
        {{{"primaryLocale", JSONArray{"en-US"}}}, "primaryLocale: expected a string"},
        {{{"locales", JSONObject{}}}, "locales: expected an array"},
        {{{"locales", JSONArray{nullptr}}}, "locales[0]: expected a string"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.complaint);
        try {
            ADD_FAILURE() << rewritten<ProjectManifest>(with(least, row.member));
        } catch (const DecodingError& error) {
            EXPECT_EQ(error.errorDescription(), row.complaint);
        }
    }
}

RC_GTEST_PROP(RecordJSONProperty, UnknownMembersOfEveryRecordSurvive, ()) {
    const auto unknown = *arbitrary::unknownFields();
    for (const auto& form : forms()) {
        const auto json = with(form.all, unknown);
        RC_ASSERT(form.rewritten(json) == json);
    }
}

RC_GTEST_PROP(RecordJSONProperty, AManifestIsReadBack, ()) {
    const auto manifest = *arbitrary::manifest();
    RC_ASSERT(decode<ProjectManifest>(encode(manifest)) == manifest);
}

RC_GTEST_PROP(RecordJSONProperty, ThePlatformsRecordsAreReadBack, ()) {
    const auto listing = *arbitrary::platformListing();
    RC_ASSERT(decode<VersionContent>(encode(listing.version)) == listing.version);
    RC_ASSERT(decode<ReviewDetailContent>(encode(listing.review)) == listing.review);
}

TEST(RecordJSON, AKnownFieldWinsOverAnUnknownOneOfItsName) {
    AppInfoContent info{.primaryCategory = "GAMES",
                        .secondaryCategory = std::nullopt,
                        .unknownFields = {{"primaryCategory", 1}, {"future", 2}}};
    EXPECT_EQ(encodeCompact(info.toJSON()), R"({"future":2,"primaryCategory":"GAMES"})");

    ProjectManifest manifest;
    manifest.unknownFields = {{"format", "other"}, {"schemaVersion", 9}, {"locales", 1}, {"app", 1}};
    EXPECT_EQ(
        encodeCompact(manifest.toJSON()),
        R"({"app":{"bundleID":""},"format":"com.brennoway.kestrin.project","locales":[],"platforms":[],)"
        R"("projectID":"00000000-0000-0000-0000-000000000000","schemaVersion":1})");
}

TEST(RecordJSON, AnEmptyTextInAnOptionalMemberIsPresent) {
    EXPECT_EQ(rewritten<VersionContent>(R"({"copyright":""})"), R"({"copyright":""})");
    EXPECT_EQ(decode<ReviewDetailContent>(R"({"notes":""})").notes, "");
}

TEST(ProjectManifest, IsReadWithDefaultsForAllButItsID) {
    const auto manifest = decode<ProjectManifest>(R"({"projectID":"0f9c1b2a-3d4e-4f50-8a6b-7c8d9e0f1a2b"})");

    EXPECT_EQ(manifest.projectID.text(), "0F9C1B2A-3D4E-4F50-8A6B-7C8D9E0F1A2B");
    EXPECT_EQ(manifest.app, AppBinding{});
    EXPECT_TRUE(manifest.platforms.empty());
    EXPECT_EQ(manifest.primaryLocale, std::nullopt);
    EXPECT_TRUE(manifest.locales.empty());
    EXPECT_TRUE(manifest.unknownFields.empty());
}

TEST(AppBinding, IsReadWithDefaultsForAll) {
    EXPECT_EQ(decode<AppBinding>("{}"), AppBinding{});
    EXPECT_EQ(decode<AppBinding>(R"({"bundleID":null,"ascAppID":null})"), AppBinding{});
}

TEST(ProjectManifest, KeepsTheOrderOfItsLists) {
    const auto manifest = decode<ProjectManifest>(
        R"({"projectID":"0F9C1B2A-3D4E-4F50-8A6B-7C8D9E0F1A2B","platforms":["TV_OS","IOS","WATCH_OS","IOS"],)"
        R"("locales":["fr-FR","de-DE","fr-FR"],"primaryLocale":""})");

    EXPECT_THAT(manifest.platforms, testing::ElementsAre(StorePlatform::tvOS, StorePlatform::iOS,
                                                         StorePlatform{"WATCH_OS"}, StorePlatform::iOS));
    EXPECT_THAT(manifest.locales,
                testing::ElementsAre(StoreLocale{"fr-FR"}, StoreLocale{"de-DE"}, StoreLocale{"fr-FR"}));
    EXPECT_EQ(manifest.primaryLocale, StoreLocale{""});
}

TEST(ReviewDetailContent, IsEmptyOnlyWithoutAnyMember) {
    EXPECT_TRUE(ReviewDetailContent{}.isEmpty());
    EXPECT_TRUE(decode<ReviewDetailContent>(R"({"notes":null})").isEmpty());
    for (const auto* json :
         {R"({"contactFirstName":""})", R"({"contactLastName":""})", R"({"contactPhone":""})",
          R"({"contactEmail":""})", R"({"demoAccountRequired":false})", R"({"demoAccountName":""})",
          R"({"notes":""})", R"({"future":null})", R"({"demoAccountPassword":"secret"})"}) {
        SCOPED_TRACE(json);
        EXPECT_FALSE(decode<ReviewDetailContent>(json).isEmpty());
    }
}

}  // namespace
}  // namespace kestrin
