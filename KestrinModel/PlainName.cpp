#include "KestrinModel/PlainName.h"

namespace kestrin {

bool isPlainPathComponent(std::string_view name) {
    constexpr std::string_view kSeparators("/\0", 2);
    return !name.empty() && name != "." && name != ".." &&
           name.find_first_of(kSeparators) == std::string_view::npos;
}

}  // namespace kestrin
