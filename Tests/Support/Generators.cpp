#include "Tests/Support/Generators.h"

#include <algorithm>
#include <cmath>
#include <ostream>
#include <set>

#include "KestrinCore/StableJSON.h"
#include "Tests/Support/Scalars.h"

namespace kestrin {
namespace arbitrary {
namespace {

using rc::Gen;

// Text

Gen<std::string> anyScalar() {
    return rc::gen::map(rc::gen::inRange<char32_t>(0, 0x110000 - 0x800), [](char32_t number) {
        return utf8(number < 0xD800 ? number : number + 0x800);  // the surrogates are left out
    });
}

Gen<std::string> asciiScalar() {
    return rc::gen::map(rc::gen::inRange<char32_t>(0, 0x80), utf8);
}

// Letters that a file name may hold, in composed and decomposed forms.
Gen<std::string> letter() {
    return rc::gen::elementOf(std::vector<std::string>{
        "a",  "b",       "Z",        "0",       "9",  "-",       "_",
        "é",  "e\u0301", "Å",        "A\u030A", "ß",  "ñ",       "n\u0303",
        "ε",  "έ",       "ε\u0301",  "ж",       "й",  "и\u0306", "ש",
        "م",  "क",       "क्ष",       "த",       "ไ",  "한",      "\u1112\u1161\u11AB",
        "日", "が",      "か\u3099", "ｶ",       "𠮷", "𝒜"});
}

// What text handling trips over.
Gen<std::string> oddity() {
    return rc::gen::elementOf(
        std::vector<std::string>{" ",
                                 "\t",
                                 "\n",
                                 "\r",
                                 "\r\n",
                                 {"\0", 1},
                                 "\x7f",
                                 "\u0085",
                                 "\u00A0",
                                 "\u00AD",
                                 "\u2028",
                                 "\u3000",
                                 "\u200B",  // white space and what looks like it
                                 "\u0301",
                                 "\u0323",
                                 "\u0327",
                                 "\u0345",
                                 "\u0344",  // combining marks, the last decomposes into two
                                 "\u093C",
                                 "\u0958",
                                 "\u094D",
                                 "\u0BC6\u0BBE",
                                 "\u0DDC",
                                 "\u3099",
                                 "\U0001D165",
                                 "\U0001D15E",
                                 "\u212B",
                                 "\u2126",
                                 "\u212A",
                                 "\uFB2A",
                                 "\uF900",
                                 "\U0002F800",  // singletons and exclusions
                                 "\u1100",
                                 "\u1161",
                                 "\u11A8",
                                 "\uAC00",
                                 "\uAC01",  // Hangul in parts and whole
                                 "\u200D",
                                 "\u200C",
                                 "\uFE0F",
                                 "\u0600",
                                 "\u0D4E",  // joiners, selectors, Prepend
                                 "👨‍👩‍👧",
                                 "👍🏽",
                                 "🇩",
                                 "🇪",
                                 "❤️",
                                 "😀",
                                 "1️⃣",
                                 "\"",
                                 "\\",
                                 "/",
                                 ",",
                                 "\uFFFD",
                                 "\uFEFF",
                                 "\uFFFE",
                                 "\U0010FFFF"});
}

Gen<std::string> piece() {
    return rc::gen::weightedOneOf<std::string>(
        {{6, letter()}, {5, oddity()}, {2, asciiScalar()}, {1, anyScalar()}});
}

Gen<std::string> joined(Gen<std::string> pieces) {
    return rc::gen::map(rc::gen::container<std::vector<std::string>>(std::move(pieces)),
                        [](const std::vector<std::string>& parts) {
                            std::string whole;
                            for (const auto& part : parts) whole += part;
                            return whole;
                        });
}

std::string withoutCR(std::string text) {
    std::erase(text, '\r');
    return text;
}

bool isFileName(const std::string& name) {
    return !name.empty() && name != "." && name != ".." && name.size() <= 100;
}

// Projects are trees: a size that a list bears well would make a forest of one.
template <class T>
Gen<T> few(Gen<T> gen) {
    return rc::gen::scale(0.06, std::move(gen));
}

template <class T>
Gen<std::optional<T>> maybe(Gen<T> gen) {
    return rc::gen::oneOf(rc::gen::just(std::optional<T>()), rc::gen::map(std::move(gen), [](T value) {
                              return std::optional<T>(std::move(value));
                          }));
}

// JSON

const std::set<std::string, std::less<>> kKnownNames = {"format",
                                                        "schemaVersion",
                                                        "projectID",
                                                        "app",
                                                        "platforms",
                                                        "primaryLocale",
                                                        "locales",
                                                        "bundleID",
                                                        "ascAppID",
                                                        "primaryCategory",
                                                        "secondaryCategory",
                                                        "versionString",
                                                        "copyright",
                                                        "releaseType",
                                                        "contactFirstName",
                                                        "contactLastName",
                                                        "contactPhone",
                                                        "contactEmail",
                                                        "demoAccountRequired",
                                                        "demoAccountName",
                                                        "notes",
                                                        "name",
                                                        "subtitle",
                                                        "privacyPolicyUrl",
                                                        "privacyChoicesUrl",
                                                        "description",
                                                        "keywords",
                                                        "promotionalText",
                                                        "whatsNew",
                                                        "supportUrl",
                                                        "marketingUrl",
                                                        "visible",
                                                        "deepLink",
                                                        "platform",
                                                        "trafficProportion",
                                                        "appIconName",
                                                        "treatments",
                                                        "asset",
                                                        "file"};

Gen<JSONValue> jsonScalar() {
    const auto fraction = rc::gen::suchThat(rc::gen::arbitrary<double>(), [](double number) {
        return std::isfinite(number) && std::trunc(number) != number;
    });
    const auto huge = rc::gen::elementOf(std::vector<double>{
        1e19, -1e19, 1e300, 9223372036854775808.0, 5e-324, 1.7976931348623157e308, 0.1, -0.5, 1e-7});
    const auto integer = rc::gen::oneOf(rc::gen::arbitrary<std::int64_t>(),
                                        rc::gen::elementOf(std::vector<std::int64_t>{
                                            0, 1, -1, INT64_MAX, INT64_MIN, 1LL << 53, (1LL << 53) + 1}));
    const auto value = [](auto scalar) { return JSONValue(std::move(scalar)); };
    return rc::gen::oneOf(rc::gen::just(JSONValue()), rc::gen::map(text(), value),
                          rc::gen::map(integer, value), rc::gen::map(fraction, value),
                          rc::gen::map(huge, value), rc::gen::map(rc::gen::arbitrary<bool>(), value));
}

Gen<JSONValue> jsonValue(int depth) {
    if (depth == 0) return jsonScalar();
    const auto array = rc::gen::map(few(rc::gen::container<JSONArray>(jsonValue(depth - 1))),
                                    [](JSONArray elements) { return JSONValue(std::move(elements)); });
    const auto object = rc::gen::map(few(rc::gen::container<JSONObject>(text(), jsonValue(depth - 1))),
                                     [](JSONObject members) { return JSONValue(std::move(members)); });
    return rc::gen::weightedOneOf<JSONValue>({{3, jsonScalar()}, {1, array}, {1, object}});
}

// Records

std::set<StoreLocale> someLocales() {
    return *few(rc::gen::container<std::set<StoreLocale>>(locale()));
}

LocalizedTexts textsOf(std::span<const ListingField> fields) {
    LocalizedTexts texts;
    for (const auto& locale : someLocales()) {
        LocalizedFields record;
        for (const auto field : fields) {
            if (*rc::gen::arbitrary<bool>()) record.set(field, *nonEmptyTextWithoutCR());
        }
        if (*rc::gen::inRange(0, 3) == 0) record.unknownFields = *unknownFields();
        if (record.isEmpty()) record.set(fields.front(), "x");
        texts.emplace(locale, std::move(record));
    }
    return texts;
}

std::vector<StoreLocale> sortedLocales() {
    const auto locales = someLocales();
    return {locales.begin(), locales.end()};
}

std::map<StoreLocale, std::string> textsByLocale() {
    std::map<StoreLocale, std::string> texts;
    for (const auto& locale : someLocales()) texts.emplace(locale, *nonEmptyTextWithoutCR());
    return texts;
}

VersionContent versionContent() {
    return {.versionString = *maybe(nonEmptyText()),
            .copyright = *maybe(nonEmptyText()),
            .releaseType = *maybe(nonEmptyText()),
            .unknownFields = *unknownFields()};
}

ReviewDetailContent reviewDetailContent() {
    if (*rc::gen::arbitrary<bool>()) return {};
    return {.contactFirstName = *maybe(nonEmptyText()),
            .contactLastName = *maybe(nonEmptyText()),
            .contactPhone = *maybe(nonEmptyText()),
            .contactEmail = *maybe(nonEmptyText()),
            .demoAccountRequired = *maybe(rc::gen::arbitrary<bool>()),
            .demoAccountName = *maybe(nonEmptyText()),
            .notes = *maybe(nonEmptyText()),
            .unknownFields = *unknownFields()};
}

}  // namespace

Gen<std::string> text() {
    return rc::gen::scale(0.3, joined(piece()));
}

Gen<std::string> nonEmptyText() {
    return rc::gen::nonEmpty(text());
}

Gen<std::string> nonEmptyTextWithoutCR() {
    return rc::gen::nonEmpty(rc::gen::map(text(), withoutCR));
}

Gen<std::string> bytes() {
    const auto fragment = rc::gen::elementOf(std::vector<std::string>{
        "\x80", "\xBF", "\xC0\x80", "\xC3", "\xC3\xA9", "\xE2\x82", "\xED\xA0\x80", "\xED\xB0\x80",
        "\xF0\x9F\x98", "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80", "\xFE", "\xFF", "\xCC", "\xE0\x80"});
    const auto any = rc::gen::map(rc::gen::arbitrary<char>(), [](char byte) { return std::string(1, byte); });
    return joined(rc::gen::weightedOneOf<std::string>({{3, fragment}, {2, piece()}, {1, any}}));
}

Gen<std::string> plainName() {
    const auto joint = rc::gen::elementOf(std::vector<std::string>{" ", ".", "…", "'", "~", ".json", "\\"});
    const auto name = joined(rc::gen::weightedOneOf<std::string>({{8, letter()}, {1, joint}}));
    return rc::gen::suchThat(rc::gen::scale(0.08, rc::gen::nonEmpty(name)), isFileName);
}

Gen<JSONValue> jsonValue() {
    return jsonValue(3);
}

Gen<UnknownFields> unknownFields() {
    const auto name =
        rc::gen::suchThat(text(), [](const std::string& made) { return !kKnownNames.contains(made); });
    return few(rc::gen::container<UnknownFields>(name, jsonValue(2)));
}

Gen<StoreLocale> locale() {
    const auto real =
        rc::gen::elementOf(std::vector<std::string>{"ar-SA", "de-DE", "en-GB", "en-US", "fr-CA", "fr-FR",
                                                    "he", "ja", "ko", "pt-BR", "th", "zh-Hans", "zh-Hant"});
    return rc::gen::map(rc::gen::weightedOneOf<std::string>({{4, real}, {1, plainName()}}),
                        [](std::string rawValue) { return StoreLocale{std::move(rawValue)}; });
}

Gen<Slug> slug() {
    const auto made = rc::gen::map(text(), [](const std::string& name) { return Slug::make(name, {}); });
    const auto found = rc::gen::map(plainName(), [](std::string name) { return Slug{std::move(name)}; });
    return rc::gen::oneOf(made, found);
}

Gen<StorePlatform> platform() {
    return rc::gen::map(
        rc::gen::elementOf(std::vector<std::string>{"IOS", "IOS", "MAC_OS", "MAC_OS", "TV_OS", "VISION_OS",
                                                    "WATCH_OS", "CAFE\u0301_OS", "日本 OS", "Z.json"}),
        [](std::string rawValue) { return StorePlatform{std::move(rawValue)}; });
}

Gen<PlacementSlot> slot() {
    const auto group =
        rc::gen::element<std::string>("screenshots", "previews", "icons", "cafe\u0301", "new group");
    const auto type =
        rc::gen::element<std::string>("APP_IPHONE_67", "APP_IPAD_PRO_129", "DESKTOP", "caf\u00E9", "型");
    return rc::gen::map(rc::gen::pair(group, type), [](std::pair<std::string, std::string> names) {
        return PlacementSlot{std::move(names.first), std::move(names.second)};
    });
}

Gen<MediaItem> mediaItem() {
    const auto remote =
        rc::gen::map(rc::gen::pair(rc::gen::inRange(1, 50), text()), [](std::pair<int, std::string> id) {
            return MediaItem::remote("asset-" + std::to_string(id.first), std::move(id.second));
        });
    const auto file = rc::gen::map(rc::gen::pair(plainName(), plainName()), [](const auto& names) {
        return MediaItem::file("Media/" + names.first + "/" + names.second + ".png");
    });
    return rc::gen::oneOf(remote, file);
}

Gen<LocalizedMedia> media() {
    return rc::gen::exec([] {
        LocalizedMedia media;
        for (const auto& locale : someLocales()) {
            for (int slots = *rc::gen::inRange(1, 3); slots > 0; --slots) {
                auto items = *few(rc::gen::container<MediaItems>(mediaItem()));
                items.push_back(*mediaItem());
                Media::setItems(media, locale, *slot(), std::move(items));
            }
        }
        return media;
    });
}

Gen<LocalizedTexts> appTexts() {
    return rc::gen::exec([] { return textsOf(ListingFields::appInfo); });
}

Gen<LocalizedTexts> versionTexts() {
    return rc::gen::exec([] { return textsOf(ListingFields::version); });
}

Gen<ProjectManifest> manifest() {
    return rc::gen::exec([] {
        ProjectManifest manifest;
        for (auto& byte : manifest.projectID.bytes) byte = *rc::gen::arbitrary<std::uint8_t>();
        manifest.app = {
            .bundleID = *text(), .ascAppID = *maybe(nonEmptyText()), .unknownFields = *unknownFields()};
        manifest.platforms = *few(rc::gen::container<std::vector<StorePlatform>>(platform()));
        manifest.primaryLocale = *maybe(locale());
        manifest.locales = *few(rc::gen::container<std::vector<StoreLocale>>(locale()));
        manifest.unknownFields = *unknownFields();
        return manifest;
    });
}

Gen<PlatformListing> platformListing() {
    return rc::gen::exec([] {
        return PlatformListing{.version = versionContent(),
                               .locales = *versionTexts(),
                               .media = *media(),
                               .review = reviewDetailContent()};
    });
}

Gen<CustomProductPage> page() {
    return rc::gen::exec([] {
        return CustomProductPage{.name = *text(),
                                 .visible = *maybe(rc::gen::arbitrary<bool>()),
                                 .deepLink = *maybe(nonEmptyText()),
                                 .locales = sortedLocales(),
                                 .promotionalText = textsByLocale(),
                                 .media = *media(),
                                 .unknownFields = *unknownFields()};
    });
}

Gen<Treatment> treatment() {
    return rc::gen::exec([] {
        return Treatment{.name = *text(),
                         .appIconName = *maybe(nonEmptyText()),
                         .locales = sortedLocales(),
                         .media = *media(),
                         .unknownFields = *unknownFields()};
    });
}

Gen<Experiment> experiment() {
    return rc::gen::exec([] {
        return Experiment{
            .name = *text(),
            .platform = *platform(),
            .trafficProportion = *maybe(rc::gen::arbitrary<std::int64_t>()),
            .treatments = *few(rc::gen::container<std::map<Slug, Treatment>>(slug(), treatment())),
            .unknownFields = *unknownFields()};
    });
}

Gen<Project> project() {
    return rc::gen::exec([] {
        Project project;
        project.manifest = *manifest();
        project.app.info = {.primaryCategory = *maybe(nonEmptyText()),
                            .secondaryCategory = *maybe(nonEmptyText()),
                            .unknownFields = *unknownFields()};
        project.app.locales = *appTexts();
        project.platforms =
            *few(rc::gen::container<std::map<StorePlatform, PlatformListing>>(platform(), platformListing()));
        project.pages = *few(rc::gen::container<std::map<Slug, CustomProductPage>>(slug(), page()));
        project.experiments = *few(rc::gen::container<std::map<Slug, Experiment>>(slug(), experiment()));
        return project;
    });
}

}  // namespace arbitrary

namespace {

// For the eye only: the records in one JSON document.

JSONValue described(const LocalizedTexts& locales) {
    JSONObject object;
    for (const auto& [locale, fields] : locales) {
        JSONObject record = fields.unknownFields;
        for (const auto& [field, value] : fields.values()) record.emplace(rawValue(field), value);
        object.emplace(locale.rawValue, std::move(record));
    }
    return object;
}

JSONValue described(const LocalizedMedia& media) {
    JSONObject object;
    for (const auto& [locale, slots] : media) {
        JSONObject lists;
        for (const auto& [slot, items] : slots) {
            JSONArray list;
            for (const auto& item : items) list.push_back(item.toJSON());
            lists.emplace(slot.description(), std::move(list));
        }
        object.emplace(locale.rawValue, std::move(lists));
    }
    return object;
}

JSONValue described(const std::vector<StoreLocale>& locales) {
    JSONArray array;
    for (const auto& locale : locales) array.emplace_back(locale.rawValue);
    return array;
}

template <class Value>
JSONValue described(const std::optional<Value>& value) {
    return value ? JSONValue(*value) : JSONValue();
}

JSONValue described(const CustomProductPage& page) {
    JSONObject texts;
    for (const auto& [locale, text] : page.promotionalText) texts.emplace(locale.rawValue, text);
    return JSONObject{{"name", page.name},
                      {"visible", described(page.visible)},
                      {"deepLink", described(page.deepLink)},
                      {"locales", described(page.locales)},
                      {"promotionalText", std::move(texts)},
                      {"media", described(page.media)},
                      {"unknownFields", page.unknownFields}};
}

JSONValue described(const Treatment& treatment) {
    return JSONObject{{"name", treatment.name},
                      {"appIconName", described(treatment.appIconName)},
                      {"locales", described(treatment.locales)},
                      {"media", described(treatment.media)},
                      {"unknownFields", treatment.unknownFields}};
}

template <class Key, class Value>
JSONValue described(const std::map<Key, Value>& entries);

JSONValue described(const Experiment& experiment) {
    return JSONObject{{"name", experiment.name},
                      {"platform", experiment.platform.rawValue},
                      {"trafficProportion", described(experiment.trafficProportion)},
                      {"treatments", described(experiment.treatments)},
                      {"unknownFields", experiment.unknownFields}};
}

JSONValue described(const PlatformListing& listing) {
    return JSONObject{{"version", listing.version.toJSON()},
                      {"locales", described(listing.locales)},
                      {"media", described(listing.media)},
                      {"review", listing.review.toJSON()}};
}

template <class Key, class Value>
JSONValue described(const std::map<Key, Value>& entries) {
    JSONObject object;
    for (const auto& [key, value] : entries) object.emplace(key.rawValue, described(value));
    return object;
}

JSONValue described(const Project& project) {
    return JSONObject{
        {"manifest", project.manifest.toJSON()}, {"info", project.app.info.toJSON()},
        {"app", described(project.app.locales)}, {"platforms", described(project.platforms)},
        {"pages", described(project.pages)},     {"experiments", described(project.experiments)}};
}

}  // namespace

void showValue(const JSONValue& value, std::ostream& out) {
    out << StableJSON::encodeCompact(value);
}

void showValue(const Project& project, std::ostream& out) {
    out << StableJSON::encode(described(project));
}

void PrintTo(const JSONValue& value, std::ostream* out) {
    showValue(value, *out);
}

void PrintTo(const Project& project, std::ostream* out) {
    showValue(project, *out);
}

}  // namespace kestrin
