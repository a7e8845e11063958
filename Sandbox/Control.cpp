#include "Sandbox/Control.h"

#include <fmt/format.h>

#include <algorithm>
#include <sstream>

#include "Sandbox/Document.h"
#include "Sandbox/Refusal.h"
#include "Sandbox/Resources/Reviewing.h"
#include "Sandbox/Resources/States.h"
#include "Sandbox/Schema.h"
#include "Sandbox/Seed.h"

namespace kestrin::sandbox {
namespace {

[[noreturn]] void reject(std::string why) {
    throw Refusal(ErrorItem{400, "SANDBOX_CONTROL", std::move(why)});
}

[[noreturn]] void notThere(std::string what) {
    throw Refusal(ErrorItem{404, "SANDBOX_CONTROL", "There is no " + std::move(what)});
}

Json bodyOf(const HTTPRequest& request) {
    auto body = parsedJSON(request.body);
    if (!body || !body->is_object()) reject("The body must be a JSON object");
    return *std::move(body);
}

// A member that must be an object; an empty one when it is absent.
Json objectMember(const Json& body, const char* name) {
    auto member = body.value(name, Json::object());
    if (!member.is_object()) reject(fmt::format("'{}' must be an object", name));
    return member;
}

void checkMembers(const Json& body, std::initializer_list<std::string_view> known) {
    for (const auto& [name, value] : body.items()) {
        if (std::find(known.begin(), known.end(), name) == known.end()) {
            reject(fmt::format("There is no member '{}'", name));
        }
    }
}

void checkAttributes(const ResourceType& type, const Json& attributes) {
    for (const auto& [name, value] : attributes.items()) {
        if (std::find(type.attributes.begin(), type.attributes.end(), name) == type.attributes.end()) {
            reject(fmt::format("{} have no attribute '{}'", type.name, name));
        }
    }
}

// From {"app": {"data": {"type", "id"}}}; nullopt for null, which takes a relationship away.
std::map<std::string, std::optional<Ref>> readRelationships(const State& state, const ResourceType& type,
                                                            const Json& relationships) {
    std::map<std::string, std::optional<Ref>> read;
    for (const auto& [name, relationship] : relationships.items()) {
        const auto* rule = type.relationship(name);
        if (rule == nullptr || rule->reach != Relationship::Reach::one) {
            reject(fmt::format("{} keep no relationship '{}'", type.name, name));
        }
        const auto data = relationship.is_object() ? relationship.value("data", Json()) : Json();
        if (data.is_null()) {
            read[name] = std::nullopt;
            continue;
        }
        if (!data.is_object()) reject(fmt::format("'{}' must be null or an identifier", name));
        const Ref other{data.value("type", ""), data.value("id", "")};
        if (state.store.find(other) == nullptr) notThere(fmt::format("{} '{}'", other.type, other.id));
        read[name] = other;
    }
    return read;
}

// The deprecated spelling follows when only the other one is given, as it does in the real service.
void followState(const Json& given, Resource& resource) {
    if (given.contains("appStoreState")) return;
    if (resource.type() == "appStoreVersions" && given.contains("appVersionState")) {
        setVersionState(resource, resource.text("appVersionState"));
    }
    if (resource.type() == "appInfos" && given.contains("state")) {
        setAppInfoState(resource, resource.text("state"));
    }
}

void change(State& state, Resource& resource, const Json& attributes,
            const std::map<std::string, std::optional<Ref>>& related) {
    for (const auto& [name, value] : attributes.items()) resource.attributes[name] = value;
    followState(attributes, resource);
    for (const auto& [name, other] : related) state.store.relate(resource, name, other);
}

std::vector<Resource*> selected(State& state, const std::string& type, const HTTPRequest& request) {
    const auto conditions = parseQuery(request.query());
    auto list = state.store.all(type);
    std::erase_if(list, [&](const Resource* resource) {
        return !std::all_of(conditions.begin(), conditions.end(), [&](const QueryParameter& wanted) {
            const auto values = state.store.valuesAt(*resource, wanted.name);
            return std::find_first_of(values.begin(), values.end(), wanted.values.begin(),
                                      wanted.values.end()) != values.end();
        });
    });
    return list;
}

HTTPReply listed(const std::vector<Resource*>& resources) {
    Json list = Json::array();
    for (const auto* resource : resources) list.push_back(resourceJSON(*resource));
    return jsonReply(200, {{"resources", list}});
}

HTTPReply patchResources(State& state, const ResourceType& type, const HTTPRequest& request) {
    const auto body = bodyOf(request);
    checkMembers(body, {"attributes", "relationships"});
    const auto attributes = objectMember(body, "attributes");
    checkAttributes(type, attributes);
    const auto related = readRelationships(state, type, objectMember(body, "relationships"));
    const auto resources = selected(state, type.name, request);
    if (resources.empty()) notThere(fmt::format("{} of that kind", type.name));
    for (auto* resource : resources) change(state, *resource, attributes, related);
    return listed(resources);
}

HTTPReply addResource(State& state, const ResourceType& type, const HTTPRequest& request) {
    const auto body = bodyOf(request);
    checkMembers(body, {"id", "attributes", "relationships"});
    const auto attributes = objectMember(body, "attributes");
    checkAttributes(type, attributes);
    const auto related = readRelationships(state, type, objectMember(body, "relationships"));
    const auto id = body.value("id", "");
    if (state.store.find(type.name, id) != nullptr) reject(fmt::format("There is a {} '{}'", type.name, id));
    auto& resource = state.store.add(type.name, Json::object(), {}, id);
    change(state, resource, attributes, related);
    return listed({&resource});
}

HTTPReply removeResources(State& state, const ResourceType& type, const HTTPRequest& request) {
    const auto resources = selected(state, type.name, request);
    if (resources.empty()) notThere(fmt::format("{} of that kind", type.name));
    std::vector<Ref> refs;
    for (const auto* resource : resources) refs.push_back(resource->ref);
    for (const auto& ref : refs) {
        state.media.erase(ref.id);
        state.store.remove(ref);
    }
    return noContent();
}

HTTPReply answerResources(State& state, const std::string& typeName, const HTTPRequest& request) {
    const auto* type = findResourceType(typeName);
    if (type == nullptr) notThere("type " + typeName);
    if (request.method == "GET") return listed(selected(state, type->name, request));
    if (request.method == "PATCH") return patchResources(state, *type, request);
    if (request.method == "POST") return addResource(state, *type, request);
    if (request.method == "DELETE") return removeResources(state, *type, request);
    notThere(request.method + " of resources");
}

HTTPReply answerState(State& state, const HTTPRequest& request) {
    if (request.method == "GET") return jsonReply(200, stateJSON(state));
    if (request.method != "PUT") notThere(request.method + " of the state");
    const auto seed = seeds::fromDocument(bodyOf(request));
    State fresh{state.settings, {}, {}, {}, state.root};
    try {
        seed(fresh);
    } catch (const std::exception& error) {
        reject(error.what());
    }
    state = std::move(fresh);
    return noContent();
}

HTTPReply answerFaults(Faults& faults, const HTTPRequest& request) {
    if (request.method == "DELETE") faults.clear();
    if (request.method == "POST") {
        // All or none: a line that can't be read must not leave half of a plan behind.
        Faults wanted = faults;
        std::istringstream lines(request.body);
        try {
            for (std::string line; std::getline(lines, line);) {
                if (!line.empty()) wanted.add(line);
            }
        } catch (const std::invalid_argument& error) {
            reject(error.what());
        }
        faults = std::move(wanted);
    }
    return {200, {}, "text/plain", fmt::format("{}\n", fmt::join(faults.lines(), "\n"))};
}

HTTPReply changeSettings(const ControlDesk& desk, const HTTPRequest& request) {
    const auto body = bodyOf(request);
    checkMembers(body, {"requestsPerHour", "requestsMade", "processingReads"});
    for (const auto& [name, value] : body.items()) {
        if (!value.is_number_unsigned()) reject(fmt::format("'{}' must be a whole number", name));
    }
    auto& settings = desk.state.settings;
    if (body.contains("requestsPerHour")) desk.rateLimit.setLimit(body["requestsPerHour"].get<std::size_t>());
    if (body.contains("requestsMade")) {
        desk.rateLimit.setMade(body["requestsMade"].get<std::size_t>(), settings.now());
    }
    settings.processingReads = body.value("processingReads", settings.processingReads);
    return noContent();
}

HTTPReply revokeKey(TokenVerifier& tokens, const std::string& keyID) {
    if (!tokens.revoke(keyID)) notThere("key " + keyID);
    return noContent();
}

Verdict verdictOf(const Json& body) {
    const auto word = body.value("verdict", Json());
    if (word == "begin") return Verdict::begin;
    if (word == "approve") return Verdict::approve;
    if (word == "reject") return Verdict::reject;
    reject("'verdict' must be begin, approve or reject");
}

HTTPReply review(State& state, const HTTPRequest& request) {
    const auto body = bodyOf(request);
    checkMembers(body, {"verdict"});
    const auto verdict = verdictOf(body);
    auto submissions = selected(state, "reviewSubmissions", request);
    std::erase_if(submissions, [](const Resource* each) {
        return each->text("state") != "WAITING_FOR_REVIEW" && each->text("state") != "IN_REVIEW";
    });
    if (submissions.empty()) notThere("review submission that is with App Review");
    for (auto* submission : submissions) judge(state, *submission, verdict);
    return listed(submissions);
}

HTTPReply answerLog(RequestLog& log, const HTTPRequest& request) {
    if (request.method == "DELETE") log.clear();
    return jsonReply(200, log.toJSON());
}

}  // namespace

HTTPReply answerControl(const ControlDesk& desk, const HTTPRequest& request) {
    const auto path = request.path().substr(kControlPathStart.size());
    const auto slash = path.find('/');
    const auto head = path.substr(0, slash);
    const auto rest = slash == std::string::npos ? std::string() : path.substr(slash + 1);
    if (head == "resources") return answerResources(desk.state, rest, request);
    if (head == "keys" && request.method == "DELETE") return revokeKey(desk.tokens, rest);
    if (path == "state") return answerState(desk.state, request);
    if (path == "review" && request.method == "POST") return review(desk.state, request);
    if (path == "log") return answerLog(desk.log, request);
    if (path == "faults") return answerFaults(desk.faults, request);
    if (path == "settings" && request.method == "PATCH") return changeSettings(desk, request);
    notThere("path " + request.path());
}

}  // namespace kestrin::sandbox
