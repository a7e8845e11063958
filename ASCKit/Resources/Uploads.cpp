#include "ASCKit/Resources/Uploads.h"

#include <algorithm>

#include "ASCKit/Resources/AttributeReading.h"
#include "KestrinCore/Error.h"

namespace kestrin {
namespace {

std::optional<UploadOperation> operationOf(const JSONObject& item) {
    const auto address = AttributeReading::text(item, "url");
    const auto url = address ? URL::parse(*address) : std::nullopt;
    const auto offset = AttributeReading::integer(item, "offset");
    const auto length = AttributeReading::integer(item, "length");
    if (!url || !offset || !length) return std::nullopt;
    UploadOperation operation{
        AttributeReading::text(item, "method").value_or("PUT"), *url, *offset, *length, {}};
    AttributeReading::forEachObject(item, "requestHeaders", [&](const JSONObject& header) {
        const auto name = AttributeReading::text(header, "name");
        const auto value = AttributeReading::text(header, "value");
        if (name && value) operation.headers[*name] = *value;
    });
    return operation;
}

std::string sliceOf(const std::string& bytes, std::int64_t offset, std::int64_t length) {
    const auto size = static_cast<std::int64_t>(bytes.size());
    const auto start = std::clamp<std::int64_t>(offset, 0, size);
    const auto count = std::clamp<std::int64_t>(length, 0, size - start);
    return bytes.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(count));
}

}  // namespace

std::vector<UploadOperation> UploadOperation::operations(const JSONObject& attributes) {
    std::vector<UploadOperation> found;
    AttributeReading::forEachObject(attributes, "uploadOperations", [&](const JSONObject& item) {
        if (auto operation = operationOf(item)) found.push_back(*std::move(operation));
    });
    return found;
}

HTTPBody UploadSource::slice(std::int64_t offset, std::int64_t length) const {
    return std::visit(
        Overloaded{
            [&](const std::filesystem::path& file) -> HTTPBody {
                return FileRange{file, offset, length};
            },
            [&](const std::string& bytes) -> HTTPBody { return sliceOf(bytes, offset, length); },
        },
        kind);
}

void ASC::upload(ASCClient& client, const std::vector<UploadOperation>& operations,
                 const UploadSource& source) {
    for (const auto& operation : operations) {
        HTTPRequest request{.method = operation.method, .url = operation.url, .headers = {}, .body = {}};
        for (const auto& [name, value] : operation.headers) request.headers[name] = value;
        request.body = source.slice(operation.offset, operation.length);
        client.sendUploadPart(request);
    }
}

}  // namespace kestrin
