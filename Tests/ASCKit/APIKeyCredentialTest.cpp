#include "ASCKit/Credentials/APIKeyCredential.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "KestrinCore/StableJSON.h"
#include "Tests/Support/Generators.h"

namespace kestrin {
namespace {

TEST(APIKeyKind, HasOneMemberThatNamesTheCase) {
    EXPECT_EQ(StableJSON::encodeCompact(APIKeyKind::team("i-1").toJSON()), R"({"team":{"issuerID":"i-1"}})");
    EXPECT_EQ(StableJSON::encodeCompact(APIKeyKind::individual().toJSON()), R"({"individual":{}})");
}

RC_GTEST_PROP(APIKeyKind, ReadsWhatItWrites, ()) {
    const auto kind = *rc::gen::oneOf(rc::gen::map(arbitrary::text(), APIKeyKind::team),
                                      rc::gen::just(APIKeyKind::individual()));
    RC_ASSERT(APIKeyKind::fromJSON(kind.toJSON()) == kind);
}

TEST(APIKeyKind, RefusesEveryOtherForm) {
    constexpr const char* kNotOne = "Invalid number of keys found, expected one.";
    const struct {
        const char* json;
        const char* problem;
    } rows[] = {
        {"{}", kNotOne},
        {R"({"team":{"issuerID":"i"},"individual":{}})", kNotOne},
        {R"({"team":{"issuerID":"i"},"other":{}})", kNotOne},
        {R"({"other":{}})", kNotOne},
        {R"({"team":null})", kNotOne},
        {R"({"team":{}})", "team.issuerID: missing"},
        {R"({"team":"i"})", "team: expected an object"},
        {R"({"individual":true})", "individual: expected an object"},
        {"[]", "expected an object"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.json);
        try {
            StableJSON::decode<APIKeyKind>(row.json);
            ADD_FAILURE();
        } catch (const DecodingError& error) {
            EXPECT_EQ(error.errorDescription(), row.problem);
        }
    }
}

}  // namespace
}  // namespace kestrin
