// A project that is connected to an app on a server that knows its answers by heart.
#pragma once

#include <set>
#include <string>

#include "SyncEngine/Push/ProjectPusher.h"
#include "Tests/Support/RoutedClient.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/SyncEngine/Push/PlannedChanges.h"

namespace kestrin {

// App 7 has a version V of iOS in preparation, with the copyright "2025" and the German localization L, whose
// what's new is "Alt". The project holds the same, and nothing is remembered of it.
struct PusherWorld : RoutedClient {
    TemporaryFolder folder;
    ProjectStateStore store{folder / "state"};
    Project project;

    PusherWorld() {
        project.manifest.projectID = UUID::random();
        project.manifest.app.ascAppID = "7";
        answer("/v1/apps/7", R"({"data":{"type":"apps","id":"7"}})");
        answer("/v1/appStoreVersions/V/appStoreReviewDetail", "", 404);
        remoteCopyright("2025");
        remoteText("Alt");
        set("IOS/version/copyright", "2025");
        set("IOS/de-DE/whatsNew", "Alt");
    }

    void remoteCopyright(const std::string& copyright) {
        const auto version =
            R"({"type":"appStoreVersions","id":"V","attributes":{"platform":"IOS","appVersionState":)"
            R"("PREPARE_FOR_SUBMISSION","copyright":")" +
            copyright + R"("}})";
        answer("/v1/apps/7/appStoreVersions", R"({"data":[)" + version + "]}");
        answer("/v1/appStoreVersions/V", R"({"data":)" + version + "}");
    }
    void remoteText(const std::string& whatsNew) {
        answer("/v1/appStoreVersions/V/appStoreVersionLocalizations",
               R"({"data":[{"type":"l","id":"L","attributes":{"locale":"de-DE","whatsNew":")" + whatsNew +
                   R"("}}]})");
    }

    void set(const char* key, const std::string& local) { ContentGraph::set(local, keyOf(key), project); }

    MediaLocator locator() {
        return [this](const std::string& path) {
            const auto file = folder / path;
            return std::filesystem::exists(file) ? std::optional(file) : std::nullopt;
        };
    }

    ProjectPusher pusher() { return {client, store, {.sleep = time.sleep(), .notes = {}, .stop = {}}}; }
    PushReview review(const MediaLocator& locate = {}) { return pusher().review(project, locate); }

    const UUID& id() const { return project.manifest.projectID; }
    bool hasState() const { return std::filesystem::exists(store.root); }
    bool wasAsked(const std::string& path) const {
        return std::find(paths().begin(), paths().end(), path) != paths().end();
    }
};

}  // namespace kestrin
