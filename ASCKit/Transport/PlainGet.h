// Getting what lies at an address that the API has handed out and that isn't the API's own: pictures.
#pragma once

#include <functional>
#include <stop_token>
#include <string>

#include "ASCKit/URL.h"

namespace kestrin {

// The bytes at an address. May be called from several threads at once; ends with Cancelled when a stop is requested.
using Fetch = std::function<std::string(const URL&, const std::stop_token&)>;

// A plain GET: no token, no retries, and the body counts whatever the status. Each call goes over a connection that no
// other call is using, a new one when there is none, and leaves it to the next. Throws ASCError: Transport without a
// reply, InvalidResponse for one that isn't HTTP or holds more than 128 MiB, which no picture does.
Fetch plainGet();

}  // namespace kestrin
