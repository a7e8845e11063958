// From the reservation of an upload to the build that comes of it.
#include <fmt/format.h>
#include <openssl/evp.h>

#include <array>

#include "Sandbox/Document.h"
#include "Sandbox/Reads.h"
#include "Sandbox/Refusal.h"
#include "Sandbox/Resources/Endpoints.h"
#include "Sandbox/Resources/Processing.h"
#include "Sandbox/Resources/Values.h"
#include "Sandbox/WriteForm.h"

namespace kestrin::sandbox {
namespace {

constexpr const char* kUploads = "buildUploads";
constexpr const char* kFiles = "buildUploadFiles";
constexpr const char* kArchive = "com.apple.ipa";
constexpr const char* kInstaller = "com.apple.pkg";
constexpr std::int64_t kMaximumFileSize = 9'007'199'254'740'991;

// The relationship of an upload to its file of each kind.
struct FileKind {
    const char* assetType;
    const char* relationship;
};
constexpr FileKind kFileKinds[] = {
    {"ASSET", "assetFile"}, {"ASSET_DESCRIPTION", "assetDescriptionFile"}, {"ASSET_SPI", "assetSpiFile"}};

QueryRules uploadRules() {
    QueryRules rules;
    rules.includes = {"build", "assetFile", "assetDescriptionFile", "assetSpiFile"};
    rules.fields = {kUploads, "builds", kFiles};
    return rules;
}

Json uploadState(const char* name) {
    return {
        {"state", name}, {"errors", Json::array()}, {"warnings", Json::array()}, {"infos", Json::array()}};
}

Json message(std::string_view code, std::string_view description) {
    return {{"code", code}, {"description", description}};
}

std::string stateName(const Resource& resource, const char* attribute) {
    return resource.attributes.value(attribute, Json::object()).value("state", "");
}

HTTPReply createUpload(State& state, const Call& call) {
    static const WriteForm form{
        .type = kUploads,
        .attributes = {{.name = "cfBundleShortVersionString", .need = Need::required},
                       {.name = "cfBundleVersion", .need = Need::required},
                       {.name = "platform", .need = Need::required, .values = kPlatforms}},
        .relationships = {{.name = "app", .type = "apps", .need = Need::required}}};
    const auto write = readCreate(call.request.body, form, state.store);
    auto& upload = state.store.add(kUploads, write.attributes, {{"app", write.ref("app")}});
    upload.attributes["createdDate"] = state.store.date();
    upload.attributes["state"] = uploadState("AWAITING_UPLOAD");
    return createdReply(state, call, upload);
}

const char* relationshipFor(const std::string& assetType) {
    for (const auto& kind : kFileKinds) {
        if (assetType == kind.assetType) return kind.relationship;
    }
    throw std::logic_error("no kind of file: " + assetType);
}

HTTPReply reserveFile(State& state, const Call& call) {
    static const WriteForm form{
        .type = kFiles,
        .attributes = {{.name = "assetType",
                        .need = Need::required,
                        .values = {"ASSET", "ASSET_DESCRIPTION", "ASSET_SPI"}},
                       {.name = "fileName", .need = Need::required},
                       {.name = "fileSize", .kind = Kind::integer, .need = Need::required},
                       {.name = "uti",
                        .need = Need::required,
                        .values = {"com.apple.binary-property-list", kArchive, kInstaller,
                                   "com.apple.xml-property-list", "com.pkware.zip-archive"}}},
        .relationships = {{.name = "buildUpload", .type = kUploads, .need = Need::required}}};
    const auto write = readCreate(call.request.body, form, state.store);
    const auto size = write.attributes["fileSize"].get<std::int64_t>();
    if (size < 1 || size > kMaximumFileSize) {
        throw Refusal(refusals::attribute("INVALID", "fileSize",
                                          fmt::format("The value must be from 1 to {}", kMaximumFileSize)));
    }
    auto& upload = state.store.at(write.ref("buildUpload"));
    if (stateName(upload, "state") != "AWAITING_UPLOAD") {
        throw Refusal(refusals::state("ENTITY_STATE_INVALID", "The build upload takes no more files"));
    }
    const auto* relationship = relationshipFor(write.text("assetType"));
    if (upload.related.contains(relationship)) {
        throw Refusal(refusals::attribute("INVALID.DUPLICATE", "assetType",
                                          "The build upload has a file of that kind already"));
    }
    auto& file = state.store.add(kFiles, write.attributes, {{"buildUpload", upload.ref}});
    file.attributes["assetDeliveryState"] = uploadState("AWAITING_UPLOAD");
    file.attributes["assetToken"] = file.id();
    state.store.relate(upload, relationship, file.ref);
    state.uploads.open(file.ref, static_cast<std::uint64_t>(size), state.settings.uploadPartSize,
                       "application/octet-stream", state.settings.now());
    return createdReply(state, call, file);
}

// One of {"file": {"hash", "algorithm"}, "composite": …}.
void checkChecksum(const std::string& name, const Json& checksum, const Values& algorithms) {
    const auto text = [&](const char* member) {
        const auto found = checksum.find(member);
        return found != checksum.end() && found->is_string() ? found->get<std::string>() : std::string();
    };
    const bool isWhole = checksum.is_object() && checksum.size() == 2 && !text("hash").empty();
    if (isWhole && std::find(algorithms.begin(), algorithms.end(), text("algorithm")) != algorithms.end())
        return;
    throw Refusal(refusals::attribute(
        "INVALID", "sourceFileChecksums/" + name,
        fmt::format("It must have a hash and an algorithm, one of {}", fmt::join(algorithms, ", "))));
}

void checkChecksums(const Json& checksums) {
    for (const auto& [name, checksum] : checksums.items()) {
        if (name == "file") {
            checkChecksum(name, checksum, {"MD5", "SHA_256"});
        } else if (name == "composite") {
            checkChecksum(name, checksum, {"MD5"});
        } else {
            throw Refusal(refusals::attribute("UNKNOWN", "sourceFileChecksums/" + name,
                                              fmt::format("There is no checksum '{}'", name)));
        }
    }
}

std::string hexDigest(const std::vector<const std::string*>& parts, const EVP_MD* algorithm) {
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned size = 0;
    EVP_DigestInit_ex(context.get(), algorithm, nullptr);
    for (const auto* part : parts) EVP_DigestUpdate(context.get(), part->data(), part->size());
    EVP_DigestFinal_ex(context.get(), digest.data(), &size);
    return fmt::format("{:02x}", fmt::join(digest.begin(), digest.begin() + size, ""));
}

// What is wrong with the bytes; nothing for a file that can be imported. Kept for the end of the processing, since
// the service tells it no earlier.
Json problemsOf(const State& state, const Resource& file, const std::vector<const std::string*>& parts) {
    Json problems = Json::array();
    const auto checksums = file.attributes.value("sourceFileChecksums", Json());
    if (checksums.is_object() && checksums.contains("file")) {
        const auto* algorithm = checksums["file"]["algorithm"] == "MD5" ? EVP_md5() : EVP_sha256();
        if (checksums["file"]["hash"] != hexDigest(parts, algorithm)) {
            problems.push_back(message("90171", "The checksum isn't the one of the file that was sent."));
        }
    }
    const auto beginning = parts.front()->substr(0, 4);
    const auto expected = file.text("uti") == kInstaller ? "xar!" : "PK\x03\x04";
    const bool isPackage = file.text("uti") == kArchive || file.text("uti") == kInstaller;
    if (state.settings.inspectsMedia && isPackage && beginning != expected) {
        problems.push_back(message("90034", "The file isn't a package of the kind that it was said to be."));
    }
    if (isUnprocessable(state, file.text("fileName"))) {
        problems.push_back(message("90085", "The package can't be processed."));
    }
    return problems;
}

void beginImport(State& state, Resource& upload, Json problems) {
    upload.attributes["uploadedDate"] = state.store.date();
    upload.attributes["state"] = uploadState("PROCESSING");
    upload.attributes["problems"] = std::move(problems);  // kept inside
    beginProcessing(upload);
}

void commit(State& state, Resource& file, const Json& checksums) {
    if (stateName(file, "assetDeliveryState") != "AWAITING_UPLOAD") {
        throw Refusal(refusals::state("ENTITY_STATE_INVALID", "The file is committed already"));
    }
    const auto parts = state.uploads.parts(file.ref);
    if (!parts) {
        throw Refusal(
            refusals::attribute("INVALID", "uploaded", "The bytes that were sent aren't the whole file"));
    }
    file.attributes["sourceFileChecksums"] = checksums;
    file.attributes["assetDeliveryState"] = uploadState("COMPLETE");
    auto problems = problemsOf(state, file, *parts);
    state.uploads.close(file.ref);
    // The other files describe the asset; the import doesn't wait for them.
    if (file.text("assetType") != "ASSET") return;
    beginImport(state, state.store.at(file.related.at("buildUpload")), std::move(problems));
}

HTTPReply changeFile(State& state, const Call& call) {
    static const WriteForm form{.type = kFiles,
                                .attributes = {{.name = "uploaded", .kind = Kind::truth},
                                               {.name = "sourceFileChecksums", .kind = Kind::object}}};
    auto& file = named(state, kFiles, call);
    const auto write = readUpdate(call.request.body, form, state.store, file.id());
    const auto checksums = write.attributes.value("sourceFileChecksums", Json());
    if (checksums.is_object()) checkChecksums(checksums);
    if (write.attributes.value("uploaded", Json()) == true) commit(state, file, checksums);
    return singleReply(state, call, file);
}

bool isReleased(State& state, const Resource& upload) {
    for (const char* done : {"READY_FOR_DISTRIBUTION", "REPLACED_WITH_NEW_VERSION"}) {
        if (state.store.first("appStoreVersions",
                              {{"app", upload.relatedID("app")},
                               {"platform", upload.text("platform")},
                               {"versionString", upload.text("cfBundleShortVersionString")},
                               {"appVersionState", done}})) {
            return true;
        }
    }
    return false;
}

// Whether there is a build of that app, platform, version and number.
bool isKnownBuild(State& state, const Resource& upload) {
    return state.store.first("builds",
                             {{"app", upload.relatedID("app")},
                              {"version", upload.text("cfBundleVersion")},
                              {"preReleaseVersion.platform", upload.text("platform")},
                              {"preReleaseVersion.version", upload.text("cfBundleShortVersionString")}});
}

const Resource& trainOf(State& state, const Resource& upload) {
    const auto platform = upload.text("platform"), version = upload.text("cfBundleShortVersionString");
    const auto* train =
        state.store.first("preReleaseVersions",
                          {{"app", upload.relatedID("app")}, {"platform", platform}, {"version", version}});
    if (train != nullptr) return *train;
    return state.store.add("preReleaseVersions", {{"platform", platform}, {"version", version}},
                           {{"app", upload.related.at("app")}});
}

// The build goes on being processed after its upload is complete.
void addBuild(State& state, Resource& upload) {
    const auto& train = trainOf(state, upload);
    auto& build = state.store.add("builds",
                                  {{"version", upload.text("cfBundleVersion")},
                                   {"uploadedDate", state.store.pacificDate()},
                                   {"expirationDate", "2026-08-30T21:02:11-07:00"},
                                   {"expired", false},
                                   {"processingState", "PROCESSING"},
                                   {"buildAudienceType", "APP_STORE_ELIGIBLE"}},
                                  {{"app", upload.related.at("app")}, {"preReleaseVersion", train.ref}});
    beginProcessing(build);
    state.store.relate(upload, "build", build.ref);
}

void finishImport(State& state, Resource& upload) {
    if (stateName(upload, "state") != "PROCESSING" || !isDue(state, upload)) return;
    auto problems = upload.attributes.value("problems", Json::array());
    if (isKnownBuild(state, upload)) {
        problems.push_back(message("90189", "The bundle version was already used."));
    }
    if (isReleased(state, upload)) {
        problems.push_back(
            message("90186", fmt::format("The train version '{}' is closed for new build submissions.",
                                         upload.text("cfBundleShortVersionString"))));
    }
    auto next = uploadState(problems.empty() ? "COMPLETE" : "FAILED");
    if (problems.empty()) {
        addBuild(state, upload);
        const auto& file = state.store.at(upload.related.at("assetFile"));
        if (isQuestionable(state, file.text("fileName"))) {
            next["warnings"].push_back(message("90725", "The package was built with an old SDK."));
        }
    }
    next["errors"] = std::move(problems);
    upload.attributes["state"] = std::move(next);
}

HTTPReply readUpload(State& state, const Call& call) {
    auto& upload = named(state, kUploads, call);
    finishImport(state, upload);
    return singleReply(state, call, upload);
}

}  // namespace

void addBuildUploadEndpoints(Router& router) {
    router.add({"POST", "/v1/buildUploads", {}, createUpload});
    router.add({"GET", "/v1/buildUploads/{id}", uploadRules(), readUpload});
    router.add({"POST", "/v1/buildUploadFiles", {}, reserveFile});
    router.add({"PATCH", "/v1/buildUploadFiles/{id}", {}, changeFile});
}

}  // namespace kestrin::sandbox
