#include "KestrinModel/CustomProductPage.h"

#include <algorithm>

namespace kestrin {

CustomProductPage CustomProductPage::made(CustomProductPage page) {
    std::sort(page.locales.begin(), page.locales.end());
    std::erase_if(page.promotionalText, [](const auto& entry) { return entry.second.empty(); });
    return page;
}

}  // namespace kestrin
