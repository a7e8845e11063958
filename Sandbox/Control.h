// The addresses below /sandbox/: how a person or a test at this machine looks at a running sandbox and changes it
// behind the client's back. They take no token, aren't logged, counted or struck by faults; the server listens on the
// loopback address alone.
//
//     GET    /sandbox/state                     all resources, as seeds::fromDocument reads them
//     PUT    /sandbox/state                     starts again with such a document
//     GET    /sandbox/resources/TYPE?PATH=VALUE those of which every path (Store::valuesAt) leads to the value
//     PATCH  /sandbox/resources/TYPE?PATH=VALUE changes them: {"attributes": {…}, "relationships": {…}}
//     DELETE /sandbox/resources/TYPE?PATH=VALUE removes them with what they own
//     POST   /sandbox/resources/TYPE            adds one: {"id", "attributes", "relationships"}, all optional
//     POST   /sandbox/review?PATH=VALUE         {"verdict": "begin", "approve" or "reject"} on every submission that
//                                               is with App Review
//     GET    /sandbox/log                       every request so far
//     DELETE /sandbox/log
//     GET    /sandbox/faults                    one line each
//     POST   /sandbox/faults                    adds the lines of the body
//     DELETE /sandbox/faults
//     PATCH  /sandbox/settings                  {"requestsPerHour", "requestsMade", "processingReads"}, any of them
//     DELETE /sandbox/keys/ID                   revokes the key
//
// What can't be done is an error document: 404 for a path, type, resource or key that there isn't, 400 for the rest.
#pragma once

#include <string_view>

#include "Sandbox/Faults.h"
#include "Sandbox/HTTPMessage.h"
#include "Sandbox/RateLimit.h"
#include "Sandbox/RequestLog.h"
#include "Sandbox/State.h"
#include "Sandbox/Token.h"

namespace kestrin::sandbox {

inline constexpr std::string_view kControlPathStart = "/sandbox/";

// What there is to look at and to change.
struct ControlDesk {
    State& state;
    Faults& faults;
    RequestLog& log;
    RateLimit& rateLimit;
    TokenVerifier& tokens;
};

// Throws Refusal.
HTTPReply answerControl(const ControlDesk& desk, const HTTPRequest& request);

}  // namespace kestrin::sandbox
