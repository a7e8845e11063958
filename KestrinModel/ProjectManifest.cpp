#include "KestrinModel/ProjectManifest.h"

#include "KestrinCore/JSONRecords.h"
#include "KestrinModel/ProjectFormat.h"

namespace kestrin {

JSONValue AppBinding::toJSON() const {
    auto members = unknownFields;
    members.insert_or_assign("bundleID", bundleID);
    JSONRecords::setOptional(members, "ascAppID", ascAppID);
    return members;
}

AppBinding AppBinding::fromJSON(const JSONValue& value) {
    const ObjectDecoder members(value);
    return {
        .bundleID = members.optionalString("bundleID").value_or(""),
        .ascAppID = members.optionalString("ascAppID"),
        .unknownFields = members.unknownFields({"bundleID", "ascAppID"}),
    };
}

JSONValue ProjectManifest::toJSON() const {
    auto members = unknownFields;
    members.insert_or_assign("format", ProjectFormat::identifier);
    members.insert_or_assign("schemaVersion", ProjectFormat::currentSchemaVersion);
    members.insert_or_assign("projectID", projectID.text());
    members.insert_or_assign("app", app.toJSON());
    members.insert_or_assign("platforms", JSONRecords::rawValues(platforms));
    if (primaryLocale) members.insert_or_assign("primaryLocale", primaryLocale->rawValue);
    members.insert_or_assign("locales", JSONRecords::rawValues(locales));
    return members;
}

ProjectManifest ProjectManifest::fromJSON(const JSONValue& value) {
    const ObjectDecoder members(value);
    const auto projectID = UUID::parse(members.string("projectID"));
    if (!projectID) ObjectDecoder::fail("projectID", "expected a UUID");
    auto primaryLocale = members.optionalString("primaryLocale");
    return {
        .projectID = *projectID,
        .app = members.optionalRecord<AppBinding>("app").value_or(AppBinding{}),
        .platforms = JSONRecords::identifiers<StorePlatform>(members.stringList("platforms")),
        .primaryLocale = primaryLocale ? std::optional(StoreLocale{*primaryLocale}) : std::nullopt,
        .locales = JSONRecords::identifiers<StoreLocale>(members.stringList("locales")),
        .unknownFields = members.unknownFields(
            {"format", "schemaVersion", "projectID", "app", "platforms", "primaryLocale", "locales"}),
    };
}

}  // namespace kestrin
