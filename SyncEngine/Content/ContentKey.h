// The address of one syncable value: the one address space in which listings are compared, planned and stored.
//
// The case says what kind of value it is, the payload which one, and `id` is the key as text: what is printed, and
// what keys the stored base snapshot. It is built by joining with "/" and nothing is escaped:
//
//   AppInfo              app/<attribute>
//   AppInfoLocale        app/<locale>/<field>
//   Version              <platform>/version/<attribute>
//   VersionLocale        <platform>/<locale>/<field>
//   Placements           <platform>/<locale>/media/<group>/<type>
//   Review               <platform>/review/<attribute>
//   Page                 pages/<page>/<attribute>
//   PagePromotionalText  pages/<page>/<locale>/promotionalText
//   PagePlacements       pages/<page>/<locale>/media/<group>/<type>
//   Experiment           experiments/<experiment>/<attribute>
//   Treatment            experiments/<experiment>/treatments/<treatment>/<attribute>
//   TreatmentPlacements  experiments/<experiment>/treatments/<treatment>/<locale>/media/<group>/<type>
//
// A key never changes. It points to a payload that its copies share, with the id and the id's NFC form made once: a
// copy costs no text, a comparison is one of bytes.
#pragma once

#include <compare>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

#include "KestrinModel/ListingField.h"
#include "KestrinModel/PlacementSlot.h"
#include "KestrinModel/Slug.h"
#include "KestrinModel/StoreLocale.h"
#include "KestrinModel/StorePlatform.h"
#include "SyncEngine/Content/ContentAttribute.h"

namespace kestrin {

class ContentKey {
 public:
    // A category of the app.
    struct AppInfo {
        AppInfoAttribute attribute;
        auto operator<=>(const AppInfo&) const = default;
    };
    // A localized text of the app.
    struct AppInfoLocale {
        StoreLocale locale;
        ListingField field;
        auto operator<=>(const AppInfoLocale&) const = default;
    };
    // An attribute of the platform's version.
    struct Version {
        StorePlatform platform;
        VersionAttribute attribute;
        auto operator<=>(const Version&) const = default;
    };
    // A localized text of the platform's version.
    struct VersionLocale {
        StorePlatform platform;
        StoreLocale locale;
        ListingField field;
        auto operator<=>(const VersionLocale&) const = default;
    };
    // The media of one slot of the default product page.
    struct Placements {
        StorePlatform platform;
        StoreLocale locale;
        PlacementSlot slot;
        auto operator<=>(const Placements&) const = default;
    };
    // What App Review needs to know.
    struct Review {
        StorePlatform platform;
        ReviewAttribute attribute;
        auto operator<=>(const Review&) const = default;
    };
    // An attribute of a custom product page.
    struct Page {
        Slug page;
        PageAttribute attribute;
        auto operator<=>(const Page&) const = default;
    };
    // A custom product page's promotional text in one locale.
    struct PagePromotionalText {
        Slug page;
        StoreLocale locale;
        auto operator<=>(const PagePromotionalText&) const = default;
    };
    // The media of one slot of a custom product page.
    struct PagePlacements {
        Slug page;
        StoreLocale locale;
        PlacementSlot slot;
        auto operator<=>(const PagePlacements&) const = default;
    };
    // An attribute of a product page optimization test.
    struct Experiment {
        Slug experiment;
        ExperimentAttribute attribute;
        auto operator<=>(const Experiment&) const = default;
    };
    // An attribute of one treatment of a test.
    struct Treatment {
        Slug experiment;
        Slug treatment;
        TreatmentAttribute attribute;
        auto operator<=>(const Treatment&) const = default;
    };
    // The media of one slot of a treatment.
    struct TreatmentPlacements {
        Slug experiment;
        Slug treatment;
        StoreLocale locale;
        PlacementSlot slot;
        auto operator<=>(const TreatmentPlacements&) const = default;
    };

    using Kind =
        std::variant<AppInfo, AppInfoLocale, Version, VersionLocale, Placements, Review, Page,
                     PagePromotionalText, PagePlacements, Experiment, Treatment, TreatmentPlacements>;

    template <class Case>
    static constexpr bool isCase = []<class... Cases>(const std::variant<Cases...>*) {
        return (std::is_same_v<Case, Cases> || ...);
    }(static_cast<const Kind*>(nullptr));

    // Whether a case belongs to a custom product page or to a test.
    template <class Case>
    static constexpr bool isProductPageCase = requires(Case c) {
        c.page;
    }
    || requires(Case c) { c.experiment; };

    // Implicit: wherever a key is wanted, its case will do.
    template <class Case>
    requires isCase<Case> ContentKey(Case payload) : ContentKey(Kind(std::move(payload))) {}
    explicit ContentKey(Kind kind);

    // The key with this id; nothing for a text outside the grammar. Only the structure and the names of attributes
    // and fields are checked, and a field must be of its level; platforms, locales, slugs and slots are taken as
    // they stand, empty ones too. Gives back the key of every id that the grammar can tell apart; it can't where a
    // payload has a "/", a platform is named "app", "pages" or "experiments", or a locale "version" or "review".
    static std::optional<ContentKey> fromID(std::string_view id);

    const std::string& id() const { return payload_->id; }
    const std::string& description() const { return id(); }

    const Kind& kind() const { return payload_->kind; }
    // The payload of this case; nullptr when the key is of another.
    template <class Case>
    const Case* as() const {
        return std::get_if<Case>(&kind());
    }

    bool isMedia() const;
    // Of the app, a version or App Review: neither of a custom product page nor of a test.
    bool isDefaultProductPage() const;

    // The parts of the payload; nothing where the case has none. The `platform` attribute of a test is a value,
    // not an address: such a key has no platform.
    std::optional<StorePlatform> platform() const;
    std::optional<StoreLocale> locale() const;
    std::optional<Slug> page() const;

    struct ExperimentPath {
        Slug experiment;
        std::optional<Slug> treatment;  // nothing for the test itself
        bool operator==(const ExperimentPath&) const = default;
    };
    std::optional<ExperimentPath> experiment() const;

    // In the order of the ids as text. Keys of one id are ordered by case, then payload, and only keys of the same
    // case and payload are equal, so that two different values never share an entry of a map, however odd the names
    // that came from outside ("a/b" as a locale). For all other keys: equal ids, equal keys.
    bool operator==(const ContentKey& other) const { return (*this <=> other) == 0; }
    std::weak_ordering operator<=>(const ContentKey& other) const;

 private:
    struct Payload {
        explicit Payload(Kind made);

        Kind kind;
        std::string id;
        std::string nfcID;  // empty when the id is in NFC
        bool hasSlash;      // in a part of the payload
    };
    std::shared_ptr<const Payload> payload_;
    std::string_view order_;  // the NFC form, here so that a comparison need not visit the payload
};

// Writes the id.
std::ostream& operator<<(std::ostream& out, const ContentKey& key);

}  // namespace kestrin
