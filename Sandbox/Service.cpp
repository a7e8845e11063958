#include "Sandbox/Service.h"

#include <fmt/format.h>

#include "Sandbox/Control.h"
#include "Sandbox/MediaAddresses.h"
#include "Sandbox/Refusal.h"
#include "Sandbox/Resources/Endpoints.h"

namespace kestrin::sandbox {
namespace {

bool isAPI(std::string_view path) {
    return path.starts_with("/v1/") || path.starts_with("/v2/");
}

bool bearsBody(const HTTPRequest& request) {
    if (!request.body.empty() || headerValue(request.headers, "Transfer-Encoding")) return true;
    return headerValue(request.headers, "Content-Length").value_or("0") != "0";
}

// Reads bear no body, writes one of JSON; a reply is JSON whether the client names it or not.
void checkMediaTypes(const HTTPRequest& request) {
    const auto accepted = headerValue(request.headers, "Accept").value_or("*/*");
    if (accepted.find("json") == std::string::npos && accepted.find("*/*") == std::string::npos &&
        accepted.find("application/*") == std::string::npos) {
        throw Refusal(ErrorItem{406, "NOT_ACCEPTABLE", "Only application/json can be given"});
    }
    if (request.method == "GET" || request.method == "DELETE") {
        if (!bearsBody(request)) return;
        throw Refusal(ErrorItem{400, "ENTITY_INVALID", fmt::format("A {} bears no body", request.method)});
    }
    const auto header = headerValue(request.headers, "Content-Type");
    const auto type = header ? std::string_view(*header).substr(0, header->find(';')) : std::string_view();
    if (type != "application/json" && type != "application/vnd.api+json") {
        throw Refusal(ErrorItem{415, "UNSUPPORTED_MEDIA_TYPE", "The body must be application/json"});
    }
}

void checkRole(const AccessKey& key, const HTTPRequest& request) {
    if (request.method == "GET" || key.role == AccessKey::Role::appManager) return;
    throw Refusal(refusals::forbidden("The API key's role doesn't allow this request."));
}

}  // namespace

Service::Service(Settings settings)
    : state_{std::move(settings), {}, {}, {}, {}},
      tokens_(state_.settings.keys),
      rateLimit_(state_.settings.requestsPerHour) {
    rateLimit_.setMade(state_.settings.requestsMade, state_.settings.now());
    addAppEndpoints(router_);
    addAppInfoEndpoints(router_);
    addVersionEndpoints(router_);
    addVersionLocalizationEndpoints(router_);
    addReviewDetailEndpoints(router_);
    addBuildEndpoints(router_);
    addCustomPageEndpoints(router_);
    addExperimentEndpoints(router_);
    addAssetLibraryEndpoints(router_);
    addPlacementEndpoints(router_);
    addRefDataEndpoints(router_);
    addReviewSubmissionEndpoints(router_);
    addBuildUploadEndpoints(router_);
}

Answer Service::answer(const HTTPRequest& request) {
    const std::lock_guard lock(mutex_);
    if (request.target.starts_with(kControlPathStart)) return {respondToControl(request), {}};
    auto& entry = log_.begin(request);
    const auto strike = faults_.strike(entry.line());
    Answer answer;
    answer.wire.delay = strike.latency;
    if (strike.fault != nullptr) entry.fault = strike.fault->text;

    const bool acts = strike.fault == nullptr || strike.fault->acts();
    if (acts) answer.reply = respond(request, entry);
    if (strike.fault != nullptr) Faults::apply(*strike.fault, answer);
    if (acts || strike.fault->action != Fault::Action::dropBefore) entry.status = answer.reply.status;

    // What follows on a connection can't be told from a body that wasn't read.
    if (request.method == "GET" && bearsBody(request)) answer.wire.closeAfterwards = true;
    if (isAPI(request.target)) answer.reply.headers.emplace_back("X-Rate-Limit", rateLimit_.header());
    if (observer_) observer_(entry);
    return answer;
}

HTTPReply Service::respondToControl(const HTTPRequest& request) {
    try {
        return answerControl({state_, faults_, log_, rateLimit_, tokens_}, request);
    } catch (const Refusal& refusal) {
        return refused(refusal.items);
    }
}

HTTPReply Service::respond(const HTTPRequest& request, LoggedRequest& entry) {
    try {
        if (isAPI(request.target)) return respondToAPI(request);
        entry.strayToken = headerValue(request.headers, "Authorization").has_value();
        const auto path = request.path();
        if (path.starts_with(Uploads::kPathStart))
            return state_.uploads.receive(request, state_.settings.now());
        if (path.starts_with(kMediaPathStart)) return answerMedia(state_, request);
        throw Refusal(ErrorItem{404, "PATH_ERROR", fmt::format("There is no path {}", path)});
    } catch (const Refusal& refusal) {
        return refused(refusal.items);
    } catch (const std::exception& fault) {
        return refused(
            {{500, "UNEXPECTED_ERROR", fmt::format("The sandbox itself failed: {}", fault.what())}});
    }
}

HTTPReply Service::respondToAPI(const HTTPRequest& request) {
    const auto now = state_.settings.now();
    const auto& key = tokens_.verify(headerValue(request.headers, "Authorization").value_or(""), now,
                                     request.method, request.target);
    if (!rateLimit_.take(now)) {
        throw Refusal(
            ErrorItem{429, "RATE_LIMIT_EXCEEDED", "The hourly request limit of the key was reached"});
    }
    const auto [endpoint, id] = router_.find(request.method, request.path());
    checkMediaTypes(request);
    checkRole(key, request);
    const Call call{request, id, readOptions(parseQuery(request.query()), endpoint->rules)};
    return endpoint->handler(state_, call);
}

HTTPReply Service::refused(const std::vector<ErrorItem>& items) {
    const int status = items.front().status;
    if (status == 406) return {status, {}, "text/plain", items.front().detail};
    if (status == 415) return {status, {}, {}, {}};
    return errorReply(items, state_.store.makeID("errors"));
}

RequestLog Service::log() const {
    const std::lock_guard lock(mutex_);
    return log_;
}

void Service::clearLog() {
    const std::lock_guard lock(mutex_);
    log_.clear();
}

void Service::addFault(std::string_view line) {
    const std::lock_guard lock(mutex_);
    faults_.add(line);
}

void Service::clearFaults() {
    const std::lock_guard lock(mutex_);
    faults_.clear();
}

void Service::revokeKey(std::string_view keyID) {
    const std::lock_guard lock(mutex_);
    tokens_.revoke(keyID);
}

void Service::setRequestsPerHour(std::size_t limit) {
    const std::lock_guard lock(mutex_);
    rateLimit_.setLimit(limit);
}

void Service::setObserver(std::function<void(const LoggedRequest&)> observer) {
    const std::lock_guard lock(mutex_);
    observer_ = std::move(observer);
}

void Service::setRoot(std::string root) {
    const std::lock_guard lock(mutex_);
    state_.root = std::move(root);
}

}  // namespace kestrin::sandbox
