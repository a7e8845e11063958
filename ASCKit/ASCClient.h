// The one door to the App Store Connect API. Resource operations are thin layers on what is here.
//
// Every request carries a bearer token and asks for nothing but the JSON the API sends. What happens to a reply:
//
//   2xx                                     its body is the result
//   401                                     one fresh token, sent again at once; a second 401 is Unauthorized
//   429, 503                                waited for and sent again, whatever the method
//   other 5xx                               the same, but never for a POST
//   no reply                                the same, but never for a POST, which may have arrived
//   anything else                           HTTP, with the reply's error items
//
// A wait is what Retry-After says, or else RetryPolicy's backoff; one over RetryPolicy::maxRetryAfter isn't waited
// for. When the tries are used up, a 429 is RateLimited, any other status HTTP, no reply Transport.
//
// Calls block. A stop ends any of them, its waits included, with Cancelled. An error names the path of the request
// that failed. A token goes to the root's scheme, host and port and to nobody else: any other address is refused
// before anything is sent.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "ASCKit/ASCError.h"
#include "ASCKit/ASCRequest.h"
#include "ASCKit/Credentials/TokenProvider.h"
#include "ASCKit/JSONAPIDocument.h"
#include "ASCKit/Transport/HTTPTransport.h"
#include "ASCKit/Transport/RateLimitStatus.h"
#include "ASCKit/Transport/RetryPolicy.h"
#include "KestrinCore/Clock.h"
#include "KestrinCore/LongWait.h"

namespace kestrin {

// How far an upload has come, for whoever shows it.
struct UploadNews {
    std::string fileName = {};  // "" for bytes that aren't a file's
    std::int64_t sent = 0;      // bytes; less than before when a part has to be sent again
    std::int64_t total = 0;     // of all parts
    bool isOver = false;        // the last news of the upload, whether it worked or not

    bool operator==(const UploadNews&) const = default;
};
using UploadNewsHandler = std::function<void(const UploadNews&)>;

class ASCClient {
 public:
    // Where the API lives. Which address that is depends on the executable: `kestrin` links ASCApiRoot and has the
    // one that was fixed when it was built; an executable that speaks to the sandbox links ASCSandboxApiRoot.
    static URL apiRoot();

    struct Options {
        RetryPolicy retryPolicy = {};
        std::optional<URL> root = std::nullopt;  // apiRoot() when absent
        Clock now = systemNow;
        Sleep sleep = sleepOnSteadyClock;
        std::stop_token stop = {};
        WaitNotes waitNotes = {};  // of waits before another try; one wait lasts as long as its request
        UploadNewsHandler uploadNews = {};  // absent: nobody wants to know
    };

    // Over the network. Throws ASCError::InvalidPrivateKey.
    explicit ASCClient(const APIKeyCredential& credential, Options options);
    explicit ASCClient(const APIKeyCredential& credential) : ASCClient(credential, Options{}) {}

    ASCClient(TokenProvider tokens, std::shared_ptr<HTTPTransport> transport, Options options);

    // One page, decoded. An empty body is the empty document; one that isn't a document is InvalidResponse.
    JSONAPIDocument send(const ASCRequest& request);

    // Every resource of every page, in order. Next links are followed as they stand until a page has none.
    std::vector<ResourceObject> all(const ASCRequest& request);

    // The same, page by page, with what the pages include.
    std::vector<JSONAPIDocument> pages(const ASCRequest& request);

    // The same for who needs only these fields of the resources; others may be missing.
    std::vector<JSONAPIDocument> pages(const ASCRequest& request, const ResourceFields& fields);

    // The bytes of one reply, whatever they are.
    std::string data(const ASCRequest& request);

    // The same for a GET of a whole address, which must be below the root's host.
    std::string data(const URL& url);

    // A request to an address that the API handed out, complete as it is: no token is added. Every 5xx and every lost
    // reply is retried, whatever the method; nothing else is, and Retry-After isn't read. Errors have the path
    // "upload".
    void sendUploadPart(const HTTPRequest& request);

    // The body of a reply as a document, by the rules of send.
    static JSONAPIDocument decode(std::string_view body, const std::string& path);

    // The last reading that came with a reply; absent before the first.
    const std::optional<RateLimitStatus>& rateLimit() const { return rateLimit_; }

    // For whoever sends the parts of an upload.
    const UploadNewsHandler& uploadNews() const { return uploadNews_; }

    const URL& root() const { return root_; }

 private:
    struct Exchange;
    struct Delay;

    URL addressOf(const ASCRequest& request) const;
    bool isBelowRoot(const URL& url) const;
    template <class Decode, class Take>
    void forEachPage(const ASCRequest& request, Decode&& decode, Take&& take);

    std::string perform(const Exchange& exchange);
    HTTPRequest authorized(const Exchange& exchange);
    std::variant<HTTPResponse, TransportError::Code> sendOnce(const HTTPRequest& request);
    std::optional<Delay> delayBeforeRetry(const HTTPResponse& reply, HTTPMethod method, int next) const;
    void backOff(LongWait& wait, int next) const;

    TokenProvider tokens_;
    std::shared_ptr<HTTPTransport> transport_;
    RetryPolicy retryPolicy_;
    URL root_;
    Clock now_;
    Sleep sleep_;
    std::stop_token stop_;
    WaitNotes waitNotes_;
    UploadNewsHandler uploadNews_;
    std::optional<RateLimitStatus> rateLimit_;
};

}  // namespace kestrin
