// The resource types: which attributes and relationships each one shows, and which resource owns which.
//
// Field names, relationship targets and API versions are those of App Store Connect's public OpenAPI document.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestrin::sandbox {

struct Relationship {
    enum class Reach {
        one,         // this resource keeps the identifier of another
        inverseOne,  // one other resource keeps this one's, under `inverse`
        many,        // other resources keep this one's, under `inverse`
        absent,      // the sandbox has no such resources: nothing is ever at the other end
    };
    enum class Shows {
        links,     // links always, data only when it is named in `include`
        included,  // nothing but data, and only when it is named in `include`
        data,      // nothing but data, always
    };

    std::string name;
    std::string type = {};
    Reach reach = Reach::absent;
    std::string inverse = {};
    Shows shows = Shows::links;
    bool owner = false;  // this resource goes when the other end goes
};

struct ResourceType {
    std::string name;
    std::string apiVersion;               // "v1" or "v2"
    std::vector<std::string> attributes;  // one that a resource has no value for is shown as null
    std::vector<Relationship> relationships;

    const Relationship* relationship(std::string_view wanted) const;  // nullptr when there is none
    bool hasField(std::string_view field) const;                      // an attribute or a relationship
};

// nullptr for a type that the sandbox doesn't have.
const ResourceType* findResourceType(std::string_view name);

// For a type that is known to exist.
const ResourceType& resourceType(std::string_view name);

}  // namespace kestrin::sandbox
