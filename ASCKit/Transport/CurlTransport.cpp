#include "ASCKit/Transport/CurlTransport.h"

#include <curl/curl.h>

#include <algorithm>
#include <exception>

#include "ASCKit/ASCError.h"
#include "ASCKit/Transport/BodyReader.h"
#include "ASCKit/Transport/CurlConnection.h"
#include "KestrinCore/UnicodeText.h"

namespace kestrin {
namespace {

// Replies to similar requests are of similar size, but one huge reply says nothing of the next.
constexpr std::size_t kLargestExpected = std::size_t{256} << 10;

class HeaderList {
 public:
    HeaderList() = default;
    HeaderList(const HeaderList&) = delete;
    HeaderList& operator=(const HeaderList&) = delete;
    ~HeaderList() { curl_slist_free_all(first_); }

    void append(const std::string& line) {
        auto* list = curl_slist_append(first_, line.c_str());
        if (!list) throw std::bad_alloc();
        first_ = list;
    }
    curl_slist* get() const { return first_; }

 private:
    curl_slist* first_ = nullptr;
};

// What libcurl's callbacks work on while one request is under way. They are called from C and so let no exception
// through: it is kept and thrown once libcurl has returned.
struct Transfer {
    const HTTPRequest& request;
    const CurlTransport::Limits& limits;
    CURL* handle;
    std::size_t expectedBody;  // bytes, a guess
    std::optional<BodyReader> body = std::nullopt;
    HTTPResponse reply = {};
    std::size_t headerBytes = 0;
    bool hasWholeHead = false;
    std::chrono::steady_clock::time_point lastMove = std::chrono::steady_clock::now();
    std::exception_ptr failure = nullptr;

    void noteMove() { lastMove = std::chrono::steady_clock::now(); }

    template <class Step>
    bool guarded(Step&& step) noexcept {
        try {
            noteMove();
            step();
            return true;
        } catch (...) {
            failure = std::current_exception();
            return false;
        }
    }

    void takeHeaderLine(std::string_view line) {
        headerBytes += line.size();
        if (headerBytes > limits.headerBytes) refuse();
        // Each status line begins a reply anew: interim ones (103, say) come before the one that counts.
        if (line.starts_with("HTTP/")) {
            hasWholeHead = false;
            return reply.headers.clear();
        }
        if (line == "\r\n" || line == "\n") hasWholeHead = true;
        const auto colon = line.find(':');
        if (colon == line.npos) return;
        auto& field = reply.headers[text::repaired(line.substr(0, colon))];
        if (!field.empty()) field += ", ";
        field += text::repaired(withoutSurroundingWhitespace(line.substr(colon + 1)));
    }

    std::size_t giveBody(char* out, std::size_t capacity) {
        const auto got = body->read(out, capacity);
        if (request.watch.moved) request.watch.moved(static_cast<std::int64_t>(body->position()));
        return got;
    }

    void takeBody(std::string_view bytes) {
        if (reply.body.empty()) reserve();
        if (bytes.size() > limits.bodyBytes - reply.body.size()) refuse();
        reply.body.append(bytes);
    }

 private:
    [[noreturn]] void refuse() const { throw ASCError(ASCError::InvalidResponse{request.url.path()}); }

    // A large reply then isn't copied over and over while it grows. Memory that is only reserved isn't taken yet, should
    // the announcement be a lie. Of a compressed reply it says too little.
    void reserve() {
        curl_off_t announced = 0;
        curl_easy_getinfo(handle, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &announced);
        const auto bytes = static_cast<std::uint64_t>(std::max<curl_off_t>(announced, 0));
        if (bytes > limits.bodyBytes) refuse();
        reply.body.reserve(std::max(static_cast<std::size_t>(bytes), expectedBody));
    }
};

std::size_t onHeader(char* bytes, std::size_t size, std::size_t count, void* data) {
    auto& transfer = *static_cast<Transfer*>(data);
    const bool taken = transfer.guarded([&] { transfer.takeHeaderLine({bytes, size * count}); });
    return taken ? size * count : 0;
}

std::size_t onBody(char* bytes, std::size_t size, std::size_t count, void* data) {
    auto& transfer = *static_cast<Transfer*>(data);
    const bool taken = transfer.guarded([&] { transfer.takeBody({bytes, size * count}); });
    return taken ? size * count : CURL_WRITEFUNC_ERROR;
}

std::size_t onRead(char* out, std::size_t size, std::size_t count, void* data) {
    auto& transfer = *static_cast<Transfer*>(data);
    std::size_t got = 0;
    const bool read = transfer.guarded([&] { got = transfer.giveBody(out, size * count); });
    return read ? got : CURL_READFUNC_ABORT;
}

// libcurl goes back to the start of a body to send it again on a new connection when a kept one died without a
// reply. What was begun may have arrived, and a POST must not arrive twice.
int onSeek(void* data, curl_off_t offset, int origin) {
    auto& transfer = *static_cast<Transfer*>(data);
    if (offset != 0 || origin != SEEK_SET) return CURL_SEEKFUNC_CANTSEEK;
    if (transfer.request.method == "POST" && !transfer.body->isUntouched()) return CURL_SEEKFUNC_FAIL;
    transfer.body->rewind();
    return CURL_SEEKFUNC_OK;
}

void setPolicy(CURL* handle) {
    setCurlOption(handle, CURLOPT_NOSIGNAL, 1L);
    setCurlOption(handle, CURLOPT_PROTOCOLS_STR, "http,https");
    setCurlOption(handle, CURLOPT_FOLLOWLOCATION, 0L);
    setCurlOption(handle, CURLOPT_SSL_VERIFYPEER, 1L);
    setCurlOption(handle, CURLOPT_SSL_VERIFYHOST, 2L);
    setCurlOption(handle, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
    setCurlOption(handle, CURLOPT_ACCEPT_ENCODING, "");
    setCurlOption(handle, CURLOPT_PATH_AS_IS, 1L);
    // A proxy is another host: it must neither see our headers nor be mistaken for the other side.
    setCurlOption(handle, CURLOPT_HEADEROPT, static_cast<long>(CURLHEADER_SEPARATE));
    setCurlOption(handle, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
#if LIBCURL_VERSION_NUM >= 0x075700
    // A stop doesn't wait for a name that is still being looked up.
    setCurlOption(handle, CURLOPT_QUICK_EXIT, 1L);
#endif
}

void setTrust(CURL* handle, const std::filesystem::path& certificates) {
    if (certificates.empty()) return;
    setCurlOption(handle, CURLOPT_CAINFO, certificates.c_str());
    setCurlOption(handle, CURLOPT_CAPATH, static_cast<const char*>(nullptr));
}

TransportError unsendable(const char* reason) {
    return TransportError(TransportError::Code::unsupportedURL, reason);
}

void setHeaders(const HTTPRequest& request, HeaderList& list) {
    // libcurl takes "Name:" for a field that is to be left out and "Name;" for one without a value.
    for (const std::string_view unwanted : {"Accept", "Expect", "User-Agent", "Content-Type"}) {
        if (!request.headers.contains(unwanted)) list.append(std::string(unwanted) + ":");
    }
    for (const auto& [name, value] : request.headers) {
        if (!isHTTPToken(name) || !isHTTPFieldValue(value)) {
            throw unsendable("a header field that can't be sent");
        }
        list.append(value.empty() ? name + ";" : name + ": " + value);
    }
}

void setMethodAndBody(Transfer& transfer) {
    auto* handle = transfer.handle;
    const auto& method = transfer.request.method;
    const bool wantsBody = method == "POST" || method == "PUT" || method == "PATCH";
    if (!transfer.request.body && !wantsBody) {
        setCurlOption(handle, CURLOPT_HTTPGET, 1L);
    } else {
        static const HTTPBody kNothing{std::string()};
        transfer.body.emplace(transfer.request.body ? *transfer.request.body : kNothing);
        setCurlOption(handle, CURLOPT_UPLOAD, 1L);
        setCurlOption(handle, CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(transfer.body->length()));
        setCurlOption(handle, CURLOPT_READFUNCTION, onRead);
        setCurlOption(handle, CURLOPT_READDATA, &transfer);
        setCurlOption(handle, CURLOPT_SEEKFUNCTION, onSeek);
        setCurlOption(handle, CURLOPT_SEEKDATA, &transfer);
        // With no body there is nothing to go back in, so onSeek can't keep a POST from being sent twice.
        if (method == "POST" && transfer.body->length() == 0)
            setCurlOption(handle, CURLOPT_FRESH_CONNECT, 1L);
    }
    setCurlOption(handle, CURLOPT_CUSTOMREQUEST, method.c_str());
}

void setReply(Transfer& transfer) {
    setCurlOption(transfer.handle, CURLOPT_HEADERFUNCTION, onHeader);
    setCurlOption(transfer.handle, CURLOPT_HEADERDATA, &transfer);
    setCurlOption(transfer.handle, CURLOPT_WRITEFUNCTION, onBody);
    setCurlOption(transfer.handle, CURLOPT_WRITEDATA, &transfer);
}

TransportError::Code codeOf(CURLcode result) {
    using Code = TransportError::Code;
    switch (result) {
        case CURLE_URL_MALFORMAT:
            return Code::unsupportedURL;
        case CURLE_COULDNT_RESOLVE_HOST:
        case CURLE_COULDNT_RESOLVE_PROXY:
            return Code::cannotFindHost;
        case CURLE_COULDNT_CONNECT:
        case CURLE_PROXY:
            return Code::cannotConnectToHost;
        case CURLE_OPERATION_TIMEDOUT:
            return Code::timedOut;
        case CURLE_PARTIAL_FILE:
        case CURLE_GOT_NOTHING:
        case CURLE_SEND_ERROR:
        case CURLE_SEND_FAIL_REWIND:
        case CURLE_RECV_ERROR:
        case CURLE_HTTP2:
        case CURLE_HTTP2_STREAM:
            return Code::networkConnectionLost;
        case CURLE_SSL_CONNECT_ERROR:
        case CURLE_PEER_FAILED_VERIFICATION:
        case CURLE_SSL_CACERT_BADFILE:
        case CURLE_SSL_CIPHER:
        case CURLE_SSL_ISSUER_ERROR:
            return Code::secureConnectionFailed;
        case CURLE_BAD_CONTENT_ENCODING:
            return Code::cannotDecodeContentData;
        default:
            return Code::unknown;
    }
}

}  // namespace

CurlTransport::CurlTransport(Limits limits, std::filesystem::path certificates)
    : connection_(std::make_unique<CurlConnection>()),
      limits_(limits),
      certificates_(std::move(certificates)) {}

CurlTransport::~CurlTransport() = default;

HTTPResponse CurlTransport::send(const HTTPRequest& request, const std::stop_token& stop) {
    if (!request.url.origin()) throw unsendable("only http and https are spoken");
    if (!isHTTPToken(request.method)) throw unsendable("not a method");
    auto* handle = connection_->fresh();

    Transfer transfer{request, limits_, handle, expectedBody_};
    HeaderList headers;
    setPolicy(handle);
    setTrust(handle, certificates_);
    setHeaders(request, headers);
    setCurlOption(handle, CURLOPT_URL, request.url.absoluteString().c_str());
    setCurlOption(handle, CURLOPT_HTTPHEADER, headers.get());
    setCurlOption(handle, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(request.idleLimit.count()) + 1000);
    setMethodAndBody(transfer);
    setReply(transfer);

    const CURLcode result = connection_->run(transfer.lastMove, request.idleLimit, stop);
    if (transfer.failure) std::rethrow_exception(transfer.failure);
    // The scheme is one that libcurl speaks, so this is its word for a reply that isn't HTTP.
    if (result == CURLE_UNSUPPORTED_PROTOCOL || result == CURLE_WEIRD_SERVER_REPLY) {
        throw ASCError(ASCError::InvalidResponse{request.url.path()});
    }
    if (result != CURLE_OK) throw TransportError(codeOf(result), curl_easy_strerror(result));
    // libcurl takes the end of the connection for the end of the headers, too.
    if (!transfer.hasWholeHead)
        throw TransportError(TransportError::Code::networkConnectionLost, "half a head");

    long status = 0;
    curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &status);
    transfer.reply.status = static_cast<int>(status);
    expectedBody_ = std::min(transfer.reply.body.size(), kLargestExpected);
    return std::move(transfer.reply);
}

}  // namespace kestrin
