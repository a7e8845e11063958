#include "AssetPipeline/BuildArchive/PropertyList.h"

#include <plist/plist.h>

#include "AssetPipeline/BuildArchive/BinaryPropertyListCost.h"
#include "AssetPipeline/BuildArchive/BuildArchiveError.h"
#include "AssetPipeline/BuildArchive/XMLElements.h"
#include "KestrinCore/UnicodeText.h"

namespace kestrin {
namespace {

std::optional<std::string> textOf(plist_t node) {
    if (node == nullptr || plist_get_node_type(node) != PLIST_STRING) return std::nullopt;
    std::uint64_t length = 0;
    const char* text = plist_get_string_ptr(node, &length);
    return text::repaired({text, static_cast<std::size_t>(length)});
}

// libplist takes any depth, and is then ended by its own recursion.
void requireOrdinaryXML(std::string_view bytes) {
    XMLElements::forEach(bytes, {.start = [](const auto&, const auto&) {}});
}

// libplist makes a copy of an object for every place that refers to it.
void requireOrdinaryBinary(std::string_view bytes) {
    constexpr std::uint64_t kMostMemory = 16 << 20;
    if (BinaryPropertyListCost::of(bytes) > kMostMemory) failMalformed();
}

}  // namespace

PropertyList PropertyList::parse(std::string_view bytes) {
    if (bytes.size() > mostBytes) failMalformed();
    const auto size = static_cast<std::uint32_t>(bytes.size());
    plist_t root = nullptr;
    if (bytes.starts_with("bplist")) {
        requireOrdinaryBinary(bytes);
        plist_from_bin(bytes.data(), size, &root);
    } else {
        requireOrdinaryXML(bytes);
        plist_from_xml(bytes.data(), size, &root);
    }
    PropertyList list(root);
    if (root == nullptr || plist_get_node_type(root) != PLIST_DICT) failMalformed();
    return list;
}

PropertyList::PropertyList(void* root) : root_(root, [](void* node) { plist_free(node); }) {}

void* PropertyList::item(const char* key) const {
    return plist_dict_get_item(root_.get(), key);
}

std::optional<std::string> PropertyList::text(const char* key) const {
    return textOf(item(key));
}

std::optional<bool> PropertyList::truth(const char* key) const {
    const auto node = item(key);
    if (node == nullptr || plist_get_node_type(node) != PLIST_BOOLEAN) return std::nullopt;
    std::uint8_t value = 0;
    plist_get_bool_val(node, &value);
    return value != 0;
}

std::vector<std::string> PropertyList::texts(const char* key) const {
    std::vector<std::string> found;
    const auto array = item(key);
    if (array == nullptr || plist_get_node_type(array) != PLIST_ARRAY) return found;
    for (std::uint32_t i = 0; i < plist_array_get_size(array); ++i) {
        if (auto text = textOf(plist_array_get_item(array, i))) found.push_back(*std::move(text));
    }
    return found;
}

}  // namespace kestrin
