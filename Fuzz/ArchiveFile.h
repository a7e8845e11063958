// Bytes as a file that lives in memory alone.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "KestrinCore/Files.h"

namespace kestrin {

// Holds the bytes of one input at a time; made once, for a new one for every input would take most of the time.
class ArchiveFile {
 public:
    ArchiveFile() : file_(memfd_create("archive", MFD_CLOEXEC)) {}

    void hold(const std::uint8_t* data, std::size_t size) const {
        const auto written = pwrite(file_.number(), data, size, 0);
        if (written != static_cast<ssize_t>(size) || ftruncate(file_.number(), static_cast<off_t>(size)) != 0)
            std::abort();
    }
    std::filesystem::path path() const { return "/proc/self/fd/" + std::to_string(file_.number()); }

 private:
    files::Descriptor file_;
};

}  // namespace kestrin
