// "page.json": of a custom product page what isn't kept per locale.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "KestrinCore/JSONDecoding.h"
#include "KestrinModel/CustomProductPage.h"

namespace kestrin {

struct PageFile {
    std::string name;                     // absent reads as ""; always written
    std::optional<bool> visible;          // written when present
    std::optional<std::string> deepLink;  // written when present
    std::vector<StoreLocale> locales;     // in the order of the file; absent reads as empty; always written
    UnknownFields unknownFields;

    static PageFile of(const CustomProductPage& page);
    // The page without texts and media. Its locales keep the file's order, so that an unchanged page is written as
    // it was.
    CustomProductPage page() const;

    JSONValue toJSON() const;
    static PageFile fromJSON(const JSONValue& value);

    bool operator==(const PageFile&) const = default;
};

}  // namespace kestrin
