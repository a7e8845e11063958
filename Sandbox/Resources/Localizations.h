// What localizations of every kind have in common.
#pragma once

#include <string>

#include "Sandbox/State.h"

namespace kestrin::sandbox {

// Throws Refusal 409 when the resource that `via` leads to has a localization of that locale already.
void requireFreeLocale(const State& state, const std::string& type, const std::string& via, const Ref& parent,
                       const std::string& locale);

// The attributes of the write take the place of the resource's; null empties one.
void applyAttributes(const Json& attributes, Resource& resource);

}  // namespace kestrin::sandbox
