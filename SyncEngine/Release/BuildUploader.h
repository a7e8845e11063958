// Sends a finished build to App Store Connect and waits for its verdict.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "ASCKit/ASCClient.h"
#include "AssetPipeline/BuildArchive/BuildArchiveInfo.h"
#include "KestrinCore/Clock.h"

namespace kestrin {

// How far an upload has come.
struct BuildUploadProgress {
    // About to send part number `part`, counted from 0; and once more with `part` = `of` when all are sent.
    struct Sending {
        std::size_t part, of;
        bool operator==(const Sending&) const = default;
    };
    // What one look at the upload has shown: its state, "" when there is none.
    struct Processing {
        std::string state;
        bool operator==(const Processing&) const = default;
    };
    struct Hashing {
        bool operator==(const Hashing&) const = default;
    };
    struct Reserving {
        bool operator==(const Reserving&) const = default;
    };
    struct Committing {
        bool operator==(const Committing&) const = default;
    };

    std::variant<Sending, Processing, Hashing, Reserving, Committing> kind;

    bool operator==(const BuildUploadProgress&) const = default;
};

struct BuildUploadResult {
    std::string uploadID;
    std::optional<std::string> buildID;  // absent as long as App Store Connect doesn't list the build
    std::vector<std::string> warnings;   // its sentences, for the user
    bool operator==(const BuildUploadResult&) const = default;
};

class BuildUploader {
 public:
    using OnProgress = std::function<void(const BuildUploadProgress&)>;

    struct Patience {
        Seconds pollInterval;  // between two looks at an upload
        Seconds timeout;       // counted in such intervals, not by a clock
    };

    BuildUploader(ASCClient& ascClient, Patience patience, Sleep sleep = sleepOnSteadyClock)
        : client_(ascClient), patience_(patience), sleep_(std::move(sleep)) {}

    // Hashes the file, has an upload of this version made, sends the file's parts one after another, and waits for the
    // build. Throws
    // - BuildUploadError: MissingVersions before anything else happens, when the version or the build number is absent
    //   or empty; NoUploadOperations when the service names no place to send to; FileChanged when the file isn't the
    //   one that was inspected and hashed any more; what waitForBuild throws;
    // - FileError when the file can't be read, or is gone;
    // - what the client throws. Nothing is taken back at the service: the same build can be uploaded again.
    BuildUploadResult upload(const std::filesystem::path& file, const BuildArchiveInfo& info,
                             const std::string& appID, const OnProgress& onProgress);

    // Looks at the upload until the service has made a build of it. BuildUploadError: Rejected when it won't,
    // StillProcessing when it takes longer than the timeout; for such an upload it can be called again.
    BuildUploadResult waitForBuild(const std::string& uploadID, const OnProgress& onProgress);

 private:
    ASCClient& client_;
    Patience patience_;
    Sleep sleep_;
};

}  // namespace kestrin
