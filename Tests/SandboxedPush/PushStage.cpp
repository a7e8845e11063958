#include "Tests/SandboxedPush/PushStage.h"

#include <algorithm>

#include "AssetPipeline/ReferenceName.h"
#include "KestrinCLI/ClientAccess.h"
#include "KestrinCLI/Dispatch.h"
#include "KestrinCLI/Network.h"
#include "KestrinModel/ProjectPackageFile.h"
#include "Sandbox/Resources/Processing.h"
#include "SyncEngine/Pull/PullService.h"
#include "Tests/Support/FakeConsole.h"

namespace kestrin {
namespace {

std::shared_ptr<InProcessSandbox> currentNetwork;

// One key for all stages: making one takes longer than many a test.
const sandbox::Credential& credential() {
    static const auto made = sandbox::newCredential();
    return made;
}

sandbox::Settings settingsWith(std::uint64_t uploadPartSize) {
    sandbox::Settings settings;
    settings.compresses = false;
    settings.uploadPartSize = uploadPartSize;
    return settings;
}

constexpr const char* kVolatileAttributes[] = {"createdDate", "lastModifiedDate", "url", "readings"};
constexpr const char* kAssetTypes[] = {"appAssetLibraryImages", "appAssetLibraryVideos"};

// Resources as text: each with what it belongs to, and what that belongs to.
class Descriptions {
 public:
    Descriptions(const sandbox::Store& all, std::string unseenFile)
        : store_(all), unseen_(std::move(unseenFile)) {}

    const std::string& of(const sandbox::Resource& resource) {
        auto& text = texts_[resource.ref];
        if (!text.empty()) return text;
        std::string made = resource.type() + " " + attributesOf(resource).dump();
        for (const auto& [name, ref] : resource.related) {
            const auto* other = store_.find(ref);
            made += " " + name + "=(" + (other ? of(*other) : "nothing") + ")";
        }
        return texts_[resource.ref] = made;
    }

 private:
    sandbox::Json attributesOf(const sandbox::Resource& resource) const {
        if (!unseen_.empty() && resource.text("fileName") == unseen_) return {{"fileName", unseen_}};
        auto attributes = resource.attributes;
        for (const auto* name : kVolatileAttributes) attributes.erase(name);
        return attributes;
    }

    const sandbox::Store& store_;
    std::string unseen_;
    std::map<sandbox::Ref, std::string> texts_;
};

}  // namespace

std::shared_ptr<HTTPTransport> commandTransport() {
    return currentNetwork;
}

StartingPoint StartingPoint::edited(const std::function<void(Project&)>& change) const {
    auto own = std::make_shared<TemporaryFolder>(TemporaryFolder::quickPlace());
    std::filesystem::copy(package->path(), own->path(), std::filesystem::copy_options::recursive);
    auto point = *this;
    point.package = std::move(own);
    PushStage(point).edit(change);
    return point;
}

PushStage::PushStage() : package_(std::make_shared<TemporaryFolder>(TemporaryFolder::quickPlace())) {
    enter(sandbox::seeds::everyday, settingsWith(sandbox::Settings().uploadPartSize));
}

PushStage::PushStage(const StartingPoint& start) : package_(start.package) {
    enter(start.remote, settingsWith(start.uploadPartSize));
    for (const auto& [path, bytes] : start.home) home_->write(path, bytes);
}

PushStage::~PushStage() {
    currentNetwork.reset();
}

void PushStage::enter(const sandbox::Seed& seed, const sandbox::Settings& settings) {
    home_ = std::make_unique<TemporaryFolder>(TemporaryFolder::quickPlace());
    sandbox_ = std::make_unique<sandbox::Sandbox>(settings, seed, credential());
    network_ = std::make_shared<InProcessSandbox>(sandbox_->service());
    currentNetwork = network_;
    auto variables = sandbox_->environment(home_->path());
    variables["HOME"] = home_->path().string();
    variables["KESTRIN_SANDBOX_ROOT"] = InProcessSandbox::kRoot;
    variables["KESTRIN_SANDBOX_WAITS"] = "skip";
    for (const auto& [name, value] : variables)
        environment_.push_back(std::make_unique<EnvironmentVariable>(name.c_str(), value.c_str()));
}

Ended PushStage::run(const Arguments& args, std::vector<std::string> typed) {
    FakeConsole console({typed.begin(), typed.end()});
    Ended ended;
    try {
        ended.status = Dispatch::run(args, console);
    } catch (const ProcessKilled&) {
        ended.wasKilled = true;
    } catch (const Error& error) {  // as the program ends with it
        console.writeError("kestrin: " + error.errorDescription() + "\n");
        ended.status = 1;
    }
    ended.output = std::move(console.output);
    ended.errors = std::move(console.errors);
    return ended;
}

Project PushStage::project() const {
    return ProjectPackageFile::load(package());
}

void PushStage::edit(const std::function<void(Project&)>& change) {
    auto edited = project();
    change(edited);
    ProjectPackageFile::save(edited, package());
}

void PushStage::addFile(const std::string& path, std::string_view bytes) {
    package_->write("Tide.kestrin/" + path, bytes);
}

StartingPoint PushStage::here() {
    auto files = home_->files();
    std::erase_if(files, [](const auto& file) { return !file.first.starts_with(".kestrin/"); });
    auto document = remote().with([](sandbox::State& state) { return sandbox::stateJSON(state); });
    return {package_, std::move(files), sandbox::seeds::fromDocument(std::move(document))};
}

RemoteListing PushStage::remoteListing() {
    FakeConsole console;
    auto client = makeClient(console);
    const auto local = project();
    const auto ids = store().remoteIDs(local.manifest.projectID);
    return PullService(client).fetch(*local.manifest.app.ascAppID, ProductPageSlugs(ids, local));
}

void PushStage::letProcessingEnd() {
    remote().with([](sandbox::State& state) {
        for (const auto* type : kAssetTypes) {
            for (auto* asset : state.store.all(type)) {
                for (int read = 0; read <= state.settings.processingReads; ++read)
                    sandbox::processAsset(state, *asset);
            }
        }
        return 0;
    });
}

std::string PushStage::remoteContent(const std::string& unseen) {
    auto lines = remote().with([&](sandbox::State& state) {
        Descriptions descriptions(state.store, unseen);
        std::vector<std::string> all;
        for (const auto* resource : std::as_const(state.store).all())
            all.push_back(descriptions.of(*resource));
        return all;
    });
    std::sort(lines.begin(), lines.end());
    std::string content;
    for (const auto& line : lines) content += line + "\n";
    return content;
}

std::map<std::string, std::vector<std::string>> PushStage::uploads() {
    return remote().with([](sandbox::State& state) {
        std::map<std::string, std::vector<std::string>> states;
        for (const auto* type : kAssetTypes) {
            for (const auto* asset : state.store.all(type)) {
                if (ReferenceName::hashSuffix(asset->text("referenceName")))
                    states[asset->text("fileName")].push_back(asset->text("state"));
            }
        }
        return states;
    });
}

}  // namespace kestrin
