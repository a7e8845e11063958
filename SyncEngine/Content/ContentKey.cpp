#include "SyncEngine/Content/ContentKey.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <ostream>
#include <span>

#include "KestrinCore/Error.h"
#include "KestrinCore/UnicodeText.h"

namespace kestrin {
namespace {

using Components = std::span<const std::string_view>;

constexpr std::string_view kApp = "app";
constexpr std::string_view kVersion = "version";
constexpr std::string_view kReview = "review";
constexpr std::string_view kMedia = "media";
constexpr std::string_view kPages = "pages";
constexpr std::string_view kPromotionalText = "promotionalText";
constexpr std::string_view kExperiments = "experiments";
constexpr std::string_view kTreatments = "treatments";
constexpr std::size_t kMostComponents = 8;

struct JoinedComponents {
    explicit JoinedComponents(std::initializer_list<std::string_view> components) {
        std::size_t size = 0;
        for (const auto component : components) size += component.size() + 1;
        text.reserve(size);
        for (const auto component : components) {
            hasSlash = hasSlash || component.find('/') != std::string_view::npos;
            text += component;
            text += '/';
        }
        text.pop_back();
    }

    std::string text;
    bool hasSlash = false;
};

JoinedComponents joined(const ContentKey::Kind& kind) {
    using Joined = JoinedComponents;
    return std::visit(Overloaded{
                          [](const ContentKey::AppInfo& key) {
                              return Joined{kApp, rawValue(key.attribute)};
                          },
                          [](const ContentKey::AppInfoLocale& key) {
                              return Joined{kApp, key.locale.rawValue, rawValue(key.field)};
                          },
                          [](const ContentKey::Version& key) {
                              return Joined{key.platform.rawValue, kVersion, rawValue(key.attribute)};
                          },
                          [](const ContentKey::VersionLocale& key) {
                              return Joined{key.platform.rawValue, key.locale.rawValue, rawValue(key.field)};
                          },
                          [](const ContentKey::Placements& key) {
                              return Joined{key.platform.rawValue, key.locale.rawValue, kMedia,
                                            key.slot.group, key.slot.type};
                          },
                          [](const ContentKey::Review& key) {
                              return Joined{key.platform.rawValue, kReview, rawValue(key.attribute)};
                          },
                          [](const ContentKey::Page& key) {
                              return Joined{kPages, key.page.rawValue, rawValue(key.attribute)};
                          },
                          [](const ContentKey::PagePromotionalText& key) {
                              return Joined{kPages, key.page.rawValue, key.locale.rawValue, kPromotionalText};
                          },
                          [](const ContentKey::PagePlacements& key) {
                              return Joined{kPages, key.page.rawValue, key.locale.rawValue,
                                            kMedia, key.slot.group,    key.slot.type};
                          },
                          [](const ContentKey::Experiment& key) {
                              return Joined{kExperiments, key.experiment.rawValue, rawValue(key.attribute)};
                          },
                          [](const ContentKey::Treatment& key) {
                              return Joined{kExperiments, key.experiment.rawValue, kTreatments,
                                            key.treatment.rawValue, rawValue(key.attribute)};
                          },
                          [](const ContentKey::TreatmentPlacements& key) {
                              return Joined{kExperiments,        key.experiment.rawValue,
                                            kTreatments,         key.treatment.rawValue,
                                            key.locale.rawValue, kMedia,
                                            key.slot.group,      key.slot.type};
                          },
                      },
                      kind);
}

// "" when the text is in NFC already.
std::string nfcUnlessSame(const std::string& s) {
    if (text::isASCII(s)) return {};
    auto nfc = text::toNFC(s);
    return nfc == s ? std::string{} : nfc;
}

// The pieces of an id between its slashes, empty ones too. Nothing when there are more than any key has.
class SplitID {
 public:
    explicit SplitID(std::string_view id) {
        for (std::size_t start = 0; start != std::string_view::npos;) {
            if (count_ == kMostComponents) {
                count_ = 0;
                return;
            }
            const auto slash = id.find('/', start);
            const auto end = slash == std::string_view::npos ? id.size() : slash;
            pieces_[count_++] = id.substr(start, end - start);
            start = slash == std::string_view::npos ? slash : slash + 1;
        }
    }

    Components components() const { return Components(pieces_).first(count_); }

 private:
    std::array<std::string_view, kMostComponents> pieces_;
    std::size_t count_ = 0;
};

std::string string(std::string_view component) {
    return std::string(component);
}

PlacementSlot slot(std::string_view group, std::string_view type) {
    return {string(group), string(type)};
}

std::optional<ListingField> fieldOf(ListingFieldInfo::Parent level, std::string_view rawValue) {
    const auto field = listingField(rawValue);
    return field && parent(*field) == level ? field : std::nullopt;
}

std::optional<ContentKey> page(Components c) {
    const Slug slug{string(c[1])};
    if (c.size() == 3) {
        if (const auto known = attribute<PageAttribute>(c[2])) return ContentKey::Page{slug, *known};
    }
    if (c.size() == 4 && c[3] == kPromotionalText) {
        return ContentKey::PagePromotionalText{slug, {string(c[2])}};
    }
    if (c.size() == 6 && c[3] == kMedia) {
        return ContentKey::PagePlacements{slug, {string(c[2])}, slot(c[4], c[5])};
    }
    return std::nullopt;
}

std::optional<ContentKey> experiment(Components c) {
    const Slug slug{string(c[1])};
    if (c.size() == 3) {
        if (const auto known = attribute<ExperimentAttribute>(c[2])) {
            return ContentKey::Experiment{slug, *known};
        }
    }
    if (c.size() == 5 && c[2] == kTreatments) {
        if (const auto known = attribute<TreatmentAttribute>(c[4])) {
            return ContentKey::Treatment{slug, {string(c[3])}, *known};
        }
    }
    if (c.size() == 8 && c[2] == kTreatments && c[5] == kMedia) {
        return ContentKey::TreatmentPlacements{slug, {string(c[3])}, {string(c[4])}, slot(c[6], c[7])};
    }
    return std::nullopt;
}

std::optional<ContentKey> productPage(Components c) {
    if (c.size() < 3) return std::nullopt;
    return c[0] == kPages ? page(c) : experiment(c);
}

std::optional<ContentKey> placements(Components c) {
    if (c[2] != kMedia || c[0] == kApp) return std::nullopt;
    return ContentKey::Placements{{string(c[0])}, {string(c[1])}, slot(c[3], c[4])};
}

std::optional<ContentKey> appInfoLocale(Components c) {
    const auto field = fieldOf(ListingFieldInfo::Parent::appInfoLocalization, c[2]);
    if (!field) return std::nullopt;
    return ContentKey::AppInfoLocale{{string(c[1])}, *field};
}

std::optional<ContentKey> review(Components c) {
    const auto known = attribute<ReviewAttribute>(c[2]);
    if (!known) return std::nullopt;
    return ContentKey::Review{{string(c[0])}, *known};
}

std::optional<ContentKey> version(Components c) {
    const auto known = attribute<VersionAttribute>(c[2]);
    if (!known) return std::nullopt;
    return ContentKey::Version{{string(c[0])}, *known};
}

std::optional<ContentKey> versionLocale(Components c) {
    const auto field = fieldOf(ListingFieldInfo::Parent::appStoreVersionLocalization, c[2]);
    if (!field) return std::nullopt;
    return ContentKey::VersionLocale{{string(c[0])}, {string(c[1])}, *field};
}

// A locale named "review" or "version" can't be told from the word, which goes first.
std::optional<ContentKey> ofThreeComponents(Components c) {
    if (c[0] == kApp) return appInfoLocale(c);
    if (c[1] == kReview) return review(c);
    if (c[1] == kVersion) return version(c);
    return versionLocale(c);
}

std::optional<ContentKey> appInfo(Components c) {
    const auto known = attribute<AppInfoAttribute>(c[1]);
    if (c[0] != kApp || !known) return std::nullopt;
    return ContentKey::AppInfo{*known};
}

}  // namespace

ContentKey::Payload::Payload(Kind made) : kind(std::move(made)) {
    auto components = joined(kind);
    id = std::move(components.text);
    hasSlash = components.hasSlash;
    nfcID = nfcUnlessSame(id);
}

ContentKey::ContentKey(Kind kind)
    : payload_(std::make_shared<const Payload>(std::move(kind))),
      order_(payload_->nfcID.empty() ? payload_->id : payload_->nfcID) {}

std::optional<ContentKey> ContentKey::fromID(std::string_view id) {
    const SplitID split(id);
    const auto components = split.components();
    if (components.empty()) return std::nullopt;
    if (components[0] == kPages || components[0] == kExperiments) return productPage(components);
    if (components.size() == 5) return placements(components);
    if (components.size() == 3) return ofThreeComponents(components);
    if (components.size() == 2) return appInfo(components);
    return std::nullopt;
}

bool ContentKey::isMedia() const {
    return std::visit(
        [](const auto& key) {
            return requires {
                key.slot;
            };
        },
        kind());
}

bool ContentKey::isDefaultProductPage() const {
    return std::visit([]<class Case>(const Case&) { return !isProductPageCase<Case>; }, kind());
}

std::optional<StorePlatform> ContentKey::platform() const {
    return std::visit(
        [](const auto& key) -> std::optional<StorePlatform> {
            if constexpr (requires { key.platform; }) return key.platform;
            return std::nullopt;
        },
        kind());
}

std::optional<StoreLocale> ContentKey::locale() const {
    return std::visit(
        [](const auto& key) -> std::optional<StoreLocale> {
            if constexpr (requires { key.locale; }) return key.locale;
            return std::nullopt;
        },
        kind());
}

std::optional<Slug> ContentKey::page() const {
    return std::visit(
        [](const auto& key) -> std::optional<Slug> {
            if constexpr (requires { key.page; }) return key.page;
            return std::nullopt;
        },
        kind());
}

std::optional<ContentKey::ExperimentPath> ContentKey::experiment() const {
    return std::visit(
        [](const auto& key) -> std::optional<ExperimentPath> {
            if constexpr (requires { key.treatment; }) return ExperimentPath{key.experiment, key.treatment};
            if constexpr (requires { key.experiment; }) return ExperimentPath{key.experiment, std::nullopt};
            return std::nullopt;
        },
        kind());
}

std::weak_ordering ContentKey::operator<=>(const ContentKey& other) const {
    if (payload_ == other.payload_) return std::weak_ordering::equivalent;
    const auto byID = order_.compare(other.order_) <=> 0;
    if (byID != 0) return byID;
    const auto byCase = kind().index() <=> other.kind().index();
    if (byCase != 0 || !payload_->hasSlash) return byCase;
    return kind() <=> other.kind();
}

std::ostream& operator<<(std::ostream& out, const ContentKey& key) {
    return out << key.id();
}

}  // namespace kestrin
