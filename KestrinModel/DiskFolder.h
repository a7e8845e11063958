// A folder of a package on disk, read no further than it is asked for.
//
// Only the root may be reached through a symbolic link. Below it every step is taken from the folder above without
// following links, so that no name in a package leads out of it. At most one road from the root downwards is open
// at a time: walking a tree depth first opens each folder once, and needs no more descriptors than the tree is
// deep.
#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "KestrinCore/Files.h"
#include "KestrinModel/DiskEntries.h"

namespace kestrin {

class DiskFolder {
 public:
    // What is read of all files together, in bytes. Each file alone may be small enough and their number exhaust the
    // memory. As many pages, locales and platforms as App Store Connect allows, each text at its limit, come to a
    // quarter of it. JSON made for the purpose takes nearly forty times its bytes in memory: a package from elsewhere
    // can make us take a gigabyte and some, and no more.
    static constexpr std::uintmax_t kMaximumTotalSize = std::uintmax_t{32} << 20;

    // The root, opened here. FileError when it can't be, its reason ENOTDIR for anything but a folder.
    explicit DiskFolder(std::filesystem::path root);
    // A folder in `parent`, which must outlive it; opened when needed. `path` is relative to the root, for messages.
    DiskFolder(DiskFolder& parent, std::string name, std::string path);
    ~DiskFolder();
    DiskFolder(const DiskFolder&) = delete;
    DiskFolder& operator=(const DiskFolder&) = delete;

    // All of these throw FileError, naming the path relative to the root (the root itself as it was given).

    std::vector<DiskEntries::Entry> entries();

    // The content of a regular file; FileTooLargeError above `limit` bytes. PackageTooLargeError as soon as what was
    // read of the whole tree comes to more than kMaximumTotalSize.
    std::string contents(const std::string& name, std::uintmax_t limit);

    // Whether the regular file holds exactly these bytes. One of another size isn't read.
    bool holds(const std::string& name, std::string_view bytes);

    // Of the entry itself, never of what a link leads to.
    struct stat status(const std::string& name);
    struct stat status();

    // Of the root: whether the path (links followed) leads to this very folder, which stays open.
    bool isAt(const std::filesystem::path& place) const;

    // Valid until another folder of the tree is used.
    int descriptor();

    // The path of an entry, or of the folder itself, for messages.
    std::filesystem::path pathOf(std::string_view name) const;
    std::filesystem::path path() const;

 private:
    DiskFolder& top() { return parent_ ? parent_->top() : *this; }
    void close();
    void makeWay(DiskFolder& child);
    files::Descriptor openFile(const std::string& name);

    DiskFolder* parent_ = nullptr;  // none: the root
    DiskFolder* open_ = nullptr;    // the one child that is open
    std::string name_;              // in the parent
    std::string path_;              // relative to the root, which is ""
    std::filesystem::path root_;    // of the root, as it was given
    std::uintmax_t read_ = 0;       // of the root: bytes of contents() so far
    files::Descriptor descriptor_;
};

}  // namespace kestrin
