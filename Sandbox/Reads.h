// The reads, each of which is a row: the path, what its query may hold, and which resources it lists.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Sandbox/Router.h"

namespace kestrin::sandbox {

// Which resources a list holds.
struct Listing {
    std::string type;
    std::string parent = {};   // the type of the resource that the path names; "" for a list of all
    std::string via = {};      // the relationship of `type` that leads to the parent
    bool newestFirst = false;  // without a `sort`; otherwise in the order of creation

    // How `sort` orders by a name that is no attribute; nullptr for none.
    using Less = std::function<bool(const State&, const Resource&, const Resource&)>;
    std::string specialSort = {};
    Less specialLess = nullptr;
};

// GET of a list; 404 when the path's resource doesn't exist. A filter's name is a path through relationships to an
// attribute (Store::valuesAt), and so is a sort's.
Endpoint listEndpoint(std::string path, QueryRules rules, Listing listing);

// GET of the resource of that type that the path names.
Endpoint readEndpoint(std::string path, QueryRules rules, std::string type);

// The same endpoint, its handler called after `first`.
Endpoint afterwards(std::function<void(State&, const Call&)> first, Endpoint endpoint);

// The resource that the path names. Throws Refusal 404.
Resource& named(State& state, const std::string& type, const Call& call);

}  // namespace kestrin::sandbox
