// The texts of one locale.
#pragma once

#include <map>
#include <string>

#include "KestrinCore/JSONDecoding.h"
#include "KestrinModel/ListingField.h"
#include "KestrinModel/StoreLocale.h"

namespace kestrin {

// An empty text and an absent one are the same: no empty text is ever stored.
class LocalizedFields {
 public:
    LocalizedFields() = default;
    explicit LocalizedFields(std::map<ListingField, std::string> values, UnknownFields unknown = {});

    // The text; "" when absent.
    const std::string& operator[](ListingField field) const;
    // An empty text removes the entry.
    void set(ListingField field, std::string value);

    const std::map<ListingField, std::string>& values() const { return values_; }

    // Neither texts nor unknown members. Unknown members alone are content: they must survive.
    bool isEmpty() const { return values_.empty() && unknownFields.empty(); }

    UnknownFields unknownFields;

    bool operator==(const LocalizedFields&) const = default;

 private:
    std::map<ListingField, std::string> values_;
};

using LocalizedTexts = std::map<StoreLocale, LocalizedFields>;

namespace Texts {

// The locale's fields; an empty record when there is none.
const LocalizedFields& fields(const LocalizedTexts& locales, const StoreLocale& locale);

// Stores the locale's fields; an empty record removes the locale.
void setFields(LocalizedTexts& locales, const StoreLocale& locale, LocalizedFields fields);

// Stores one text; a locale left with nothing is removed.
void setField(LocalizedTexts& locales, const StoreLocale& locale, ListingField field, std::string value);

}  // namespace Texts

}  // namespace kestrin
