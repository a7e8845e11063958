// Replies of the API (https://jsonapi.org/format/1.0/).
#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ASCKit/URL.h"
#include "KestrinCore/JSONDecoding.h"
#include "KestrinCore/StableJSON.h"

namespace kestrin {

struct ResourceObject {
    std::string type;
    std::string id;
    JSONObject attributes, relationships, links;  // empty when absent

    // `type` and `id` are required. DecodingError for anything that isn't a resource.
    static ResourceObject fromJSON(JSONValue value);

    // The id behind a to-one relationship; nullopt for one that is null, absent, to-many or without data.
    std::optional<std::string> relatedID(std::string_view relationship) const;

    // The first of these attributes that is a text: the API spells some attributes two ways. nullopt when none is.
    std::optional<std::string> string(std::initializer_list<std::string_view> names) const;
    std::optional<std::string> string(std::string_view name) const { return string({name}); }

    bool operator==(const ResourceObject&) const = default;
};

// Names of attributes and relationships, and of what stands in them.
class ResourceFields {
 public:
    ResourceFields(std::initializer_list<std::string_view> names);  // valid as long as the texts are
    ResourceFields& operator+=(const ResourceFields& others);

 private:
    friend struct JSONAPIDocument;
    StableJSON::MemberNames members_;  // and those that make a document
};

struct JSONAPIDocument {
    std::vector<ResourceObject> data;      // a single resource is a list of one
    std::vector<ResourceObject> included;  // empty when absent
    std::optional<URL> nextURL;            // links.next as it stands; nullopt on the last page
    std::optional<JSONValue> meta;

    // `data` must be a resource or a list of them. DecodingError for one that is null or absent too: whoever expects
    // one takes the reply's bytes (ASCClient::data) and asks hasNullData.
    static JSONAPIDocument fromJSON(JSONValue value);

    // The reply's bytes; throws DecodingError. No bytes at all are not a document.
    static JSONAPIDocument decode(std::string_view bytes);

    // The same for who needs only some fields of the resources, since much of a large page is links and attributes that
    // nobody reads: fields whose names aren't among `fields`, at any depth, may be missing, and the members of links and
    // of `meta`. What isn't a document to decode() isn't one here either.
    static JSONAPIDocument decodeOnly(const ResourceFields& fields, std::string_view bytes);

    // Whether these bytes are a document whose `data` is there and null: a to-one read that found nothing.
    static bool hasNullData(std::string_view bytes);

    bool operator==(const JSONAPIDocument&) const = default;
};

}  // namespace kestrin
