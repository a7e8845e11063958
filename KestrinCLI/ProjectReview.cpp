#include "KestrinCLI/ProjectReview.h"

#include "KestrinCLI/ClientAccess.h"
#include "KestrinCLI/CommandLine.h"
#include "KestrinCLI/ProjectAccess.h"
#include "SyncEngine/Push/ProjectPusher.h"

namespace kestrin {

ProjectReview reviewProject(std::string_view word, Console& console) {
    auto project = loadProject(word);
    auto locate = mediaLocator(fileURL(word));
    auto client = makeClient(console);
    auto review = ProjectPusher(client, ProjectStateStore::commandLine()).review(project, locate);
    return {std::move(project), std::move(locate), std::move(client), std::move(review)};
}

}  // namespace kestrin
