// A property list from outside, XML or binary.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrin {

class PropertyList {
 public:
    // Larger ones are refused; that of an app has some kilobytes.
    static constexpr std::size_t mostBytes = 1'048'576;

    // BuildArchiveError::malformed for what isn't a property list, isn't a dictionary at its top, or would take more
    // memory than any honest one does, by its size, its depth, or by objects that stand in it many times.
    static PropertyList parse(std::string_view bytes);

    // What stands under a key of the dictionary; nothing when it isn't there or is of another type.
    std::optional<std::string> text(const char* key) const;
    std::optional<bool> truth(const char* key) const;
    std::vector<std::string> texts(const char* key) const;  // the texts of an array

 private:
    explicit PropertyList(void* root);
    void* item(const char* key) const;

    std::shared_ptr<void> root_;  // libplist's
};

}  // namespace kestrin
