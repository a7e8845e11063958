#include "SyncEngine/Pull/ProjectPuller.h"

#include "ASCKit/Resources/Apps.h"
#include "KestrinModel/PackageNames.h"
#include "SyncEngine/Pull/PullService.h"
#include "SyncEngine/Pull/SyncError.h"
#include "SyncEngine/Remote/RemoteNames.h"

namespace kestrin {
namespace {

// The same updates on the project whose files weren't replaced by assets.
Project updatedWithoutResolution(Project project, const PullResult& merged) {
    for (const auto& key : merged.updatedKeys) ContentGraph::copy(key, merged.project, project);
    project.manifest = merged.project.manifest;
    return project;
}

}  // namespace

PullResult ProjectPuller::pull(Project project, const MediaLocator& locate) {
    auto& appID = project.manifest.app.ascAppID;
    if (!appID) appID = resolveAppID(project.manifest.app.bundleID);
    const auto projectID = project.manifest.projectID;

    const auto remote =
        PullService(client_).fetch(*appID, ProductPageSlugs(stateStore_.remoteIDs(projectID), project));
    auto result = mergeWithMedia(std::move(project), remote, stateStore_.base(projectID), locate);
    // Names come from the service: one that leads elsewhere must be refused while nothing is written.
    RemoteNames::check(remote);
    PackageNames::check(result.project);

    stateStore_.saveBase(result.base, projectID);
    stateStore_.saveRemoteIDs(remote.ids, projectID);
    stateStore_.saveRemoteAssets(remote.assets, projectID);
    return result;
}

PullResult ProjectPuller::mergeWithMedia(Project project, const RemoteListing& remote,
                                         const std::optional<FlatValues>& base, const MediaLocator& locate) {
    if (!locate || !MediaResolver::hasLocalFiles(project))
        return PullMerger::merge(std::move(project), remote, base);
    const auto library = LibraryIndex::fetch(client_, *project.manifest.app.ascAppID);
    auto resolved = MediaResolver::resolve(project, library, locate).project;
    const bool isAnother = resolved != project;
    auto result = PullMerger::merge(std::move(resolved), remote, base);
    if (isAnother) result.project = updatedWithoutResolution(std::move(project), result);
    return result;
}

std::string ProjectPuller::resolveAppID(const std::string& bundleID) {
    if (bundleID.empty()) throw SyncError(SyncError::NotConnected{});
    const auto app = ASC::appWithBundleID(client_, bundleID);
    if (!app) throw SyncError(SyncError::AppNotFound{bundleID});
    return app->id;
}

}  // namespace kestrin
