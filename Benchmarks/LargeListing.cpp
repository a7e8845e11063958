#include "Benchmarks/LargeListing.h"

#include <array>
#include <cstdint>
#include <random>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "KestrinCore/UnicodeText.h"

namespace kestrin::LargeListing {

namespace {

constexpr int kPages = 70;
constexpr int kTests = 3;
constexpr int kTreatments = 3;
constexpr int kItemsInASlot = 10;

constexpr std::string_view kLocales[] = {
    "ar-SA", "ca",    "cs",    "da",    "de-DE", "el", "en-AU", "en-CA", "en-GB",   "en-US",
    "es-ES", "es-MX", "fi",    "fr-CA", "fr-FR", "he", "hi",    "hr",    "hu",      "id",
    "it",    "ja",    "ko",    "ms",    "nl-NL", "no", "pl",    "pt-BR", "pt-PT",   "ro",
    "ru",    "sk",    "sl-SI", "sv",    "th",    "tr", "uk",    "vi",    "zh-Hans", "zh-Hant",
};

const PlacementSlot kPhoneScreenshots{"IPHONE_DYNAMIC_ISLAND_LARGE_PROFILE", "APP_SCREENSHOT"};
const PlacementSlot kTabletScreenshots{"IPAD_13_PROFILE", "APP_SCREENSHOT"};

struct Language {
    std::string_view prefix;  // of the locale's code
    std::array<std::string_view, 12> words;
    std::string_view space = " ", comma = ", ", stop = ".";
};

// One language a row.
// clang-format off
constexpr Language kLanguages[] = {
    {"ar", {"خريطة", "المشي", "مسار", "جبل", "طقس", "رحلة", "غابة", "بحيرة", "صديق", "صورة", "مفضلة", "ملاحظة"}, " ", "، "},
    {"cs", {"mapa", "stezka", "výlet", "počasí", "přátelé", "hory", "jezero", "údolí", "poznámka", "řeka", "žebříček", "průvodce"}},
    {"de", {"Wanderweg", "Karte", "Höhenprofil", "Wetter", "Rundgang", "Übersicht", "Gipfel", "Straße", "Freunde", "Merkliste", "unterwegs", "größer"}},
    {"el", {"χάρτης", "μονοπάτι", "βουνό", "λίμνη", "καιρός", "διαδρομή", "φίλοι", "εκδρομή", "δάσος", "κορυφή", "φωτογραφία", "σημείωση"}},
    {"fr", {"sentier", "carte", "randonnée", "météo", "forêt", "étape", "sommet", "amis", "été", "à pied", "où", "précis"}},
    {"he", {"מפה", "שביל", "הר", "טיול", "מזג", "אוויר", "חברים", "יער", "אגם", "תמונה", "מועדפים", "הערה"}},
    {"hi", {"मानचित्र", "पगडंडी", "पर्वत", "यात्रा", "मौसम", "मित्र", "झील", "जंगल", "चित्र", "शिखर", "दिशा", "टिप्पणी"}, " ", ", ", "।"},
    {"ja", {"地図", "散歩", "山道", "天気", "友だち", "記録", "写真", "湖", "森の中", "お気に入り", "オフライン", "ハイキング"}, "", "、", "。"},
    {"ko", {"지도", "산책길", "등산", "날씨", "친구", "기록", "사진", "호수", "숲길", "즐겨찾기", "오프라인", "여행"}},
    {"ru", {"карта", "тропа", "поход", "погода", "друзья", "озеро", "вершина", "маршрут", "заметка", "фотография", "лес", "ещё"}},
    {"th", {"แผนที่", "เส้นทาง", "ภูเขา", "อากาศ", "เพื่อน", "ทะเลสาบ", "ป่า", "ภาพถ่าย", "บันทึก", "เดินป่า", "รายการโปรด", "ออฟไลน์"}, "", " ", ""},
    {"uk", {"мапа", "стежка", "похід", "погода", "друзі", "озеро", "вершина", "маршрут", "нотатка", "світлина", "ліс", "їжак"}},
    {"vi", {"bản đồ", "đường mòn", "ngọn núi", "thời tiết", "bạn bè", "hồ nước", "khu rừng", "ảnh chụp", "ghi chú", "chuyến đi", "yêu thích", "ngoại tuyến"}},
    {"zh", {"地图", "步道", "天气", "朋友", "湖泊", "森林", "照片", "收藏", "离线", "山峰", "路线", "旅行"}, "", "，", "。"},
    {"", {"map", "trail", "weather", "friends", "summit", "lake", "forest", "offline", "favourite", "naïve", "café", "journal"}},
};
// clang-format on

const Language& languageOf(const StoreLocale& locale) {
    const auto* language = kLanguages;
    while (!locale.rawValue.starts_with(language->prefix)) ++language;
    return *language;  // the last one's prefix begins every code
}

// Writes texts of a language. Lengths are in UTF-16 units: never more than `most`, never much less than asked.
class Author {
 public:
    std::size_t number(std::size_t below) { return static_cast<std::size_t>(random_() % below); }

    UUID uuid() {
        UUID result;
        for (auto& byte : result.bytes) byte = static_cast<std::uint8_t>(number(256));
        return result;
    }

    std::string_view word(const Language& language) { return language.words[number(language.words.size())]; }

    std::string title(const Language& language, std::size_t most) {
        std::string result(word(language));
        for (std::string next = result; text::utf16Length(next) <= most;) {
            result = std::exchange(next, next + std::string(language.space) + std::string(word(language)));
        }
        return result;
    }

    std::string keywords(const Language& language, std::size_t most) {
        std::string result;
        for (const auto word : language.words) {
            const auto next = result.empty() ? std::string(word) : result + "," + std::string(word);
            if (text::utf16Length(next) <= most) result = next;
        }
        return result;
    }

    // Sentences, in paragraphs of five.
    std::string prose(const Language& language, std::size_t most) {
        std::string result;
        std::size_t length = 0;
        for (int count = 1;; ++count) {
            const auto next = sentence(language) + (count % 5 == 0 ? "\n\n" : " ");
            length += text::utf16Length(next);
            if (length > most) break;
            result += next;
        }
        return std::string(text::withoutTrailingWhitespace(result));
    }

 private:
    std::string sentence(const Language& language) {
        std::string result(word(language));
        for (auto left = 3 + number(9); left > 0; --left) {
            result += left % 4 == 0 ? language.comma : language.space;
            result += word(language);
        }
        result += language.stop;
        if (number(12) == 0) result += " 🏔️";
        return result;
    }

    std::mt19937_64 random_{20240229};
};

std::vector<StoreLocale> locales(int times) {
    std::vector<StoreLocale> result;
    for (int round = 1; round <= times; ++round) {
        for (const auto code : kLocales) {
            result.push_back({std::string(code) + (round == 1 ? "" : "-x" + std::to_string(round))});
        }
    }
    return result;
}

MediaItems screenshots(Author& author) {
    MediaItems items;
    for (int number = 1; number <= kItemsInASlot; ++number) {
        items.push_back(MediaItem::remote(author.uuid().text(), "Screen " + std::to_string(number) + ".png"));
    }
    return items;
}

std::string textOf(ListingField field, const StoreLocale& locale, Author& author) {
    const auto& language = languageOf(locale);
    switch (field) {
        case ListingField::name:
        case ListingField::subtitle:
            return author.title(language, 30);
        case ListingField::privacyPolicyUrl:
            return "https://example.com/" + locale.rawValue + "/privacy";
        case ListingField::privacyChoicesUrl:
            return "https://example.com/" + locale.rawValue + "/choices";
        case ListingField::description:
            return author.prose(language, 1'000 + author.number(3'000));
        case ListingField::keywords:
            return author.keywords(language, 100);
        case ListingField::promotionalText:
            return author.prose(language, 170);
        case ListingField::whatsNew:
            return author.prose(language, 200 + author.number(800));
        case ListingField::supportUrl:
            return "https://example.com/" + locale.rawValue + "/support";
        case ListingField::marketingUrl:
            return "https://example.com/" + locale.rawValue;
    }
    return {};
}

LocalizedTexts texts(std::span<const ListingField> fields, const ProjectManifest& manifest, Author& author) {
    LocalizedTexts result;
    for (const auto& locale : manifest.locales) {
        for (const auto field : fields) {
            Texts::setField(result, locale, field, textOf(field, locale, author));
        }
    }
    return result;
}

PlatformListing platformListing(const ProjectManifest& manifest, Author& author) {
    PlatformListing listing;
    listing.version = {"4.2.0", "© 2024 Example Walks", "AFTER_APPROVAL", {}};
    listing.locales = texts(ListingFields::version, manifest, author);
    for (const auto& locale : manifest.locales) {
        Media::setItems(listing.media, locale, kPhoneScreenshots, screenshots(author));
    }
    listing.review.contactFirstName = "Ada";
    listing.review.contactEmail = "review@example.com";
    listing.review.demoAccountRequired = false;
    return listing;
}

CustomProductPage page(std::string name, const ProjectManifest& manifest, Author& author) {
    CustomProductPage result;
    result.name = std::move(name);
    result.visible = true;
    result.deepLink = "https://example.com/walks";
    result.locales = manifest.locales;
    for (const auto& locale : manifest.locales) {
        result.promotionalText[locale] = textOf(ListingField::promotionalText, locale, author);
        Media::setItems(result.media, locale, kPhoneScreenshots, screenshots(author));
        Media::setItems(result.media, locale, kTabletScreenshots, screenshots(author));
    }
    return CustomProductPage::made(std::move(result));
}

Treatment treatment(std::string name, const ProjectManifest& manifest, Author& author) {
    Treatment result;
    result.name = std::move(name);
    result.locales = manifest.locales;
    for (const auto& locale : manifest.locales) {
        Media::setItems(result.media, locale, kPhoneScreenshots, screenshots(author));
    }
    return Treatment::made(std::move(result));
}

Experiment experiment(std::string name, const ProjectManifest& manifest, Author& author) {
    Experiment result;
    result.name = std::move(name);
    result.trafficProportion = 30;
    for (int number = 1; number <= kTreatments; ++number) {
        const auto treatmentName = "Treatment " + std::to_string(number);
        result.treatments[Slug::make(treatmentName, {})] = treatment(treatmentName, manifest, author);
    }
    return result;
}

ProjectManifest manifest(int times, Author& author) {
    ProjectManifest result;
    result.projectID = author.uuid();
    result.app = {"com.example.walks", "1234567890", {}};
    result.platforms = {StorePlatform::editable.begin(), StorePlatform::editable.end()};
    result.primaryLocale = StoreLocale::englishUS;
    result.locales = locales(times);
    return result;
}

}  // namespace

Project make(int times) {
    Author author;
    Project project;
    project.manifest = manifest(times, author);
    project.app.info = {"NAVIGATION", "TRAVEL", {}};
    project.app.locales = texts(ListingFields::appInfo, project.manifest, author);
    for (const auto& platform : project.manifest.platforms) {
        project.platforms[platform] = platformListing(project.manifest, author);
    }
    for (int number = 1; number <= kPages; ++number) {
        const auto name = "Walks of the Region " + std::to_string(number);
        project.pages[Slug::make(name, {})] = page(name, project.manifest, author);
    }
    for (int number = 1; number <= kTests; ++number) {
        const auto name = "Icon Test " + std::to_string(number);
        project.experiments[Slug::make(name, {})] = experiment(name, project.manifest, author);
    }
    return project;
}

}  // namespace kestrin::LargeListing
