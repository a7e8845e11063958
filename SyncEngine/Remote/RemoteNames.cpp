#include "SyncEngine/Remote/RemoteNames.h"

#include "KestrinModel/PackageNameError.h"
#include "KestrinModel/PlainName.h"

namespace kestrin::RemoteNames {
namespace {

[[noreturn]] void refuse(const std::string& name) {
    throw PackageNameError(PackageNameError::NotAName{name});
}

void checkAsset(const std::string& id, const std::string& fileName) {
    if (!isPlainPathComponent(id) || id.find('\n') != std::string::npos) refuse(id);
    if (!fileName.empty() && !isPlainPathComponent(fileName)) refuse(fileName);
}

void checkMedia(const LocalizedMedia& media) {
    for (const auto& [locale, slots] : media) {
        for (const auto& [slot, items] : slots) {
            for (const auto& item : items) {
                if (const auto* remote = item.asRemote()) checkAsset(remote->assetID, remote->fileName);
            }
        }
    }
}

}  // namespace

void check(const RemoteListing& listing) {
    for (const auto& [id, asset] : listing.assets) checkAsset(id, asset.fileName);
    for (const auto& [platform, content] : listing.platforms) checkMedia(content.media);
    for (const auto& [slug, page] : listing.pages) checkMedia(page.media);
    for (const auto& [slug, experiment] : listing.experiments) {
        for (const auto& [name, treatment] : experiment.treatments) checkMedia(treatment.media);
    }
}

}  // namespace kestrin::RemoteNames
