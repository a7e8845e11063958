#include "ASCKit/Resources/Localization.h"

#include "ASCKit/Resources/AttributeReading.h"

namespace kestrin {

ASCLocalization::ASCLocalization(const ResourceObject& resource)
    : id(resource.id), locale(resource.string("locale").value_or("")), attributes(resource.attributes) {}

std::optional<std::string> ASCLocalization::string(std::string_view name) const {
    return AttributeReading::text(attributes, std::string(name));
}

}  // namespace kestrin
