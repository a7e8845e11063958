// How far a transfer has come, on one line of the terminal that vanishes when the transfer is over.
//
// Anywhere but on a terminal nothing of it is seen (Console::showStatus).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "ASCKit/ASCClient.h"
#include "KestrinCLI/Console.h"
#include "KestrinCore/Clock.h"

namespace kestrin {

// One transfer, from its making to its end.
class TransferLine {
 public:
    explicit TransferLine(Console& console, Clock now = steadyNow);
    ~TransferLine() { console_.showStatus(""); }
    TransferLine(const TransferLine&) = delete;
    TransferLine& operator=(const TransferLine&) = delete;

    // "uploading clip.mov: 1.2 MB of 18.9 MB, 640 kB/s". May be called as often as anything moves; the line changes
    // ten times a second at most, and begins to tell the rate after a second.
    void show(std::string_view what, std::int64_t bytes, std::optional<std::int64_t> total = std::nullopt);

 private:
    std::string rateOf(std::int64_t bytes) const;

    using Time = std::chrono::system_clock::time_point;

    Console& console_;
    Clock now_;
    Time began_;
    std::optional<Time> shown_;
};

// For ASCClient::Options::uploadNews: a line for each upload.
UploadNewsHandler uploadLines(Console& console, Clock now = steadyNow);

}  // namespace kestrin
