#include <gtest/gtest.h>

#include <cstdlib>

#include "ASCKit/ASCClient.h"

namespace kestrin {
namespace {

TEST(SandboxApiRoot, IsTheOneOfTheEnvironment) {
    setenv("KESTRIN_SANDBOX_ROOT", "http://127.0.0.1:4711", 1);
    EXPECT_EQ(ASCClient::apiRoot().absoluteString(), "http://127.0.0.1:4711");
}

TEST(SandboxApiRoot, WithoutAnAddressThereIsNone) {
    for (const char* value : {"", "not an address"}) {
        setenv("KESTRIN_SANDBOX_ROOT", value, 1);
        EXPECT_THROW(ASCClient::apiRoot(), ASCError);
    }
    unsetenv("KESTRIN_SANDBOX_ROOT");
    try {
        ASCClient::apiRoot();
        FAIL();
    } catch (const ASCError& error) {
        EXPECT_EQ(error, ASCError(ASCError::MissingEnvironment{"KESTRIN_SANDBOX_ROOT"}));
    }
}

}  // namespace
}  // namespace kestrin
