// Which names of a fetched listing can be worked with.
#pragma once

#include "SyncEngine/Remote/RemoteListing.h"

namespace kestrin::RemoteNames {

// The ids and file names of assets come from the service and later stand for files: a download is kept under the id
// of its asset, an export is named after the file. Throws PackageNameError unless each id is one plain path component
// on one line (ids of a slot are joined by line feeds) and each file name is one, or empty, which says that there is
// none. Locales, slugs and platforms are looked at where they would enter a package (PackageNames).
void check(const RemoteListing& listing);

}  // namespace kestrin::RemoteNames
