// Any bytes are a reply's document or a DecodingError; an error reply's items can always be asked for.
#include <cstdint>
#include <cstdlib>

#include "ASCKit/ASCError.h"
#include "ASCKit/JSONAPIDocument.h"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

void check(const kestrin::ResourceObject& resource) {
    for (const auto& [name, value] : resource.attributes) {
        const auto text = resource.string(name);
        require(text.has_value() == (value.stringValue() != nullptr));
    }
    for (const auto& [name, value] : resource.relationships) {
        require(!resource.relatedID(name) || value.objectValue() != nullptr);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const kestrin::ASCError error(
        kestrin::ASCError::HTTP{409, kestrin::APIErrorItem::decodeAll(bytes), "/v1"});
    require(!error.errorDescription().empty());
    require(error.apiErrorCodes().size() <= error.as<kestrin::ASCError::HTTP>()->errors.size());
    const bool hasNullData = kestrin::JSONAPIDocument::hasNullData(bytes);
    try {
        const auto document = kestrin::JSONAPIDocument::decode(bytes);
        require(!hasNullData);
        for (const auto& resource : document.data) check(resource);
        for (const auto& resource : document.included) check(resource);
        if (document.nextURL) document.nextURL->origin();
    } catch (const kestrin::DecodingError&) {
    }
    return 0;
}
