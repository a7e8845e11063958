#include "ASCKit/Resources/Uploads.h"

#include <algorithm>
#include <limits>

#include "ASCKit/Resources/AttributeReading.h"
#include "KestrinCore/Error.h"
#include "KestrinCore/UnicodeText.h"

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

std::string fileNameOf(const UploadSource& source) {
    const auto* file = std::get_if<std::filesystem::path>(&source.kind);
    return file ? text::repaired(file->filename().native()) : "";
}

// Lengths are the service's word; what they come to is only shown.
std::int64_t sumOf(std::int64_t sum, std::int64_t length) {
    constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
    const auto more = std::max<std::int64_t>(length, 0);
    return more > kMost - sum ? kMost : sum + more;
}

std::int64_t totalOf(const std::vector<UploadOperation>& operations) {
    std::int64_t total = 0;
    for (const auto& operation : operations) total = sumOf(total, operation.length);
    return total;
}

// Tells of one upload from its beginning to its end, which a failure is, too.
class NewsTeller {
 public:
    NewsTeller(const UploadNewsHandler& handler, const UploadSource& source,
               const std::vector<UploadOperation>& operations)
        : handler_(handler), news_{.fileName = fileNameOf(source), .total = totalOf(operations)} {
        tell();
    }
    ~NewsTeller() {
        news_.isOver = true;
        try {
            tell();
        } catch (...) {  // an end that can't be told is an end all the same
        }
    }
    NewsTeller(const NewsTeller&) = delete;
    NewsTeller& operator=(const NewsTeller&) = delete;

    void partMoved(std::int64_t sent) {
        news_.sent = sumOf(before_, sent);
        tell();
    }
    void partIsSent(std::int64_t length) {
        before_ = sumOf(before_, length);
        partMoved(0);
    }

 private:
    void tell() const {
        if (handler_) handler_(news_);
    }

    const UploadNewsHandler& handler_;
    UploadNews news_;
    std::int64_t before_ = 0;  // bytes of the parts that are sent
};

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
                 const UploadSource& source, const PartHooks& hooks) {
    if (operations.empty()) return;
    NewsTeller news(client.uploadNews(), source, operations);
    for (std::size_t part = 0; part < operations.size(); ++part) {
        const auto& operation = operations[part];
        if (hooks.before) hooks.before(part);
        HTTPRequest request{.method = operation.method, .url = operation.url, .headers = {}, .body = {}};
        for (const auto& [name, value] : operation.headers) request.headers[name] = value;
        request.body = source.slice(operation.offset, operation.length);
        request.watch.moved = [&](std::int64_t sent) { news.partMoved(sent); };
        client.sendUploadPart(request);
        news.partIsSent(operation.length);
        if (hooks.after) hooks.after(part);
    }
}

}  // namespace kestrin
