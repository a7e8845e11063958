// What an export to a fastlane deliver folder wrote, and what it left behind.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace kestrin {

struct FastlaneExportSummary {
    std::size_t localeCount = 0;            // entries of the manifest's locales, with or without texts
    std::size_t textFileCount = 0;          // text files that hold a text now
    std::size_t screenshotCount = 0;        // screenshots copied
    std::size_t remoteScreenshotCount = 0;  // screenshots of which there is no local copy
    std::size_t otherMediaCount = 0;        // items that are no screenshots, which is all that deliver takes
    std::vector<std::string> missingFiles;  // paths in the project that have no readable file

    bool operator==(const FastlaneExportSummary&) const = default;
};

}  // namespace kestrin
