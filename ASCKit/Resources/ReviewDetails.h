// What App Review is told about a version.
#pragma once

#include <optional>
#include <string>

#include "ASCKit/Resources/ResourceRequests.h"

namespace kestrin {

// With all its attributes: which of them are part of a listing isn't for the client to know.
struct ASCReviewDetail {
    std::string id;
    JSONObject attributes;

    explicit ASCReviewDetail(const ResourceObject& resource);
    bool operator==(const ASCReviewDetail&) const = default;
};

namespace ASC {

// GET /v1/appStoreVersions/{id}/appStoreReviewDetail. Nothing for a version that has none yet, which the service
// says with a 404 or with `data` that is null. Every other failure is thrown.
std::optional<ASCReviewDetail> reviewDetail(ASCClient& client, const std::string& versionID);

}  // namespace ASC
}  // namespace kestrin
