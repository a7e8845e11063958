// Pieces of text that several commands print.
#pragma once

#include <string>
#include <vector>

namespace kestrin {

// Joined by a comma and a blank; "" for none.
std::string commaList(const std::vector<std::string>& words);

// The raw values of platforms or locales, in the given order.
template <class Identifier>
std::string commaList(const std::vector<Identifier>& identifiers) {
    std::vector<std::string> words;
    for (const auto& identifier : identifiers) words.push_back(identifier.rawValue);
    return commaList(words);
}

}  // namespace kestrin
