#include "Sandbox/RequestLog.h"

#include <algorithm>
#include <set>

namespace kestrin::sandbox {
namespace {

bool bearsBytes(const HTTPRequest& request) {
    return request.method == "PUT";
}

Json headersJSON(const HTTPHeaders& headers) {
    Json list = Json::array();
    for (const auto& [name, value] : headers) {
        // A token is a secret even here: the log is shown and pasted.
        const bool secret = headerValue({{name, ""}}, "Authorization").has_value();
        list.push_back(name + ": " + (secret ? "Bearer …" : value));
    }
    return list;
}

}  // namespace

LoggedRequest& RequestLog::begin(const HTTPRequest& request) {
    LoggedRequest entry;
    entry.number = entries_.size() + 1;
    entry.method = request.method;
    entry.target = request.target;
    entry.headers = request.headers;
    if (!bearsBytes(request)) entry.body = request.body;
    entry.bodySize = request.body.size();
    entry.connection = request.connection;
    return entries_.emplace_back(std::move(entry));
}

std::vector<std::string> RequestLog::lines() const {
    std::vector<std::string> lines;
    for (const auto& entry : entries_) lines.push_back(entry.line());
    return lines;
}

std::size_t RequestLog::count(std::string_view method, std::string_view pathStart) const {
    return static_cast<std::size_t>(std::count_if(entries_.begin(), entries_.end(), [&](const auto& entry) {
        return entry.method == method && entry.target.starts_with(pathStart);
    }));
}

std::size_t RequestLog::connectionCount() const {
    std::set<int> connections;
    for (const auto& entry : entries_) connections.insert(entry.connection);
    return connections.size();
}

Json RequestLog::toJSON() const {
    Json list = Json::array();
    for (const auto& entry : entries_) {
        Json object{{"number", entry.number},         {"method", entry.method},
                    {"target", entry.target},         {"headers", headersJSON(entry.headers)},
                    {"bodySize", entry.bodySize},     {"status", entry.status},
                    {"connection", entry.connection}, {"strayToken", entry.strayToken}};
        if (!entry.body.empty()) object["body"] = parsedJSON(entry.body).value_or(Json(entry.body));
        if (!entry.fault.empty()) object["fault"] = entry.fault;
        list.push_back(std::move(object));
    }
    return {{"requests", list},
            {"count", entries_.size()},
            {"deletes", count("DELETE")},
            {"connections", connectionCount()}};
}

}  // namespace kestrin::sandbox
