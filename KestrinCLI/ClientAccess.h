// How a command reaches App Store Connect.
#pragma once

#include "ASCKit/ASCClient.h"
#include "KestrinCLI/Console.h"

namespace kestrin {

// A client for the API key that the process environment names. Throws ASCError, before any request.
ASCClient makeClient();

// How many requests the key has left, as a note: "({remaining} of {limit} requests left this hour)". Nothing when
// the service hasn't said.
void noteRateLimit(const ASCClient& client, Console& console);

}  // namespace kestrin
