// Where a transcript is played: a fresh folder, a home of its own, and a cleaned environment.
//
// Each exchange is a run of /bin/sh that first reads "~/.profile" if the transcript has made one, which is how a
// variable is set for all that follows. The environment:
//     PATH       the programs under test, the tools of Tests/EndToEnd/tools, then the system's
//     HOME       an empty folder of the stage
//     TMPDIR     another one
//     FIXTURES   the input files that transcripts share
//     LC_ALL     C.UTF-8
//     TZ         UTC
// and the options of sanitizers and coverage, as they stand outside. Of root's powers nothing is left, so that a
// file without write permission can't be written whoever runs the tests.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "KestrinCore/Files.h"
#include "Tests/EndToEnd/Runner/Transcript.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin::endtoend {

class Stage {
 public:
    struct Props {
        std::map<std::string, std::filesystem::path> programs;  // by the name under which they are typed
        std::filesystem::path tools, fixtures;                  // folders
    };

    explicit Stage(const Props& props);
    // Ends what the transcript has left running, and removes the folder.
    ~Stage();
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    // Plays one exchange and tells what was shown. Both streams are one queue of pieces in which each piece knows
    // its stream, so that their order is the true one; the price is that a single write of more than some
    // 200,000 bytes fails. A command that has run for `kPatience` is killed, and the last line shown says so.
    std::vector<std::string> play(const Exchange& exchange);

 private:
    // A datagram socket that keeps the pieces of both streams in the order in which they were written.
    class Output {
     public:
        explicit Output(const std::filesystem::path& folder);
        const files::Descriptor& queue() const { return queue_; }
        const files::Descriptor& standardOutput() const { return standardOutput_; }
        const files::Descriptor& standardError() const { return standardError_; }
        // The next piece; nothing when the queue is empty for now.
        std::vector<Piece> pieces();

     private:
        std::string errorAddress_, buffer_;
        files::Descriptor queue_, standardOutput_, standardError_;
    };

    [[noreturn]] void becomeShell(const Exchange& exchange, int input);
    pid_t start(const Exchange& exchange);

    TemporaryFolder folder_;
    std::vector<std::string> environment_;
    Output output_;
    std::vector<pid_t> groups_;  // one process group for each exchange
};

}  // namespace kestrin::endtoend
