// What a resource shows of itself at this moment.
#pragma once

#include "Sandbox/JSON.h"
#include "Sandbox/State.h"

namespace kestrin::sandbox {

// Exactly the attributes that its type declares, less those that aren't told in the resource's state. What the
// sandbox keeps in a resource under other names stays inside.
Json shownAttributes(const State& state, const Resource& resource);

}  // namespace kestrin::sandbox
