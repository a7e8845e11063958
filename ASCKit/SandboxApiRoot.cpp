#include <cstdlib>

#include "ASCKit/ASCClient.h"

namespace kestrin {

// There is no default: an executable that is meant for the sandbox must not speak to the real service because
// somebody forgot to say where the sandbox is.
URL ASCClient::apiRoot() {
    const char* text = std::getenv("KESTRIN_SANDBOX_ROOT");
    auto root = URL::parse(text ? text : "");
    if (!root) throw ASCError(ASCError::MissingEnvironment{"KESTRIN_SANDBOX_ROOT"});
    return *std::move(root);
}

}  // namespace kestrin
