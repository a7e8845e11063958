#include "Tests/SandboxedPush/InProcessSandbox.h"

#include "ASCKit/Transport/BodyReader.h"

namespace kestrin {
namespace {

using Kind = Trouble::Kind;

std::string bytesOf(const HTTPBody& body) {
    BodyReader reader(body);
    std::string bytes(reader.length(), '\0');
    for (std::size_t done = 0; done < bytes.size();)
        done += reader.read(bytes.data() + done, bytes.size() - done);
    return bytes;
}

sandbox::HTTPRequest sandboxed(const HTTPRequest& request) {
    sandbox::HTTPRequest made;
    made.method = request.method;
    made.target = request.url.absoluteString().substr(std::string_view(InProcessSandbox::kRoot).size());
    for (const auto& [name, value] : request.headers) made.headers.emplace_back(name, value);
    if (request.body) made.body = bytesOf(*request.body);
    if (!made.body.empty()) made.headers.emplace_back("Content-Length", std::to_string(made.body.size()));
    return made;
}

HTTPResponse responseOf(const sandbox::Answer& answer) {
    HTTPResponse response{answer.reply.status, {}, answer.reply.body};
    for (const auto& [name, value] : answer.reply.headers) response.headers.emplace(name, value);
    return response;
}

HTTPResponse refusal(int status) {
    return {status, {}, R"({"errors":[{"detail":"Trouble )" + std::to_string(status) + R"(."}]})"};
}

[[noreturn]] void loseConnection() {
    throw TransportError(TransportError::Code::networkConnectionLost);
}

}  // namespace

HTTPResponse InProcessSandbox::send(const HTTPRequest& request, const std::stop_token&) {
    const auto sent = sandboxed(request);
    const auto struck = trouble.next(sent.method + " " + sent.target);
    if (struck == Kind::serverError) return refusal(500);
    if (struck == Kind::conflict) return refusal(409);
    if (struck == Kind::unauthorized) return refusal(401);
    if (struck == Kind::lostRequest) loseConnection();
    const auto answer = service_.answer(sent);
    if (struck == Kind::lostReply) loseConnection();
    if (struck == Kind::killedAfter) throw ProcessKilled();
    auto response = responseOf(answer);
    if (!tellsRateLimit) response.headers.erase("X-Rate-Limit");
    return response;
}

}  // namespace kestrin
