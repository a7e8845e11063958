#include "ASCKit/Resources/ResourceRequests.h"

#include "KestrinCore/StableJSON.h"

namespace kestrin::ASC {
namespace {

std::optional<ResourceObject> first(JSONAPIDocument document) {
    if (document.data.empty()) return std::nullopt;
    return std::move(document.data.front());
}

std::optional<ResourceObject> write(ASCClient& client, HTTPMethod method, std::string path, JSONObject body) {
    ASCRequest request;
    request.method = method;
    request.path = std::move(path);
    request.body = StableJSON::encode(JSONValue(std::move(body)));
    return first(ASCClient::decode(client.data(request), request.path));
}

JSONObject identifier(std::string_view type, const std::string& id) {
    return {{"type", type}, {"id", id}};
}

}  // namespace

std::optional<ResourceObject> update(ASCClient& client, const Update& update) {
    auto data = identifier(update.type, update.id);
    if (!update.attributes.empty()) data.emplace("attributes", update.attributes);
    if (!update.relationships.empty()) data.emplace("relationships", update.relationships);
    return write(client, HTTPMethod::patch, "/" + update.apiVersion + "/" + update.type + "/" + update.id,
                 {{"data", std::move(data)}});
}

ResourceObject create(ASCClient& client, const Creation& creation) {
    JSONObject body{{"data", JSONObject{{"type", creation.type},
                                        {"attributes", creation.attributes},
                                        {"relationships", creation.relationships}}}};
    if (!creation.included.empty()) body.emplace("included", creation.included);
    const auto path = "/" + creation.apiVersion + "/" + creation.type;
    auto created = write(client, HTTPMethod::post, path, std::move(body));
    if (!created) throw ASCError(ASCError::InvalidResponse{path});
    return *std::move(created);
}

JSONValue relationship(std::string_view type, const std::optional<std::string>& id) {
    return JSONObject{{"data", id ? JSONValue(identifier(type, *id)) : JSONValue()}};
}

JSONValue relationship(std::string_view type, const std::vector<std::string>& ids) {
    JSONArray data;
    for (const auto& id : ids) data.emplace_back(identifier(type, id));
    return JSONObject{{"data", std::move(data)}};
}

std::optional<ResourceObject> one(ASCClient& client, const ASCRequest& request) {
    return first(ASCClient::decode(client.data(request), request.path));
}

}  // namespace kestrin::ASC
