#include "ASCKit/ASCClient.h"

#include <iterator>
#include <utility>

#include "ASCKit/Transport/CurlTransport.h"
#include "KestrinCore/JSONDecoding.h"
#include "KestrinCore/Message.h"

namespace kestrin {
namespace {

constexpr int kUnauthorized = 401;
constexpr int kTooManyRequests = 429;
constexpr int kServiceUnavailable = 503;

bool isSuccess(int status) {
    return status >= 200 && status <= 299;
}

// 429 and 503 say that the request wasn't worked on, so that even a POST may be sent again.
bool mayRetry(int status, HTTPMethod method) {
    if (status == kTooManyRequests || status == kServiceUnavailable) return true;
    return status >= 500 && status <= 599 && method != HTTPMethod::post;
}

ASCError httpError(const HTTPResponse& reply, const std::string& path) {
    return ASCError(ASCError::HTTP{reply.status, APIErrorItem::decodeAll(reply.body), path});
}

ASCError failureOf(const HTTPResponse& reply, const std::string& path) {
    if (reply.status == kTooManyRequests) return ASCError(ASCError::RateLimited{});
    return httpError(reply, path);
}

std::string askedToWait() {
    return message::localized("waitAsked", "App Store Connect asked to wait before the next try");
}

std::string noGoodReply() {
    return message::localized("waitNoReply",
                              "App Store Connect didn’t answer as it should; waiting before the next try");
}

template <class Decode>
JSONAPIDocument documentBy(Decode&& decode, std::string_view body, const std::string& path) {
    if (body.empty()) return {};
    try {
        return decode(body);
    } catch (const DecodingError&) {
        throw ASCError(ASCError::InvalidResponse{path});
    }
}

}  // namespace

// A wait before another try, and why it is made.
struct ASCClient::Delay {
    Seconds length;
    std::string reason;
};

// One call of perform: what is sent, however often.
struct ASCClient::Exchange {
    HTTPMethod method;
    URL url;
    const std::optional<std::string>& body;
    const std::string& path;
};

ASCClient::ASCClient(TokenProvider tokens, std::shared_ptr<HTTPTransport> transport, Options options)
    : tokens_(std::move(tokens)),
      transport_(std::move(transport)),
      retryPolicy_(std::move(options.retryPolicy)),
      root_(options.root ? *std::move(options.root) : apiRoot()),
      now_(std::move(options.now)),
      sleep_(std::move(options.sleep)),
      stop_(std::move(options.stop)),
      waitNotes_(std::move(options.waitNotes)),
      uploadNews_(std::move(options.uploadNews)) {}

ASCClient::ASCClient(const APIKeyCredential& credential, Options options)
    : ASCClient(TokenProvider(JWTSigner(credential)), std::make_shared<CurlTransport>(), std::move(options)) {
}

JSONAPIDocument ASCClient::send(const ASCRequest& request) {
    return decode(data(request), request.path);
}

std::vector<ResourceObject> ASCClient::all(const ASCRequest& request) {
    std::vector<ResourceObject> resources;
    forEachPage(request, JSONAPIDocument::decode, [&](JSONAPIDocument page) {
        std::move(page.data.begin(), page.data.end(), std::back_inserter(resources));
    });
    return resources;
}

std::vector<JSONAPIDocument> ASCClient::pages(const ASCRequest& request) {
    std::vector<JSONAPIDocument> pages;
    forEachPage(request, JSONAPIDocument::decode,
                [&](JSONAPIDocument page) { pages.push_back(std::move(page)); });
    return pages;
}

std::vector<JSONAPIDocument> ASCClient::pages(const ASCRequest& request, const ResourceFields& fields) {
    std::vector<JSONAPIDocument> pages;
    const auto decode = [&](std::string_view bytes) { return JSONAPIDocument::decodeOnly(fields, bytes); };
    forEachPage(request, decode, [&](JSONAPIDocument page) { pages.push_back(std::move(page)); });
    return pages;
}

template <class Decode, class Take>
void ASCClient::forEachPage(const ASCRequest& request, Decode&& decode, Take&& take) {
    std::optional<URL> next = addressOf(request);
    while (next) {
        const auto body = perform({request.method, *next, request.body, request.path});
        auto page = documentBy(decode, body, request.path);
        next = std::move(page.nextURL);
        // A link that leads elsewhere must not take the token there; one without a host can't be sent as it stands.
        if (next && !isBelowRoot(*next)) throw ASCError(ASCError::InvalidResponse{request.path});
        take(std::move(page));
    }
}

std::string ASCClient::data(const ASCRequest& request) {
    return perform({request.method, addressOf(request), request.body, request.path});
}

std::string ASCClient::data(const URL& url) {
    const auto path = url.path();
    if (!isBelowRoot(url)) throw ASCError(ASCError::InvalidRequest{path});
    return perform({HTTPMethod::get, url, std::nullopt, path});
}

URL ASCClient::addressOf(const ASCRequest& request) const {
    auto url = request.url(root_);
    if (!url || !isBelowRoot(*url)) throw ASCError(ASCError::InvalidRequest{request.path});
    return *std::move(url);
}

bool ASCClient::isBelowRoot(const URL& url) const {
    const auto origin = url.origin();
    return origin && origin == root_.origin();
}

JSONAPIDocument ASCClient::decode(std::string_view body, const std::string& path) {
    return documentBy(JSONAPIDocument::decode, body, path);
}

std::string ASCClient::perform(const Exchange& exchange) {
    bool tokenRefreshed = false;
    LongWait wait(sleep_, waitNotes_);
    for (int attempt = 0;;) {
        auto outcome = sendOnce(authorized(exchange));
        if (const auto* failure = std::get_if<TransportError::Code>(&outcome)) {
            if (exchange.method == HTTPMethod::post || attempt + 1 >= retryPolicy_.maxAttempts) {
                throw ASCError(ASCError::Transport{*failure, exchange.path});
            }
            backOff(wait, ++attempt);
            continue;
        }

        auto& reply = std::get<HTTPResponse>(outcome);
        if (const auto reading = RateLimitStatus::parse(reply.header("X-Rate-Limit"))) rateLimit_ = reading;
        if (isSuccess(reply.status)) return std::move(reply.body);
        if (reply.status == kUnauthorized) {
            if (std::exchange(tokenRefreshed, true)) throw ASCError(ASCError::Unauthorized{});
            tokens_.invalidate();
            continue;
        }
        const auto delay = delayBeforeRetry(reply, exchange.method, attempt + 1);
        if (!delay) throw failureOf(reply, exchange.path);
        wait.sleep(delay->length, delay->reason, stop_);
        ++attempt;
    }
}

HTTPRequest ASCClient::authorized(const Exchange& exchange) {
    HTTPRequest request{std::string(rawValue(exchange.method)), exchange.url};
    request.headers.emplace("Authorization", "Bearer " + tokens_.token());
    if (exchange.body) {
        request.headers.emplace("Content-Type", "application/json");
        request.body = *exchange.body;
    }
    return request;
}

std::variant<HTTPResponse, TransportError::Code> ASCClient::sendOnce(const HTTPRequest& request) {
    throwIfStopped(stop_);
    try {
        return transport_->send(request, stop_);
    } catch (const TransportError& error) {
        if (error.code == TransportError::Code::cancelled) throw Cancelled();
        return error.code;
    }
}

std::optional<ASCClient::Delay> ASCClient::delayBeforeRetry(const HTTPResponse& reply, HTTPMethod method,
                                                            int next) const {
    if (next >= retryPolicy_.maxAttempts || !mayRetry(reply.status, method)) return std::nullopt;
    const auto asked = RetryPolicy::retryAfter(reply.header("Retry-After"), now_());
    Delay delay{asked ? *asked : retryPolicy_.backoff(next), asked ? askedToWait() : noGoodReply()};
    if (delay.length > retryPolicy_.maxRetryAfter) return std::nullopt;
    return delay;
}

void ASCClient::backOff(LongWait& wait, int next) const {
    wait.sleep(retryPolicy_.backoff(next), noGoodReply(), stop_);
}

void ASCClient::sendUploadPart(const HTTPRequest& request) {
    static const std::string kPath = "upload";
    LongWait wait(sleep_, waitNotes_);
    for (int attempt = 0;; ++attempt) {
        const auto outcome = sendOnce(request);
        const auto* reply = std::get_if<HTTPResponse>(&outcome);
        if (reply && isSuccess(reply->status)) return;

        const bool mayRetryHere = !reply || reply->status >= 500;
        if (!mayRetryHere || attempt + 1 >= retryPolicy_.maxAttempts) {
            if (reply) throw httpError(*reply, kPath);
            throw ASCError(ASCError::Transport{std::get<TransportError::Code>(outcome), kPath});
        }
        backOff(wait, attempt + 1);
    }
}

}  // namespace kestrin
