// The distribution file of an installer package, which names the app that it installs.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace kestrin::DistributionFile {

// The attributes of the first element `bundle`, wherever it stands, that has CFBundleShortVersionString; other bundles
// are those of frameworks and the like. nullopt without one; BuildArchiveError::malformed for what isn't XML.
std::optional<std::map<std::string, std::string>> appBundle(std::string_view xml);

}  // namespace kestrin::DistributionFile
