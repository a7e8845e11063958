#include <stdexcept>

#include "ASCKit/ASCClient.h"

namespace kestrin {

URL ASCClient::apiRoot() {
    static const auto root = URL::parse(KESTRIN_API_ROOT);
    if (!root) throw std::logic_error("KESTRIN_API_ROOT was set to what isn't an address");
    return *root;
}

}  // namespace kestrin
