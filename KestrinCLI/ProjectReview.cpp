#include "KestrinCLI/ProjectReview.h"

#include "KestrinCLI/ClientAccess.h"
#include "KestrinCLI/CommandLine.h"
#include "KestrinCLI/ProjectAccess.h"
#include "KestrinCore/Message.h"
#include "SyncEngine/Push/ProjectPusher.h"

namespace kestrin {
namespace {

// The asset of an upload that was cut is taken for the file, so that nothing else would ever say that it is empty.
void noteCutUploads(const PushReview& review, Console& console) {
    for (const auto& [id, asset] : review.assetsAwaitingUpload()) {
        console.note(message::localized(
            "noteAwaitingUpload",
            "App Store Connect still waits for the bytes of {fileName}. If nobody is uploading it now, "
            "an earlier upload was cut: remove {fileName} from the app’s media there, and push again.",
            {{"fileName", asset.fileName}}));
    }
}

}  // namespace

ProjectReview reviewProject(std::string_view word, Console& console) {
    auto project = loadProject(word);
    auto locate = mediaLocator(fileURL(word));
    auto client = makeClient(console);
    auto review = ProjectPusher(client, ProjectStateStore::commandLine()).review(project, locate);
    noteCutUploads(review, console);
    return {std::move(project), std::move(locate), std::move(client), std::move(review)};
}

}  // namespace kestrin
