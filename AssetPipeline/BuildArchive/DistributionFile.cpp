#include "AssetPipeline/BuildArchive/DistributionFile.h"

#include "AssetPipeline/BuildArchive/XMLElements.h"

namespace kestrin::DistributionFile {

std::optional<std::map<std::string, std::string>> appBundle(std::string_view xml) {
    std::optional<XMLElements::Attributes> found;
    const auto start = [&](const std::string& name, const XMLElements::Attributes& attributes) {
        if (name == "bundle" && attributes.contains("CFBundleShortVersionString")) found = attributes;
    };
    XMLElements::forEach(xml, {.start = start, .isDone = [&] { return found.has_value(); }});
    return found;
}

}  // namespace kestrin::DistributionFile
