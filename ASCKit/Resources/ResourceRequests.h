// What every typed read and write stands on.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ASCKit/ASCClient.h"
#include "ASCKit/JSONAPIDocument.h"

namespace kestrin::ASC {

struct Update {
    std::string type;
    std::string id;
    JSONObject attributes = {};
    JSONObject relationships = {};
    std::string apiVersion = "v1";
};

struct Creation {
    std::string type;
    JSONObject attributes = {};
    JSONObject relationships = {};
    JSONArray included = {};
    std::string apiVersion = "v1";
};

// PATCH /{apiVersion}/{type}/{id}; the body has attributes and relationships only where there are any. The changed
// resource, or nothing where the reply has none: a 204 without a body is a success.
std::optional<ResourceObject> update(ASCClient& client, const Update& update);

// POST /{apiVersion}/{type}; the body always has attributes and relationships, and `included` where there is any.
// Not sent again when the reply is lost. A reply without a resource is InvalidResponse, for what was created must
// come back.
ResourceObject create(ASCClient& client, const Creation& creation);

// A to-one relationship; without an id the one that clears it, {"data": null}.
JSONValue relationship(std::string_view type, const std::optional<std::string>& id);

// A to-many relationship, in the order given.
JSONValue relationship(std::string_view type, const std::vector<std::string>& ids);

// One request and the first resource of its reply; nothing for an empty list. InvalidResponse for a reply that
// isn't a document.
std::optional<ResourceObject> one(ASCClient& client, const ASCRequest& request);

}  // namespace kestrin::ASC
