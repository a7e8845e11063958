// How a sandbox behaves. The defaults are the real service's, where it has them.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "Sandbox/Token.h"

namespace kestrin::sandbox {

inline std::int64_t systemSeconds() {
    return std::chrono::duration_cast<std::chrono::seconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

struct Settings {
    std::vector<AccessKey> keys;

    // Seconds since 1970: judges tokens, the hour of the rate limit and the age of upload addresses. The dates that
    // resources bear come from the store, which has a clock of its own.
    std::function<std::int64_t()> now = systemSeconds;

    std::size_t requestsPerHour = 3600;
    std::size_t requestsMade = 0;  // of this hour, before the sandbox began
    std::size_t defaultPageSize = 50;
    std::size_t largestPage = 200;  // a page holds no more, whatever `limit` asks for

    // How often the state of an asset, a build upload or a build is read before it moves on.
    int processingReads = 2;
    std::uint64_t uploadPartSize = 5 * 1024 * 1024;
    // A file whose name holds one of these texts ends in FAILED, whatever is in it.
    std::vector<std::string> unprocessableNames{"unprocessable"};
    // A build whose file's name holds one of these is taken with a warning.
    std::vector<std::string> questionableNames{"questionable"};
    // Whether the content of media decides: a picture or film that fits no specification ends in FAILED.
    bool inspectsMedia = true;

    // Whether a language that the app info gets appears in the versions in preparation too.
    bool linksLocales = false;

    bool compresses = true;  // replies to clients that accept it
};

}  // namespace kestrin::sandbox
