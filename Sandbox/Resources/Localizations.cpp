#include "Sandbox/Resources/Localizations.h"

#include <fmt/format.h>

#include "Sandbox/Refusal.h"

namespace kestrin::sandbox {

void requireFreeLocale(const State& state, const std::string& type, const std::string& via, const Ref& parent,
                       const std::string& locale) {
    for (const auto* other : state.store.pointing(type, via, parent.id)) {
        if (other->text("locale") != locale) continue;
        throw Refusal(refusals::attribute("INVALID.DUPLICATE", "locale",
                                          fmt::format("A localization for '{}' exists already", locale)));
    }
}

void applyAttributes(const Json& attributes, Resource& resource) {
    for (const auto& [name, value] : attributes.items()) resource.attributes[name] = value;
}

}  // namespace kestrin::sandbox
