// How a command reaches App Store Connect.
#pragma once

#include "ASCKit/ASCClient.h"
#include "KestrinCLI/Console.h"

namespace kestrin {

// A client for the API key that the process environment names. Its long waits are told on standard error, and
// on a terminal how far its uploads are. Throws ASCError, before any request.
ASCClient makeClient(Console& console);

// "App Store Connect is still processing shot.png (2 min so far)" as a note, each minute.
WaitNotes waitNotes(Console& console);

// How many requests the key has left, as a note: "({remaining} of {limit} requests left this hour)". Nothing when
// the service hasn't said.
void noteRateLimit(const ASCClient& client, Console& console);

}  // namespace kestrin
