#include "Sandbox/Uploads.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <ctime>

namespace kestrin::sandbox {
namespace {

constexpr std::int64_t kLifetime = 7 * 24 * 3600;

HTTPReply storeError(int status, std::string_view code) {
    return {status,
            {},
            "application/xml",
            fmt::format("<?xml version=\"1.0\" encoding=\"UTF-8\"?><Error><Code>{}</Code></Error>", code)};
}

std::string target(const Ref& owner, std::size_t part, std::int64_t expires) {
    return fmt::format("{}{}/{}?partNumber={}&Expires={}", Uploads::kPathStart, owner.type, owner.id,
                       part + 1, expires);
}

}  // namespace

void Uploads::open(const Ref& owner, std::uint64_t size, std::uint64_t partSize,
                   const std::string& contentType, std::int64_t now) {
    Upload upload{contentType, now + kLifetime, {}, false};
    for (std::uint64_t offset = 0; offset < size; offset += partSize) {
        upload.parts.push_back({offset, std::min(partSize, size - offset), std::nullopt});
    }
    uploads_[owner] = std::move(upload);
}

Json Uploads::operations(const Ref& owner, const std::string& root, bool forBuild) const {
    const auto found = uploads_.find(owner);
    if (found == uploads_.end()) return nullptr;
    const auto& upload = found->second;
    Json list = Json::array();
    for (std::size_t i = 0; i < upload.parts.size(); ++i) {
        Json operation{
            {"method", "PUT"},
            {"url", root + target(owner, i, upload.expires)},
            {"offset", upload.parts[i].offset},
            {"length", upload.parts[i].length},
            {"requestHeaders", Json::array({{{"name", "Content-Type"}, {"value", upload.contentType}}})}};
        if (forBuild) {
            operation["partNumber"] = i + 1;
            operation["expiration"] =
                fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", fmt::gmtime(static_cast<std::time_t>(upload.expires)));
            operation["entityTag"] = nullptr;
        }
        list.push_back(std::move(operation));
    }
    return list;
}

std::optional<std::vector<const std::string*>> Uploads::parts(const Ref& owner) const {
    const auto found = uploads_.find(owner);
    if (found == uploads_.end()) return std::nullopt;
    std::vector<const std::string*> parts;
    for (const auto& part : found->second.parts) {
        if (!part.bytes) return std::nullopt;
        parts.push_back(&*part.bytes);
    }
    return parts;
}

std::optional<std::string> Uploads::content(const Ref& owner) const {
    const auto whole = parts(owner);
    if (!whole) return std::nullopt;
    std::string content;
    for (const auto* part : *whole) content += *part;
    return content;
}

void Uploads::close(const Ref& owner) {
    auto& upload = uploads_[owner];
    upload.isClosed = true;
    for (auto& part : upload.parts) part.bytes.reset();
}

HTTPReply Uploads::receive(const HTTPRequest& request, std::int64_t now) {
    if (request.method != "PUT") return storeError(405, "MethodNotAllowed");
    if (headerValue(request.headers, "Authorization"))
        return storeError(400, "UnsupportedAuthorizationHeader");
    for (auto& [owner, upload] : uploads_) {
        for (std::size_t i = 0; i < upload.parts.size(); ++i) {
            if (request.target != target(owner, i, upload.expires)) continue;
            if (upload.isClosed) return storeError(404, "NoSuchUpload");
            if (now > upload.expires) return storeError(403, "RequestExpired");
            if (headerValue(request.headers, "Content-Type") != upload.contentType) {
                return storeError(403, "SignatureDoesNotMatch");
            }
            auto& part = upload.parts[i];
            if (request.body.size() != part.length) return storeError(400, "IncompleteBody");
            part.bytes = request.body;
            return {200, {{"ETag", fmt::format("\"{}-{}\"", owner.id, i + 1)}}, {}, {}};
        }
    }
    return storeError(404, "NoSuchUpload");
}

}  // namespace kestrin::sandbox
