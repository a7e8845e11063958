#include <gtest/gtest.h>

#include <cstdlib>

#include "ASCKit/ASCClient.h"
#include "Tests/Support/TestCredential.h"

namespace kestrin {
namespace {

TEST(ApiRoot, IsTheOneOfTheBuildWhateverTheEnvironmentSays) {
    setenv("KESTRIN_SANDBOX_ROOT", "http://127.0.0.1:1", 1);
    setenv("KESTRIN_API_ROOT", "http://127.0.0.1:1", 1);

    EXPECT_EQ(ASCClient::apiRoot().absoluteString(), KESTRIN_API_ROOT);
    EXPECT_EQ(ASCClient(testCredential()).root(), ASCClient::apiRoot());

    unsetenv("KESTRIN_SANDBOX_ROOT");
    unsetenv("KESTRIN_API_ROOT");
}

}  // namespace
}  // namespace kestrin
