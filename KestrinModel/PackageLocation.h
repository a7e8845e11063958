// Where a package lies: the folder that holds it, open, and its name there.
#pragma once

#include <filesystem>
#include <string>

#include "KestrinCore/Files.h"

namespace kestrin {

struct PackageLocation {
    std::filesystem::path given;  // as the user named it; for messages
    files::Descriptor parent;
    std::string name;
    bool exists = false;  // a folder is there

    // A path that is a symbolic link to a package, or leads through links, is followed here, so that what replaces
    // the package takes the place of the folder and the link stays. Throws FileError when the path isn't a folder
    // and isn't free, or when the folder that would hold it can't be opened.
    static PackageLocation of(const std::filesystem::path& path);
};

}  // namespace kestrin
