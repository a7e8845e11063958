#include "ASCKit/Transport/CurlTransport.h"
#include "KestrinCLI/Network.h"

namespace kestrin {

std::shared_ptr<HTTPTransport> commandTransport() {
    return std::make_shared<CurlTransport>();
}

}  // namespace kestrin
