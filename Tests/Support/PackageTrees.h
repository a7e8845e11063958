// Package trees in memory, as lists of paths and contents.
#pragma once

#include <map>
#include <string>

#include "KestrinModel/PackageFolder.h"

namespace kestrin {

// Path to content; a folder with nothing in it is its path with a "/" behind it and no content.
using Listing = std::map<std::string, std::string>;

// The smallest manifest that is one; `more` stands before its end: ",\n  \"x\" : 1".
std::string manifestText(const std::string& more = "");

PackageFolder treeOf(const Listing& listing);

Listing listingOf(const PackageFolder& folder);

}  // namespace kestrin
