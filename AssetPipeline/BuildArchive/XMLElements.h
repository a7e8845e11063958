// Goes through the elements of an XML document from outside.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace kestrin::XMLElements {

using Attributes = std::map<std::string, std::string>;

// What to do at each piece of the document, in its order; names are as written, with their prefix, and text is UTF-8.
struct Events {
    std::function<void(const std::string& name, const Attributes& attributes)> start;
    std::function<void()> end = [] {};
    std::function<void(std::string_view text)> text = [](std::string_view) {};  // maybe in several pieces
    std::function<bool()> isDone = [] {
        return false;
    };  // asked after each element; the rest is then left alone
};

// Documents larger than this are refused, and so are elements nested deeper: what a build has of either is far smaller,
// and a parser takes up to some fifty bytes of memory for one of a hostile document.
constexpr std::size_t mostBytes = 1'048'576;
constexpr std::size_t mostDepth = 512;

// BuildArchiveError::malformed for what isn't well-formed, within the part that is gone through, is larger or deeper
// than that, or declares entities of its own, which serve nothing but to make a small document large. Nothing outside
// the document is ever read.
void forEach(std::string_view document, const Events& events);

}  // namespace kestrin::XMLElements
