// How a command reaches the network.
#pragma once

#include <memory>

#include "ASCKit/Transport/HTTPTransport.h"

namespace kestrin {

// Every request of a command to the API goes through this. An executable links KestrinRealNetwork, which is libcurl; a test that
// plays a command without a network brings its own.
std::shared_ptr<HTTPTransport> commandTransport();

}  // namespace kestrin
