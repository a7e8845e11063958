// A folder of a project package as a tree of names in memory: what the package holds, and what is to change in it.
//
// A folder that lies on disk is listed when it is first looked into, and a file is read when its content is asked
// for: a package may hold gigabytes of media, which nobody opens here. Changes stay in memory. PackageStage writes
// the changed tree.
//
// Names are compared as text: a folder in decomposed spelling is found under its composed name, and what is
// replaced keeps the spelling it has on disk. Where a folder holds two spellings of one name, the one whose bytes
// are NFC is meant, else the first in byte order; the other is kept as it is, and goes only when something that
// takes all of a kind away takes that name away. Names that aren't UTF-8 are found only under exactly their bytes.
//
// A symbolic link, a named pipe or another special file is neither a file nor a folder: nothing here reads it,
// changes it or takes it away, unless a file or folder of its name has to be written.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "KestrinModel/DiskFolder.h"

namespace kestrin {

class PackageFolder {
 public:
    // The largest file that is read or written, and all files that are read or written together (those of the
    // project: what nobody asks for is neither), in bytes: far above any text or list of a listing, and small enough
    // that no package from elsewhere can exhaust the memory. What is refused on reading is refused on writing, too.
    static constexpr std::uintmax_t kMaximumFileSize = std::uintmax_t{16} << 20;
    static constexpr std::uintmax_t kMaximumTotalSize = DiskFolder::kMaximumTotalSize;

    PackageFolder() = default;  // new and empty
    explicit PackageFolder(std::unique_ptr<DiskFolder> disk);
    PackageFolder(PackageFolder&&) = default;
    PackageFolder& operator=(PackageFolder&&) = default;

    // Looking. What the disk refuses is a FileError.

    bool isEmpty() const;                           // holds nothing at all, links included
    bool contains(std::string_view name) const;     // a file or a folder
    bool containsAny(std::string_view name) const;  // a link or a special file too
    bool hasFile(std::string_view name) const;
    const PackageFolder* folder(std::string_view name) const;  // nullptr when there is none
    PackageFolder* folder(std::string_view name);

    // Of a regular file; nullopt when there is none of that name. FileTooLargeError, PackageTooLargeError.
    std::optional<std::string> contents(std::string_view name) const;

    // In ascending order of the names; of two spellings of one name only the one that is meant.
    std::vector<std::string> fileNames() const;
    std::vector<std::string> folderNames() const;

    // Relative to the package; "" for the package itself.
    std::string pathOf(std::string_view name) const;

    // Changing.

    // Nothing happens when a regular file of that name holds exactly these bytes, so that it keeps its identity on
    // disk; otherwise whatever has the name makes way. FileTooLargeError; PackageTooLargeError as soon as what was
    // set in the whole tree, files that stayed as they were included, comes to more than kMaximumTotalSize.
    void setFile(std::string_view name, std::string bytes);

    // The folder of that name; anything else of the name makes way for a new one.
    PackageFolder& directory(std::string_view name);

    // A file to be copied from elsewhere when the tree is written. Left alone when a regular file of that name has
    // the same size. FileError when `source` can't be read.
    void addFile(std::string_view name, const std::filesystem::path& source);

    void remove(std::string_view name);

    // Removes every folder, or every file and folder, that `isStale`; every spelling of a name is asked about.
    void removeFolders(const std::function<bool(const std::string& name, PackageFolder& folder)>& isStale);
    void removeAll(const std::function<bool(const std::string& name)>& isStale);

    // What PackageStage needs to write the tree.

    struct OnDisk {};  // a file as it lies on disk
    struct New {
        std::variant<std::string, std::filesystem::path> content;  // bytes, or the file to copy
        bool replacesFile = false;                                 // a regular file of this name is on disk
    };
    struct Special {};
    using Child = std::variant<OnDisk, New, std::unique_ptr<PackageFolder>, Special>;

    // By text; spellings of the same name side by side, the one that is meant first.
    struct SpellingLess {
        bool operator()(const std::string& a, const std::string& b) const;
    };
    using Children = std::map<std::string, Child, SpellingLess>;

    const Children& children() const;
    DiskFolder* disk() const { return disk_.get(); }  // nullptr: a new folder

    bool hasChangedEntries() const { return changed_; }  // its own, not those of folders in it
    bool isChanged() const;                              // anything in it, at any depth

 private:
    using ByteCount = std::shared_ptr<std::uintmax_t>;
    PackageFolder(std::unique_ptr<DiskFolder> disk, std::string path, ByteCount set);

    void list() const;
    Children::iterator find(std::string_view name) const;
    bool isMeant(Children::const_iterator child) const;
    template <class Kind>
    std::vector<std::string> namesOf() const;
    bool hasSameSize(Children::const_iterator child, std::uintmax_t size) const;
    void put(std::string_view name, std::variant<std::string, std::filesystem::path> content);

    std::unique_ptr<DiskFolder> disk_;  // before children_: their folders on disk lead back to it
    std::string path_;
    mutable Children children_;
    mutable bool isListed_ = false;
    bool changed_ = false;
    ByteCount set_ = std::make_shared<std::uintmax_t>(0);  // bytes of setFile() so far, in the whole tree
};

}  // namespace kestrin
