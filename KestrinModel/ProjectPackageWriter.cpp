#include <set>

#include "KestrinCore/MapLookup.h"
#include "KestrinCore/StableJSON.h"
#include "KestrinModel/ExperimentFile.h"
#include "KestrinModel/LocaleFile.h"
#include "KestrinModel/PackageLayout.h"
#include "KestrinModel/PackageNames.h"
#include "KestrinModel/PageFile.h"
#include "KestrinModel/PlacementsFile.h"
#include "KestrinModel/ProjectPackageCodec.h"
#include "KestrinModel/TextFile.h"
#include "KestrinModel/TreatmentFile.h"

namespace kestrin::ProjectPackageCodec {
namespace {

using namespace PackageLayout;
using Locales = std::set<StoreLocale>;

constexpr std::string_view kGitAttributesContent =
    "*.png binary\n"
    "*.jpg binary\n"
    "*.jpeg binary\n"
    "*.heic binary\n"
    "*.mp4 binary\n"
    "*.mov binary\n";

template <class Value>
void addKeys(Locales& locales, const std::map<StoreLocale, Value>& map) {
    for (const auto& entry : map) locales.insert(entry.first);
}

Locales localesOf(const PlatformListing& listing) {
    Locales locales;
    addKeys(locales, listing.locales);
    addKeys(locales, listing.media);
    return locales;
}

Locales localesOf(const CustomProductPage& page) {
    Locales locales(page.locales.begin(), page.locales.end());
    addKeys(locales, page.promotionalText);
    addKeys(locales, page.media);
    return locales;
}

Locales localesOf(const Treatment& treatment) {
    Locales locales(treatment.locales.begin(), treatment.locales.end());
    addKeys(locales, treatment.media);
    return locales;
}

// Single files

void writeText(PackageFolder& folder, std::string_view name, const std::string& text) {
    if (text.empty()) {
        folder.remove(name);
    } else {
        folder.setFile(name, TextFile::encode(text));
    }
}

void writeFields(PackageFolder& folder, const LocalizedFields& fields) {
    if (LocaleFile::hasContent(fields, ListingFields::versionJSON)) {
        folder.setFile(kListing, LocaleFile::encode(fields, ListingFields::versionJSON));
    } else {
        folder.remove(kListing);
    }
}

void writeMedia(PackageFolder& folder, const LocalizedMedia& media, const StoreLocale& locale) {
    const auto& slots = valueOrEmpty(media, locale);
    if (PlacementsFile::hasItems(slots)) {
        folder.setFile(kPlacements, PlacementsFile::encode(slots));
    } else {
        folder.remove(kPlacements);
    }
}

// Folders of locales

void removeStaleLocales(PackageFolder& folder, const Locales& current) {
    folder.removeFolders([&](const std::string& name, const PackageFolder&) {
        return !current.contains(StoreLocale{usable(name, folder)});
    });
}

// Of a page or treatment: unlike a platform's, its "Locales" is there only with something in it.
template <class Write>
void writeLocaleFolders(PackageFolder& folder, const Locales& locales, Write write) {
    if (locales.empty() && !folder.contains(kLocales)) return;
    auto& parent = folder.directory(kLocales);
    removeStaleLocales(parent, locales);
    for (const auto& locale : locales) write(locale, parent.directory(locale.rawValue));
    if (parent.isEmpty()) folder.remove(kLocales);
}

// Pages, tests and treatments: the folder `name` with a folder for each of `items`, which is one by its file
// `fileName`. Folders without that file aren't ours and stay.
template <class Item, class Write>
void writeItems(PackageFolder& parent, std::string_view name, std::string_view fileName,
                const std::map<Slug, Item>& items, Write write) {
    if (items.empty() && !parent.folder(name)) return;
    auto& folder = parent.directory(name);
    folder.removeFolders([&](const std::string& itemName, const PackageFolder& item) {
        return item.hasFile(fileName) && !items.contains(Slug{usable(itemName, folder)});
    });
    for (const auto& [slug, item] : items) write(item, folder.directory(slug.rawValue));
    if (items.empty() && folder.isEmpty()) parent.remove(name);
}

// The parts of a project

void writeManifest(PackageFolder& package, const ProjectManifest& manifest) {
    package.setFile(kManifest, StableJSON::encode(manifest));
    package.remove(kLegacyManifest);
    if (!package.containsAny(kGitAttributes)) {
        package.setFile(kGitAttributes, std::string(kGitAttributesContent));
    }
}

void writeApp(PackageFolder& package, const AppListing& app) {
    auto& folder = package.directory(kApp);
    folder.setFile(kInfo, StableJSON::encode(app.info));
    auto& locales = folder.directory(kLocales);
    locales.removeAll([&](const std::string& name) {
        const auto locale = localeOfFile(name, locales);
        return locale && !app.locales.contains(StoreLocale{*locale});
    });
    for (const auto& [locale, fields] : app.locales) {
        locales.setFile(locale.rawValue + std::string(kJSON),
                        LocaleFile::encode(fields, ListingFields::appInfo));
    }
}

void writePlatformLocale(PackageFolder& folder, const PlatformListing& listing, const StoreLocale& locale) {
    const auto& fields = Texts::fields(listing.locales, locale);
    writeFields(folder, fields);
    for (const auto field : ListingFields::version) {
        if (!info(field).isStoredAsJSON()) writeText(folder, info(field).textFile, fields[field]);
    }
    writeMedia(folder, listing.media, locale);
}

void writePlatform(PackageFolder& folder, const PlatformListing& listing) {
    folder.setFile(kVersion, StableJSON::encode(listing.version));
    if (listing.review.isEmpty()) {
        folder.remove(kReview);
    } else {
        folder.setFile(kReview, StableJSON::encode(listing.review));
    }
    auto& parent = folder.directory(kLocales);
    const auto locales = localesOf(listing);
    removeStaleLocales(parent, locales);
    for (const auto& locale : locales) {
        writePlatformLocale(parent.directory(locale.rawValue), listing, locale);
    }
}

void writePlatforms(PackageFolder& package, const std::map<StorePlatform, PlatformListing>& platforms) {
    text::TextSet current;
    for (const auto& entry : platforms) current.insert(entry.first.folderName());
    package.removeFolders([&](const std::string& name, const PackageFolder& folder) {
        return isPlatformFolder(name, folder) && !current.contains(usable(name, package));
    });
    for (const auto& [platform, listing] : platforms) {
        writePlatform(package.directory(platform.folderName()), listing);
    }
}

void writePage(PackageFolder& folder, const CustomProductPage& page) {
    folder.setFile(kPage, StableJSON::encode(PageFile::of(page)));
    writeLocaleFolders(folder, localesOf(page), [&](const StoreLocale& locale, PackageFolder& localeFolder) {
        writeText(localeFolder, kPromotionalText, valueOrEmpty(page.promotionalText, locale));
        writeMedia(localeFolder, page.media, locale);
    });
}

void writeTreatment(PackageFolder& folder, const Treatment& treatment) {
    folder.setFile(kTreatment, StableJSON::encode(TreatmentFile::of(treatment)));
    writeLocaleFolders(folder, localesOf(treatment),
                       [&](const StoreLocale& locale, PackageFolder& localeFolder) {
                           writeMedia(localeFolder, treatment.media, locale);
                       });
}

void writeExperiment(PackageFolder& folder, const Experiment& experiment) {
    folder.setFile(kExperiment, StableJSON::encode(ExperimentFile::of(experiment)));
    writeItems(folder, kTreatments, kTreatment, experiment.treatments,
               [](const Treatment& treatment, PackageFolder& item) { writeTreatment(item, treatment); });
}

void addFiles(PackageFolder& package, const AddedFiles& addingFiles) {
    for (const auto& [path, source] : addingFiles) {
        const auto pieces = PackageNames::pieces(path);
        auto* folder = &package;
        for (std::size_t i = 0; i + 1 < pieces.size(); ++i) folder = &folder->directory(pieces[i]);
        folder->addFile(pieces.back(), source);
    }
}

}  // namespace

PackageFolder write(const Project& project, PackageFolder previous, const AddedFiles& addingFiles) {
    PackageNames::check(project);
    for (const auto& entry : addingFiles) PackageNames::pieces(entry.first);
    auto package = std::move(previous);
    writeManifest(package, project.manifest);
    writeApp(package, project.app);
    writePlatforms(package, project.platforms);
    writeItems(package, kPages, kPage, project.pages,
               [](const CustomProductPage& page, PackageFolder& folder) { writePage(folder, page); });
    writeItems(
        package, kExperiments, kExperiment, project.experiments,
        [](const Experiment& experiment, PackageFolder& folder) { writeExperiment(folder, experiment); });
    addFiles(package, addingFiles);
    return package;
}

}  // namespace kestrin::ProjectPackageCodec
