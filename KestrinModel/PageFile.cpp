#include "KestrinModel/PageFile.h"

#include "KestrinCore/JSONRecords.h"

namespace kestrin {

PageFile PageFile::of(const CustomProductPage& page) {
    return {page.name, page.visible, page.deepLink, page.locales, page.unknownFields};
}

CustomProductPage PageFile::page() const {
    return {.name = name,
            .visible = visible,
            .deepLink = deepLink,
            .locales = locales,
            .promotionalText = {},
            .media = {},
            .unknownFields = unknownFields};
}

JSONValue PageFile::toJSON() const {
    auto members = unknownFields;
    members.insert_or_assign("name", name);
    JSONRecords::setOptional(members, "visible", visible);
    JSONRecords::setOptional(members, "deepLink", deepLink);
    members.insert_or_assign("locales", JSONRecords::rawValues(locales));
    return members;
}

PageFile PageFile::fromJSON(const JSONValue& value) {
    const ObjectDecoder members(value);
    return {
        .name = members.optionalString("name").value_or(""),
        .visible = members.optionalBool("visible"),
        .deepLink = members.optionalString("deepLink"),
        .locales = JSONRecords::identifiers<StoreLocale>(members.stringList("locales")),
        .unknownFields = members.unknownFields({"name", "visible", "deepLink", "locales"}),
    };
}

}  // namespace kestrin
