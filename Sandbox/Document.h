// Resources as JSON:API documents: sparse fields, relationships, included resources, pages and links.
//
// Links are absolute. A relationship that has links shows its data only when `include` names it. A page's next
// link repeats the request's query with a cursor, which is good for that query alone.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "Sandbox/JSON.h"
#include "Sandbox/Router.h"

namespace kestrin::sandbox {

HTTPReply jsonReply(int status, const Json& document);
HTTPReply noContent();

// {"data": {…}, "included": […], "links": {"self": …}}
HTTPReply singleReply(const State& state, const Call& call, const Resource& resource);
// The same with 201 and a Location.
HTTPReply createdReply(const State& state, const Call& call, const Resource& resource);

// One page of the list, by the call's `limit` and `cursor`. Throws Refusal 400 for a cursor that isn't ours.
HTTPReply listReply(const State& state, const Call& call, const std::vector<const Resource*>& all);

}  // namespace kestrin::sandbox
