// What the body of a write may hold, and the reading of a body by that form.
//
// A body is {"data": {"type", "id", "attributes", "relationships"}, "included": […]}. What isn't JSON is 400, what
// isn't of that shape 422, and everything the form doesn't allow is 409 with an item per mistake: an unknown,
// missing or ill-typed attribute, an unknown, missing or dangling relationship.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Sandbox/JSON.h"
#include "Sandbox/Store.h"

namespace kestrin::sandbox {

enum class Kind { text, uri, date, locale, truth, integer, object };
enum class Need { optional, required };

struct AttributeRule {
    std::string name;
    Kind kind = Kind::text;
    Need need = Need::optional;
    std::vector<std::string> values = {};  // what it may be; empty: anything of its kind
    std::size_t limit = 0;                 // most characters (grapheme clusters); 0: any number
};

struct RelationshipRule {
    std::string name;
    std::string type;
    Need need = Need::optional;
    bool many = false;
    bool clearable = false;  // null takes it away
};

struct WriteForm {
    std::string type;
    std::vector<AttributeRule> attributes = {};
    std::vector<RelationshipRule> relationships = {};
    std::vector<WriteForm> inclusions = {};  // what may be created along with it
};

// A resource of `included`; its id is a temporary one, "${…}".
struct Inclusion {
    std::string type;
    std::string id;
    Json attributes;
    std::map<std::string, std::vector<Ref>> many;
};

struct Write {
    Json attributes = Json::object();               // those that were given, null included
    std::map<std::string, std::optional<Ref>> one;  // those that were given; nullopt clears
    std::map<std::string, std::vector<Ref>> many;
    std::vector<Inclusion> included;

    // The to-one relationship of that name; for one that the form requires.
    const Ref& ref(const std::string& relationship) const;
    // nullptr when it wasn't given or is cleared.
    const Ref* optionalRef(const std::string& relationship) const;
    // The one of those that was given. Throws Refusal 409 for none and for more than one.
    const Ref& onlyRef(const std::vector<std::string>& relationships) const;
    // "" when it wasn't given or is null.
    std::string text(const std::string& attribute) const;
    bool has(const std::string& attribute) const { return attributes.contains(attribute); }
};

// Throws Refusal. The resources that relationships name must exist in the store, temporary ids in `included`.
Write readCreate(const std::string& body, const WriteForm& form, const Store& store);
// `id` is the one of the path, which the body must repeat.
Write readUpdate(const std::string& body, const WriteForm& form, const Store& store, const std::string& id);

// The body of a write to a to-one relationship, {"data": {"type", "id"}}.
Ref readLinkage(const std::string& body, const std::string& type, const Store& store);

}  // namespace kestrin::sandbox
