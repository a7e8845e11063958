#include "KestrinCLI/Wording.h"

#include <fmt/format.h>

namespace kestrin {

std::string commaList(const std::vector<std::string>& words) {
    return fmt::format("{}", fmt::join(words, ", "));
}

}  // namespace kestrin
