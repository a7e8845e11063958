#include "KestrinCLI/ClientAccess.h"

#include <fmt/format.h>
#include <unistd.h>

#include <map>
#include <string>
#include <string_view>

#include "ASCKit/Credentials/EnvironmentCredentials.h"
#include "KestrinCLI/Network.h"
#include "KestrinCLI/TransferLine.h"
#include "KestrinCLI/Waiting.h"

namespace kestrin {
namespace {

std::map<std::string, std::string> processEnvironment() {
    std::map<std::string, std::string> environment;
    for (char** entry = environ; entry && *entry; ++entry) {
        const std::string_view variable(*entry);
        const auto equals = variable.find('=');
        if (equals == std::string_view::npos) continue;
        environment.emplace(variable.substr(0, equals), variable.substr(equals + 1));
    }
    return environment;
}

}  // namespace

ASCClient makeClient(Console& console) {
    ASCClient::Options options;
    options.sleep = commandSleep();
    options.waitNotes = waitNotes(console);
    options.uploadNews = uploadLines(console);
    TokenProvider tokens(JWTSigner(EnvironmentCredentials::load(processEnvironment())));
    return ASCClient(std::move(tokens), commandTransport(), std::move(options));
}

WaitNotes waitNotes(Console& console) {
    WaitNotes notes;
    notes.tell = [&console](const std::string& what, std::chrono::minutes soFar) {
        console.note(fmt::format("{} ({} min so far)", what, soFar.count()));
    };
    notes.now = commandClock();
    return notes;
}

void noteRateLimit(const ASCClient& client, Console& console) {
    const auto& status = client.rateLimit();
    if (status)
        console.note(fmt::format("({} of {} requests left this hour)", status->remaining, status->limit));
}

}  // namespace kestrin
