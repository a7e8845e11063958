// A user with a project beside an App Store Connect of their own; commands run in this process and take no time.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "KestrinCLI/CommandLine.h"
#include "KestrinModel/Project.h"
#include "Sandbox/Sandbox.h"
#include "SyncEngine/Remote/RemoteListing.h"
#include "SyncEngine/State/ProjectStateStore.h"
#include "Tests/SandboxedPush/InProcessSandbox.h"
#include "Tests/Support/ProcessState.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {

// How a command ended.
struct Ended {
    int status = 0;
    std::string output, errors;
    bool wasKilled = false;  // then there is no status
};

// A moment that can be gone back to as often as a test likes: the project, what is remembered of it, and what App
// Store Connect holds. No command of such a test may write the package, which all that begin there share.
struct StartingPoint {
    std::shared_ptr<TemporaryFolder> package;
    std::map<std::string, std::string> home;  // the files below the home folder
    sandbox::Seed remote;
    std::uint64_t uploadPartSize =
        sandbox::Settings().uploadPartSize;  // how much App Store Connect takes at once

    // The same with a package of its own that was changed.
    StartingPoint edited(const std::function<void(Project&)>& change) const;
};

// One at a time in a process: home folder and credentials are the environment's.
class PushStage {
 public:
    // The invented app "Tide Notes" of the sandbox, and no project yet.
    PushStage();
    explicit PushStage(const StartingPoint& start);
    ~PushStage();

    static constexpr const char* kBundleID = "com.example.tidenotes";

    // Runs the command: {"push", package(), "--yes"}. `typed` are the lines of standard input.
    Ended run(const Arguments& args, std::vector<std::string> typed = {});
    Ended push() { return run({"push", package(), "--yes"}); }
    Ended pushConflictsToo() { return run({"push", package(), "--yes", "--include-conflicts"}); }

    std::string package() const { return (*package_ / "Tide.kestrin").string(); }
    Project project() const;
    // Changes the package.
    void edit(const std::function<void(Project&)>& change);
    void addFile(const std::string& path, std::string_view bytes);

    // Everything as it stands now.
    StartingPoint here();

    sandbox::Service& remote() { return sandbox_->service(); }
    TroubleMaker& trouble() { return network_->trouble; }
    void hideRateLimit() { network_->tellsRateLimit = false; }
    ProjectStateStore store() const { return ProjectStateStore(*home_ / ".kestrin/state"); }

    // What App Store Connect holds, as a pull would read it.
    RemoteListing remoteListing();

    // Processing goes on at App Store Connect whether anybody looks or not: from here on it is done.
    void letProcessingEnd();

    // Every resource of App Store Connect as a line that names no id and no date, sorted: two of them are the same
    // when nobody could tell which way they came about. Of the file `unseen` of the library only the name is told.
    std::string remoteContent(const std::string& unseen = {});

    // The states of the uploads in the library by the names of their files; more than one state for a file that was
    // uploaded more than once.
    std::map<std::string, std::vector<std::string>> uploads();

 private:
    void enter(const sandbox::Seed& seed, const sandbox::Settings& settings);

    std::shared_ptr<TemporaryFolder> package_;
    std::unique_ptr<TemporaryFolder> home_;
    std::unique_ptr<sandbox::Sandbox> sandbox_;
    std::shared_ptr<InProcessSandbox> network_;
    std::vector<std::unique_ptr<EnvironmentVariable>> environment_;
};

}  // namespace kestrin
