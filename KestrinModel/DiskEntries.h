// Entries of folders on disk, addressed by an open folder and one name.
//
// No operation follows a symbolic link: what a package holds may come from anywhere, and a link in it must lead
// nobody out of it.
#pragma once

#include <sys/stat.h>

#include <string>
#include <vector>

#include "KestrinCore/Files.h"

namespace kestrin::DiskEntries {

enum class Kind {
    file,
    folder,
    other,  // a symbolic link, a named pipe, a device, …
};

struct Entry {
    std::string name;  // as its bytes are on disk
    Kind kind;
};

// The folder `name` in `parent`; not open, with errno set, for anything but a folder.
files::Descriptor openFolder(int parent, const std::string& name);

// What an open folder holds, "." and ".." left out, in no order. std::system_error when it can't be read.
std::vector<Entry> list(int folder);

// Gives `target` the entry `name` of `source`, which isn't a folder: as a second hard link, or, where the file
// system can't link it, as a copy with all that can be handed on. Nothing may be of that name in `target` yet.
// std::system_error; FileError, with the name alone, for bytes that can't be copied.
void linkOrCopy(int source, int target, const std::string& name);

// Hands on from one open file or folder to another of ours: permissions; owner, group and extended attributes
// (access lists are such) as far as this user and the file system let them be. std::system_error when the
// permissions can't be set.
void handOnPermissions(int source, int target);
// The time of the last change.
void handOnTimes(int source, int target);

// Removes the entry and all that is in it. What can't be removed stays; whoever left a folder of ours behind tries
// again at the next save.
void remove(int parent, const std::string& name);

}  // namespace kestrin::DiskEntries
