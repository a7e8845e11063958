#include "KestrinModel/ProjectFormat.h"

#include <gtest/gtest.h>

#include <limits>

#include "KestrinModel/ProjectFormatError.h"
#include "Tests/Support/OtherLanguage.h"

namespace kestrin {
namespace {

using E = ProjectFormatError;

const JSONValue kManifest = JSONObject{{"format", ProjectFormat::identifier}, {"x", 1}};

E::Kind refusalOf(std::int64_t version) {
    try {
        ProjectFormat::migrate(kManifest, version);
    } catch (const E& error) {
        return error.kind;
    }
    ADD_FAILURE() << "migrated";
    return E::NotAPackage{};
}

TEST(ProjectFormat, LeavesAManifestOfTheCurrentVersionAlone) {
    EXPECT_EQ(ProjectFormat::migrate(kManifest, 1), kManifest);
}

TEST(ProjectFormat, RefusesVersionsBelowOne) {
    for (const std::int64_t version :
         {std::int64_t{0}, std::int64_t{-1}, std::numeric_limits<std::int64_t>::min()}) {
        EXPECT_EQ(refusalOf(version), E::Kind(E::InvalidSchemaVersion{})) << version;
    }
}

TEST(ProjectFormat, RefusesVersionsAboveTheCurrentOneByTheirNumber) {
    for (const std::int64_t version : {std::int64_t{2}, std::numeric_limits<std::int64_t>::max()}) {
        EXPECT_EQ(refusalOf(version), E::Kind(E::NewerSchemaVersion{version})) << version;
    }
}

TEST(ProjectFormatError, SaysEachCaseInOneSentence) {
    const struct {
        E::Kind kind;
        const char* sentence;
    } rows[] = {
        {E::WrongFormat{"com.example.other"},
         "This isn’t a Kestrin project. Its manifest is for “com.example.other”."},
        {E::NewerSchemaVersion{2},
         "This project was saved by a newer version of Kestrin. Update Kestrin to open it."},
        {E::CorruptFile{"App/info.json"}, "This project’s file “App/info.json” is damaged."},
        {E::NotAPackage{}, "This file isn’t a Kestrin project package."},
        {E::MissingManifest{}, "This project is missing its Kestrin.json manifest."},
        {E::CorruptManifest{}, "This project’s Kestrin.json manifest is damaged."},
        {E::InvalidSchemaVersion{}, "This project’s manifest has an invalid schema version."},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.sentence);
        EXPECT_EQ(E(row.kind).errorDescription(), row.sentence);
    }
}

TEST(ProjectFormatError, IsLookedUpUnderTheKeyOfItsCase) {
    const std::pair<E::Kind, std::string> rows[] = {
        {E::WrongFormat{"x"}, "projectFormatErrorWrongFormat"},
        {E::NewerSchemaVersion{2}, "projectFormatErrorNewerSchemaVersion"},
        {E::CorruptFile{"x"}, "projectFormatErrorCorruptFile"},
        {E::NotAPackage{}, "projectFormatErrorNotAPackage"},
        {E::MissingManifest{}, "projectFormatErrorMissingManifest"},
        {E::CorruptManifest{}, "projectFormatErrorCorruptManifest"},
        {E::InvalidSchemaVersion{}, "projectFormatErrorInvalidSchemaVersion"},
    };
    std::map<std::string, std::string> messages;
    for (const auto& [kind, key] : rows) messages[key] = "translated " + key;
    const OtherLanguage language(messages);

    for (const auto& [kind, key] : rows) EXPECT_EQ(E(kind).errorDescription(), "translated " + key);
}

}  // namespace
}  // namespace kestrin
