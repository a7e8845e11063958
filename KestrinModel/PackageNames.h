// Which names may stand in a project package.
//
// Locales, slugs and platform names become names of files and folders. They come from App Store Connect, from
// other folders and from the model's callers, so each is looked at before the first byte is written: none may lead
// out of the package or fall on one of the package's own files. Nothing is ever replaced by a "safe" spelling, as
// two names could then become one.
#pragma once

#include <string_view>
#include <vector>

#include "KestrinModel/Project.h"

namespace kestrin::PackageNames {

// One plain component of a path: UTF-8 of 1 to 255 bytes, neither "." nor "..", no "/" and no NUL.
bool isPlain(std::string_view name);

// Throws PackageNameError for a project with a locale, slug or platform that can't have its file or folder, with
// a platform on a name of the package's own ("App", "Kestrin.json", …), or with two platforms on one folder.
// manifest.locales and manifest.platforms are data, not names: they may hold anything.
void check(const Project& project);

// The pieces of a path relative to the package, empty ones dropped. Throws PackageNameError unless there is one and
// all are plain.
std::vector<std::string> pieces(std::string_view path);

}  // namespace kestrin::PackageNames
