#include "SyncEngine/Remote/RemoteIDs.h"

#include "ASCKit/Resources/CustomProductPages.h"
#include "KestrinCore/JSONRecords.h"

namespace kestrin {
namespace {

using JSONRecords::setOptional;

JSONValue encodeIDs(const LocalizationIDs& ids) {
    JSONObject members;
    for (const auto& [locale, id] : ids) members.emplace(locale.rawValue, id);
    return members;
}

JSONValue encodePlacements(const PlacementIDs& placements) {
    JSONObject byLocale;
    for (const auto& [locale, slots] : placements) {
        JSONObject bySlot;
        for (const auto& [slot, ids] : slots) bySlot.emplace(slot, JSONArray(ids.begin(), ids.end()));
        byLocale.emplace(locale.rawValue, std::move(bySlot));
    }
    return byLocale;
}

template <class Name, class Record>
JSONValue encodeRecords(const std::map<Name, Record>& records) {
    JSONObject members;
    for (const auto& [name, record] : records) members.emplace(name.rawValue, record.toJSON());
    return members;
}

enum class Presence { required, optional };

// The names of an object's members; none when it may be missing and is.
std::vector<std::string> memberNames(const ObjectDecoder& members, std::string_view key, Presence presence) {
    const auto* object = members.optionalObject(key);
    if (!object && presence == Presence::required) ObjectDecoder::fail(key, "missing");
    std::vector<std::string> names;
    if (!object) return names;
    for (const auto& [name, value] : *object) names.push_back(name);
    return names;
}

LocalizationIDs decodeIDs(const ObjectDecoder& members, std::string_view key, Presence presence) {
    LocalizationIDs ids;
    const auto names = memberNames(members, key, presence);
    if (names.empty()) return ids;
    const ObjectDecoder entries(*members.optionalValue(key));
    for (const auto& name : names) ids.insert_or_assign(StoreLocale{name}, entries.string(name));
    return ids;
}

PlacementIDs decodePlacements(const ObjectDecoder& members, std::string_view key, Presence presence) {
    PlacementIDs placements;
    const auto locales = memberNames(members, key, presence);
    if (locales.empty()) return placements;
    const ObjectDecoder byLocale(*members.optionalValue(key));
    for (const auto& locale : locales) {
        auto& slots = placements[StoreLocale{locale}];
        const auto slotNames = memberNames(byLocale, locale, Presence::required);
        if (slotNames.empty()) continue;
        const ObjectDecoder bySlot(*byLocale.optionalValue(locale));
        for (const auto& slot : slotNames) slots.insert_or_assign(slot, bySlot.stringList(slot));
    }
    return placements;
}

template <class Name, class Record>
std::map<Name, Record> decodeRecords(const ObjectDecoder& members, std::string_view key, Presence presence) {
    std::map<Name, Record> records;
    const auto names = memberNames(members, key, presence);
    if (names.empty()) return records;
    const ObjectDecoder entries(*members.optionalValue(key));
    for (const auto& name : names) {
        auto record = entries.optionalRecord<Record>(name);
        if (!record) ObjectDecoder::fail(name, "expected an object");
        records.insert_or_assign(Name{name}, *std::move(record));
    }
    return records;
}

}  // namespace

JSONValue RemoteVersion::toJSON() const {
    JSONObject members{
        {"id", id},
        {"state", state},
        {"localizations", encodeIDs(localizations)},
        {"placements", encodePlacements(placements)},
    };
    setOptional(members, "reviewDetailID", reviewDetailID);
    setOptional(members, "buildID", buildID);
    return members;
}

RemoteVersion RemoteVersion::fromJSON(const JSONValue& value) {
    const ObjectDecoder members(value);
    return {
        .id = members.string("id"),
        .state = members.string("state"),
        .localizations = decodeIDs(members, "localizations", Presence::optional),
        .placements = decodePlacements(members, "placements", Presence::optional),
        .reviewDetailID = members.optionalString("reviewDetailID"),
        .buildID = members.optionalString("buildID"),
    };
}

bool RemotePage::isEditable() const {
    return ASCCustomProductPageVersion::editableStates.contains(versionState);
}

JSONValue RemotePage::toJSON() const {
    JSONObject members{
        {"id", id},
        {"versionID", versionID},
        {"versionState", versionState},
        {"localizations", encodeIDs(localizations)},
        {"placements", encodePlacements(placements)},
    };
    setOptional(members, "url", url);
    return members;
}

RemotePage RemotePage::fromJSON(const JSONValue& value) {
    const ObjectDecoder members(value);
    return {
        .id = members.string("id"),
        .url = members.optionalString("url"),
        .versionID = members.string("versionID"),
        .versionState = members.string("versionState"),
        .localizations = decodeIDs(members, "localizations", Presence::required),
        .placements = decodePlacements(members, "placements", Presence::required),
    };
}

JSONValue RemoteTreatment::toJSON() const {
    return JSONObject{
        {"id", id},
        {"localizations", encodeIDs(localizations)},
        {"placements", encodePlacements(placements)},
    };
}

RemoteTreatment RemoteTreatment::fromJSON(const JSONValue& value) {
    const ObjectDecoder members(value);
    return {
        .id = members.string("id"),
        .localizations = decodeIDs(members, "localizations", Presence::required),
        .placements = decodePlacements(members, "placements", Presence::required),
    };
}

JSONValue RemoteExperiment::toJSON() const {
    return JSONObject{{"id", id}, {"state", state}, {"treatments", encodeRecords(treatments)}};
}

RemoteExperiment RemoteExperiment::fromJSON(const JSONValue& value) {
    const ObjectDecoder members(value);
    return {
        .id = members.string("id"),
        .state = members.string("state"),
        .treatments = decodeRecords<Slug, RemoteTreatment>(members, "treatments", Presence::required),
    };
}

JSONValue RemoteIDs::toJSON() const {
    JSONObject members{
        {"appInfoLocalizations", encodeIDs(appInfoLocalizations)},
        {"versions", encodeRecords(versions)},
        {"pages", encodeRecords(pages)},
        {"experiments", encodeRecords(experiments)},
    };
    setOptional(members, "appInfoID", appInfoID);
    setOptional(members, "appInfoState", appInfoState);
    return members;
}

RemoteIDs RemoteIDs::fromJSON(const JSONValue& value) {
    const ObjectDecoder members(value);
    return {
        .appInfoID = members.optionalString("appInfoID"),
        .appInfoState = members.optionalString("appInfoState"),
        .appInfoLocalizations = decodeIDs(members, "appInfoLocalizations", Presence::optional),
        .versions = decodeRecords<StorePlatform, RemoteVersion>(members, "versions", Presence::optional),
        .pages = decodeRecords<Slug, RemotePage>(members, "pages", Presence::optional),
        .experiments = decodeRecords<Slug, RemoteExperiment>(members, "experiments", Presence::optional),
    };
}

}  // namespace kestrin
