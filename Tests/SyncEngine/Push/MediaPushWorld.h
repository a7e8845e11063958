// A library, a slot and a scripted App Store Connect, for tests of bringing media to a page.
#pragma once

#include <string>
#include <vector>

#include "SyncEngine/Push/MediaPushContext.h"
#include "SyncEngine/Push/MediaPushError.h"
#include "Tests/Support/ScriptedClient.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {

struct MediaPushWorld : ScriptedClient {
    using Steps = std::vector<ScriptedTransport::Step>;

    explicit MediaPushWorld(Steps script = {}) : ScriptedClient(std::move(script)) {
        context.libraryID = "7";
        context.locate = [this](const std::string& path) {
            const auto file = folder / path;
            return std::filesystem::exists(file) ? std::optional(file) : std::nullopt;
        };
        context.processingTimeout = std::chrono::seconds(900);
        context.pollInterval = std::chrono::seconds(5);
        context.sleep = time.sleep();
        context.stop = stopSource.get_token();
    }

    // Every request so far, one a line.
    std::string requests() const {
        std::string lines;
        for (std::size_t i = 0; i < server->sent.size(); ++i) lines += line(i) + "\n";
        return lines;
    }

    TemporaryFolder folder;
    MediaPushContext context{};
    RunState state;
};

// The member of a JSON object at the end of the names; throws where there is none.
inline const JSONValue& member(const JSONValue& value, std::initializer_list<const char*> names) {
    const auto* found = &value;
    for (const auto* name : names) found = &found->objectValue()->at(name);
    return *found;
}

// The sentence of a media push error that `action` throws, or "".
template <class Action>
std::string failureOf(Action&& action) {
    try {
        action();
    } catch (const MediaPushError& error) {
        return error.errorDescription();
    }
    return "";
}

}  // namespace kestrin
