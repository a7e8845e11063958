#include "ASCKit/Resources/BuildUploads.h"

#include "ASCKit/Resources/AttributeReading.h"

namespace kestrin {
namespace {

using AttributeReading::objectOrEmpty;
using AttributeReading::text;

std::vector<std::string> messages(const JSONObject& state, const char* key) {
    std::vector<std::string> sentences;
    AttributeReading::forEachObject(state, key, [&](const JSONObject& item) {
        auto sentence = text(item, "description");
        if (!sentence) sentence = text(item, "code");
        if (sentence) sentences.push_back(*std::move(sentence));
    });
    return sentences;
}

}  // namespace

ASCBuildUpload::ASCBuildUpload(const ResourceObject& resource)
    : id(resource.id), buildID(resource.relatedID("build")) {
    const auto& details = objectOrEmpty(resource.attributes, "state");
    state = text(details, "state");
    errors = messages(details, "errors");
    warnings = messages(details, "warnings");
}

namespace ASC {
namespace {

constexpr const char* kUploads = "buildUploads";
constexpr const char* kFiles = "buildUploadFiles";

}  // namespace

ASCBuildUpload createBuildUpload(ASCClient& client, const NewBuildUpload& upload) {
    return ASCBuildUpload(create(client, {.type = kUploads,
                                          .attributes = {{"cfBundleShortVersionString", upload.shortVersion},
                                                         {"cfBundleVersion", upload.buildVersion},
                                                         {"platform", upload.platform}},
                                          .relationships = {{"app", relationship("apps", upload.appID)}}}));
}

ReservedBuildUploadFile reserveBuildUploadFile(ASCClient& client, const NewBuildUploadFile& file) {
    const auto created =
        create(client, {.type = kFiles,
                        .attributes = {{"assetType", "ASSET"},
                                       {"fileName", file.fileName},
                                       {"fileSize", file.fileSize},
                                       {"uti", file.uti}},
                        .relationships = {{"buildUpload", relationship(kUploads, file.uploadID)}}});
    return {created.id, UploadOperation::operations(created.attributes)};
}

void commitBuildUploadFile(ASCClient& client, const std::string& id, const std::string& md5) {
    const JSONObject checksum{{"algorithm", "MD5"}, {"hash", md5}};
    update(client,
           {.type = kFiles,
            .id = id,
            .attributes = {{"uploaded", true}, {"sourceFileChecksums", JSONObject{{"file", checksum}}}}});
}

std::optional<ASCBuildUpload> buildUpload(ASCClient& client, const std::string& id) {
    ASCRequest request;
    request.path = std::string("/v1/") + kUploads + "/" + id;
    request.query = {QueryParameter::include({"build"})};
    const auto resource = one(client, request);
    return resource ? std::optional(ASCBuildUpload(*resource)) : std::nullopt;
}

}  // namespace ASC
}  // namespace kestrin
