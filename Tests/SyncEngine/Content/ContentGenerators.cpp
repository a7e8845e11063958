#include "Tests/SyncEngine/Content/ContentGenerators.h"

namespace kestrin::generated {
namespace {

template <class T>
rc::Gen<T> oneOf(std::vector<T> pool) {
    return rc::gen::elementOf(std::move(pool));
}

rc::Gen<std::optional<std::string>> optionalText() {
    return oneOf<std::optional<std::string>>({std::nullopt, "", "text", "Käse"});
}

rc::Gen<std::optional<bool>> flag() {
    return oneOf<std::optional<bool>>({std::nullopt, true, false});
}

rc::Gen<StoreLocale> locale() {
    return oneOf<StoreLocale>({{"de-DE"}, {"en-US"}, {"fr-FR"}});
}

rc::Gen<Slug> slug() {
    return oneOf<Slug>({{"one"}, {"one-2"}, {"two"}});
}

rc::Gen<StorePlatform> platform() {
    return oneOf<StorePlatform>({StorePlatform::iOS, StorePlatform::macOS, {"WATCH_OS"}});
}

rc::Gen<PlacementSlot> slot() {
    return oneOf<PlacementSlot>({{"IPHONE_65", "SCREENSHOT"}, {"IPAD", "PREVIEW"}});
}

rc::Gen<MediaItem> mediaItem() {
    return oneOf<MediaItem>({MediaItem::remote("1", "one.png"), MediaItem::remote("2", "two.png"),
                             MediaItem::remote("3"), MediaItem::file("media/a.png")});
}

// A map of up to three entries.
template <class Key, class Value>
rc::Gen<std::map<Key, Value>> mapOf(const rc::Gen<Key>& keys, const rc::Gen<Value>& values) {
    return rc::gen::exec([keys, values] {
        std::map<Key, Value> map;
        for (int count = *rc::gen::inRange(0, 4); count > 0; --count) map.insert_or_assign(*keys, *values);
        return map;
    });
}

rc::Gen<LocalizedTexts> localizedTexts() {
    const auto fields = mapOf(rc::gen::elementOf(ListingFields::all), oneOf<std::string>({"", "x", "Käse"}));
    return mapOf(locale(), rc::gen::map(fields, [](auto values) { return LocalizedFields(values); }));
}

rc::Gen<LocalizedMedia> localizedMedia() {
    const auto items = rc::gen::nonEmpty(rc::gen::container<MediaItems>(mediaItem()));
    return mapOf(locale(), rc::gen::nonEmpty(mapOf(slot(), items)));
}

rc::Gen<ReviewDetailContent> review() {
    return rc::gen::exec([] {
        return ReviewDetailContent{.contactFirstName = *optionalText(),
                                   .contactLastName = *optionalText(),
                                   .contactPhone = *optionalText(),
                                   .contactEmail = *optionalText(),
                                   .demoAccountRequired = *flag(),
                                   .demoAccountName = *optionalText(),
                                   .notes = *optionalText(),
                                   .unknownFields = {}};
    });
}

rc::Gen<PlatformListing> platformListing() {
    return rc::gen::exec([] {
        return PlatformListing{.version = {*optionalText(), *optionalText(), *optionalText(), {}},
                               .locales = *localizedTexts(),
                               .media = *localizedMedia(),
                               .review = *review()};
    });
}

rc::Gen<CustomProductPage> page() {
    return rc::gen::exec([] {
        return CustomProductPage{.name = *oneOf<std::string>({"", "Page"}),
                                 .visible = *flag(),
                                 .deepLink = *optionalText(),
                                 .locales = *rc::gen::container<std::vector<StoreLocale>>(locale()),
                                 .promotionalText = *mapOf(locale(), oneOf<std::string>({"", "New"})),
                                 .media = *localizedMedia(),
                                 .unknownFields = {}};
    });
}

rc::Gen<Treatment> treatment() {
    return rc::gen::exec([] {
        return Treatment{.name = *oneOf<std::string>({"", "Blue"}),
                         .appIconName = *optionalText(),
                         .locales = *rc::gen::container<std::vector<StoreLocale>>(locale()),
                         .media = *localizedMedia(),
                         .unknownFields = {}};
    });
}

rc::Gen<Experiment> experiment() {
    return rc::gen::exec([] {
        return Experiment{.name = *oneOf<std::string>({"", "Icons"}),
                          .platform = *platform(),
                          .trafficProportion = *oneOf<std::optional<std::int64_t>>({std::nullopt, 0, 25, -1}),
                          .treatments = *mapOf(slug(), treatment()),
                          .unknownFields = {}};
    });
}

}  // namespace

rc::Gen<std::string> text() {
    const auto piece =
        oneOf<std::string>({"a", "B", "-", "\u00e9", "e\u0301", " ", "\n", "\r", "\r\n", "\u00a0", "\u3000",
                            "日", "か\u3099", "👩\u200d👧", "ß", "\u0301", "한", "\u1112\u1161"});
    return rc::gen::map(rc::gen::container<std::vector<std::string>>(piece), [](const auto& pieces) {
        std::string joined;
        for (const auto& next : pieces) joined += next;
        return joined;
    });
}

rc::Gen<std::string> component() {
    return oneOf<std::string>({"a", "a-2", "b", "\u00e9", "e\u0301", "日本", "en-US", "~", "", "\u0301a"});
}

rc::Gen<std::string> componentWithSlashes() {
    return oneOf<std::string>({"a", "a/a", "a/media", "media/a", "/", "", "\u00e9", "e\u0301"});
}

rc::Gen<ContentKey> key(const rc::Gen<std::string>& part) {
    return rc::gen::exec([part]() -> ContentKey {
        const auto any = [&] { return *part; };
        const auto slot = [&] { return PlacementSlot{any(), any()}; };
        const auto attribute = []<class A>(A) { return *rc::gen::elementOf(allCases<A>); };
        const auto field = [](const auto& fields) { return *rc::gen::elementOf(fields); };
        using Key = ContentKey;
        switch (*rc::gen::inRange(0, 12)) {
            case 0:
                return Key::AppInfo{attribute(AppInfoAttribute{})};
            case 1:
                return Key::AppInfoLocale{{any()}, field(ListingFields::appInfo)};
            case 2:
                return Key::Version{{any()}, attribute(VersionAttribute{})};
            case 3:
                return Key::VersionLocale{{any()}, {any()}, field(ListingFields::version)};
            case 4:
                return Key::Placements{{any()}, {any()}, slot()};
            case 5:
                return Key::Review{{any()}, attribute(ReviewAttribute{})};
            case 6:
                return Key::Page{{any()}, attribute(PageAttribute{})};
            case 7:
                return Key::PagePromotionalText{{any()}, {any()}};
            case 8:
                return Key::PagePlacements{{any()}, {any()}, slot()};
            case 9:
                return Key::Experiment{{any()}, attribute(ExperimentAttribute{})};
            case 10:
                return Key::Treatment{{any()}, {any()}, attribute(TreatmentAttribute{})};
            default:
                return Key::TreatmentPlacements{{any()}, {any()}, {any()}, slot()};
        }
    });
}

rc::Gen<Project> project() {
    return rc::gen::exec([] {
        Project made;
        made.app.info = {*optionalText(), *optionalText(), {}};
        made.app.locales = *localizedTexts();
        made.platforms = *mapOf(platform(), platformListing());
        made.pages = *mapOf(slug(), page());
        made.experiments = *mapOf(slug(), experiment());
        return made;
    });
}

rc::Gen<ContentKey> projectKey() {
    return rc::gen::exec([]() -> ContentKey {
        const auto attribute = []<class A>(A) { return *rc::gen::elementOf(allCases<A>); };
        const auto field = [] { return *rc::gen::elementOf(ListingFields::all); };
        using Key = ContentKey;
        switch (*rc::gen::inRange(0, 12)) {
            case 0:
                return Key::AppInfo{attribute(AppInfoAttribute{})};
            case 1:
                return Key::AppInfoLocale{*locale(), field()};
            case 2:
                return Key::Version{*platform(), attribute(VersionAttribute{})};
            case 3:
                return Key::VersionLocale{*platform(), *locale(), field()};
            case 4:
                return Key::Placements{*platform(), *locale(), *slot()};
            case 5:
                return Key::Review{*platform(), attribute(ReviewAttribute{})};
            case 6:
                return Key::Page{*slug(), attribute(PageAttribute{})};
            case 7:
                return Key::PagePromotionalText{*slug(), *locale()};
            case 8:
                return Key::PagePlacements{*slug(), *locale(), *slot()};
            case 9:
                return Key::Experiment{*slug(), attribute(ExperimentAttribute{})};
            case 10:
                return Key::Treatment{*slug(), *slug(), attribute(TreatmentAttribute{})};
            default:
                return Key::TreatmentPlacements{*slug(), *slug(), *locale(), *slot()};
        }
    });
}

}  // namespace kestrin::generated
