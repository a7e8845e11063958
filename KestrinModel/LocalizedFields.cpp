#include "KestrinModel/LocalizedFields.h"

#include "KestrinCore/MapLookup.h"

namespace kestrin {

LocalizedFields::LocalizedFields(std::map<ListingField, std::string> values, UnknownFields unknown)
    : unknownFields(std::move(unknown)), values_(std::move(values)) {
    std::erase_if(values_, [](const auto& entry) { return entry.second.empty(); });
}

const std::string& LocalizedFields::operator[](ListingField field) const {
    return valueOrEmpty(values_, field);
}

void LocalizedFields::set(ListingField field, std::string value) {
    if (value.empty()) {
        values_.erase(field);
    } else {
        values_.insert_or_assign(field, std::move(value));
    }
}

namespace Texts {

const LocalizedFields& fields(const LocalizedTexts& locales, const StoreLocale& locale) {
    return valueOrEmpty(locales, locale);
}

void setFields(LocalizedTexts& locales, const StoreLocale& locale, LocalizedFields fields) {
    if (fields.isEmpty()) {
        locales.erase(locale);
    } else {
        locales.insert_or_assign(locale, std::move(fields));
    }
}

void setField(LocalizedTexts& locales, const StoreLocale& locale, ListingField field, std::string value) {
    auto& fields = locales[locale];
    fields.set(field, std::move(value));
    if (fields.isEmpty()) locales.erase(locale);
}

}  // namespace Texts

}  // namespace kestrin
