// Names that may become one component of a path.
#pragma once

#include <string_view>

namespace kestrin {

// Whether a name that came from outside (a locale, a slug, a platform) can be the name of one folder or file: it
// isn't empty, isn't "." or "..", and has neither "/" nor NUL in it. Joined to a folder, such a name never leads
// out of it. How long a name may be is for the file system to say.
bool isPlainPathComponent(std::string_view name);

}  // namespace kestrin
