#include "ASCKit/Resources/ReviewDetails.h"

namespace kestrin {

ASCReviewDetail::ASCReviewDetail(const ResourceObject& resource)
    : id(resource.id), attributes(resource.attributes) {}

namespace ASC {
namespace {

constexpr int kNotFound = 404;

// Nothing for a 404.
std::optional<std::string> bytesIfFound(ASCClient& client, const ASCRequest& request) {
    try {
        return client.data(request);
    } catch (const ASCError& error) {
        const auto* http = error.as<ASCError::HTTP>();
        if (!http || http->status != kNotFound) throw;
        return std::nullopt;
    }
}

}  // namespace

std::optional<ASCReviewDetail> reviewDetail(ASCClient& client, const std::string& versionID) {
    ASCRequest request;
    request.path = "/v1/appStoreVersions/" + versionID + "/appStoreReviewDetail";
    const auto body = bytesIfFound(client, request);
    if (!body || JSONAPIDocument::hasNullData(*body)) return std::nullopt;
    const auto document = ASCClient::decode(*body, request.path);
    if (document.data.empty()) return std::nullopt;
    return ASCReviewDetail(document.data.front());
}

}  // namespace ASC
}  // namespace kestrin
