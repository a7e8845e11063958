// Reading and replacing single files.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "KestrinCore/FileError.h"

namespace kestrin::files {

// An open file descriptor, closed when it goes.
class Descriptor {
 public:
    Descriptor() = default;
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept;
    ~Descriptor();

    int number() const { return number_; }
    explicit operator bool() const { return number_ >= 0; }

 private:
    int number_ = -1;
};

// The regular file at `path` (links followed), for reading. FileError for anything else: a folder, or a named pipe, which
// doesn't hold the program up.
Descriptor openRegular(const std::filesystem::path& path);

// In bytes. `path` is for the error.
std::uint64_t sizeOf(const Descriptor& file, const std::filesystem::path& path);

// The whole content. FileTooLargeError above `limit` bytes; FileError for what can't be read, a folder or another
// thing that isn't a regular file included.
std::string readWhole(const std::filesystem::path& path, std::uintmax_t limit);

// The same for an open file; `path` is for the error.
std::string readWhole(const Descriptor& file, const std::filesystem::path& path, std::uintmax_t limit);

// Whether both are open and the same file on the disk.
bool areSameFile(const Descriptor& a, const Descriptor& b);

// Writes all bytes or throws FileError naming `path`.
void writeAll(const Descriptor& file, std::string_view bytes, const std::filesystem::path& path);

// The bytes of one open file, from where it stands, into another, in pieces of the same small memory whatever its size.
// FileError naming the path of the one that failed.
void copyAll(const Descriptor& source, const std::filesystem::path& sourcePath, const Descriptor& target,
             const std::filesystem::path& targetPath);

// Whether a write returns only when the disk has it. A flush may take as long as everything else together, so it is
// for what can't be had again; whoever writes a folder of files that can be written again leaves it out.
enum class Flush { yes, no };

// Puts `bytes` at `path` in one step: a temporary file in the same folder, flushed to the disk, renamed over the
// target. Whoever reads the path, after a crash too, finds the old content or the new, whole (without a flush: not
// after a crash of the system). The folder must exist. Throws FileError, and then nothing has changed; only a process
// that was killed leaves its temporary file behind, ".kestrin-{UUID}", which nobody reads.
//
// A file that is replaced hands on its permissions. A link is replaced itself: it is never written through, so that
// nothing outside of the folder changes, wherever it points. Anything else at `path` is an error.
void writeAtomically(const std::filesystem::path& path, std::string_view bytes, Flush flush = Flush::yes);

// Takes the next bytes of something that is made piece by piece.
using TakePiece = std::function<void(std::string_view)>;

// The same for content that is never in memory whole: `makeContent` hands its pieces, in order, to what it is given. If
// it throws, nothing has changed.
void writeAtomically(const std::filesystem::path& path,
                     const std::function<void(const TakePiece&)>& makeContent, Flush flush = Flush::yes);

// Puts a copy of the file at `source` (links followed) at `target` in one step, as writeAtomically does, with the
// permissions of the source. Throws FileError naming the path that failed, also for a source that isn't a regular file,
// and then nothing has changed.
void copyAtomically(const std::filesystem::path& source, const std::filesystem::path& target,
                    Flush flush = Flush::yes);

// The same for a source that is open already, and for all of it, wherever it stands. `sourcePath` is for the error.
void copyAtomically(const Descriptor& source, const std::filesystem::path& sourcePath,
                    const std::filesystem::path& target, Flush flush = Flush::yes);

// Makes the folder and those on the way to it that aren't there; one that is there already is fine. Throws FileError.
void createFolders(const std::filesystem::path& folder);

// Whether this user may open the file at `path` for reading (links followed).
bool isReadable(const std::filesystem::path& path);

}  // namespace kestrin::files
