#include "AssetPipeline/BuildArchive/BuildArchiveInfo.h"

namespace kestrin {

BuildArchiveInfo BuildArchiveInfo::with(const std::optional<std::string>& otherShortVersion,
                                        const std::optional<std::string>& otherBuildVersion) const {
    auto copy = *this;
    if (otherShortVersion) copy.shortVersion = otherShortVersion;
    if (otherBuildVersion) copy.buildVersion = otherBuildVersion;
    return copy;
}

}  // namespace kestrin
