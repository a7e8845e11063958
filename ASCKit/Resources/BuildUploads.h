// Uploads of builds.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ASCKit/Resources/ResourceRequests.h"
#include "ASCKit/Resources/Uploads.h"

namespace kestrin {

struct ASCBuildUpload {
    std::string id;
    std::optional<std::string> state;
    std::vector<std::string> errors, warnings;  // the service's sentences, or its codes where it has none
    std::optional<std::string> buildID;         // once the service has made a build of it

    explicit ASCBuildUpload(const ResourceObject& resource);
    bool operator==(const ASCBuildUpload&) const = default;
};

namespace ASC {

struct NewBuildUpload {
    std::string appID;
    std::string shortVersion;  // CFBundleShortVersionString
    std::string buildVersion;  // CFBundleVersion
    std::string platform;
};

struct NewBuildUploadFile {
    std::string uploadID;
    std::string fileName;
    std::int64_t fileSize = 0;
    std::string uti;  // the file's uniform type identifier
};

struct ReservedBuildUploadFile {
    std::string id;
    std::vector<UploadOperation> operations;
};

// POST /v1/buildUploads
ASCBuildUpload createBuildUpload(ASCClient& client, const NewBuildUpload& upload);

// POST /v1/buildUploadFiles
ReservedBuildUploadFile reserveBuildUploadFile(ASCClient& client, const NewBuildUploadFile& file);

// PATCH /v1/buildUploadFiles/{id} with the digest of the whole file in lower-case hexadecimal digits.
void commitBuildUploadFile(ASCClient& client, const std::string& id, const std::string& md5);

// GET /v1/buildUploads/{id}
std::optional<ASCBuildUpload> buildUpload(ASCClient& client, const std::string& id);

}  // namespace ASC
}  // namespace kestrin
