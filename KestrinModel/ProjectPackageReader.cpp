#include "KestrinCore/StableJSON.h"
#include "KestrinModel/ExperimentFile.h"
#include "KestrinModel/LocaleFile.h"
#include "KestrinModel/PackageLayout.h"
#include "KestrinModel/PageFile.h"
#include "KestrinModel/PlacementsFile.h"
#include "KestrinModel/ProjectFormat.h"
#include "KestrinModel/ProjectFormatError.h"
#include "KestrinModel/ProjectPackageCodec.h"
#include "KestrinModel/TextFile.h"
#include "KestrinModel/TreatmentFile.h"

namespace kestrin::ProjectPackageCodec {
namespace {

using namespace PackageLayout;

// What `decode` makes of the file's content; nullopt when there is no such file.
template <class Decode>
auto decoded(const PackageFolder& folder, std::string_view name, Decode decode)
    -> std::optional<decltype(decode(std::string()))> {
    const auto bytes = folder.contents(name);
    if (!bytes) return std::nullopt;
    try {
        return decode(*bytes);
    } catch (const DecodingError&) {
        throw ProjectFormatError(ProjectFormatError::CorruptFile{folder.pathOf(name)});
    }
}

template <JSONDecodable Record>
std::optional<Record> record(const PackageFolder& folder, std::string_view name) {
    return decoded(folder, name, [](std::string_view bytes) { return StableJSON::decode<Record>(bytes); });
}

std::string text(const PackageFolder& folder, std::string_view name) {
    const auto bytes = folder.contents(name);
    return bytes ? TextFile::decode(*bytes) : "";
}

LocalizedFields fields(const PackageFolder& folder, std::string_view name,
                       std::span<const ListingField> allowed) {
    const auto decode = [&](std::string_view bytes) { return LocaleFile::decode(bytes, allowed); };
    return decoded(folder, name, decode).value_or(LocalizedFields());
}

void readMedia(LocalizedMedia& media, const StoreLocale& locale, const PackageFolder& folder) {
    auto slots = decoded(folder, kPlacements, PlacementsFile::decode);
    if (slots && !slots->empty()) media.insert_or_assign(locale, *std::move(slots));
}

// Every folder of "Locales" in `folder`.
template <class Read>
void eachLocale(const PackageFolder& folder, Read read) {
    const auto* locales = folder.folder(kLocales);
    if (!locales) return;
    for (const auto& name : locales->folderNames()) {
        read(StoreLocale{usable(name, *locales)}, *locales->folder(name));
    }
}

// Every folder in the folder `name` that holds the file `fileName`, which makes it a page, a test or a treatment.
template <class Read>
void eachItem(const PackageFolder& parent, std::string_view name, std::string_view fileName, Read read) {
    const auto* items = parent.folder(name);
    if (!items) return;
    for (const auto& itemName : items->folderNames()) {
        const auto& item = *items->folder(itemName);
        if (item.hasFile(fileName)) read(Slug{usable(itemName, *items)}, item);
    }
}

ProjectManifest decodeManifest(std::string_view bytes) {
    auto document = StableJSON::decode(bytes);
    const ObjectDecoder members(document);
    const auto format = members.string("format");
    if (format != ProjectFormat::identifier && format != ProjectFormat::legacyIdentifier) {
        throw ProjectFormatError(ProjectFormatError::WrongFormat{format});
    }
    const auto* version = members.optionalValue("schemaVersion");
    if (!version || !version->integerValue()) {
        throw ProjectFormatError(ProjectFormatError::InvalidSchemaVersion{});
    }
    const auto schemaVersion = *version->integerValue();
    return ProjectManifest::fromJSON(ProjectFormat::migrate(std::move(document), schemaVersion));
}

ProjectManifest readManifest(const PackageFolder& package) {
    // Whatever has the name stands for the manifest: behind a link lies no older project.
    const auto name = package.containsAny(kManifest) ? kManifest : kLegacyManifest;
    const auto bytes = package.contents(name);
    if (!bytes) throw ProjectFormatError(ProjectFormatError::MissingManifest{});
    try {
        return decodeManifest(*bytes);
    } catch (const DecodingError&) {
        throw ProjectFormatError(ProjectFormatError::CorruptManifest{});
    }
}

AppListing readApp(const PackageFolder& folder) {
    AppListing app;
    app.info = record<AppInfoContent>(folder, kInfo).value_or(AppInfoContent());
    const auto* locales = folder.folder(kLocales);
    if (!locales) return app;
    for (const auto& fileName : locales->fileNames()) {
        if (const auto locale = localeOfFile(fileName, *locales)) {
            Texts::setFields(app.locales, {*locale}, fields(*locales, fileName, ListingFields::appInfo));
        }
    }
    return app;
}

LocalizedFields readVersionTexts(const PackageFolder& folder) {
    auto texts = fields(folder, kListing, ListingFields::versionJSON);
    for (const auto field : ListingFields::version) {
        const auto& fileName = info(field).textFile;
        if (!fileName.empty()) texts.set(field, text(folder, fileName));
    }
    return texts;
}

PlatformListing readPlatform(const PackageFolder& folder) {
    PlatformListing listing;
    listing.version = record<VersionContent>(folder, kVersion).value_or(VersionContent());
    listing.review = record<ReviewDetailContent>(folder, kReview).value_or(ReviewDetailContent());
    eachLocale(folder, [&](const StoreLocale& locale, const PackageFolder& localeFolder) {
        Texts::setFields(listing.locales, locale, readVersionTexts(localeFolder));
        readMedia(listing.media, locale, localeFolder);
    });
    return listing;
}

CustomProductPage readPage(const PackageFolder& folder) {
    auto page = record<PageFile>(folder, kPage).value_or(PageFile()).page();
    eachLocale(folder, [&](const StoreLocale& locale, const PackageFolder& localeFolder) {
        auto promotionalText = text(localeFolder, kPromotionalText);
        if (!promotionalText.empty())
            page.promotionalText.insert_or_assign(locale, std::move(promotionalText));
        readMedia(page.media, locale, localeFolder);
    });
    return page;
}

Treatment readTreatment(const PackageFolder& folder) {
    auto treatment = record<TreatmentFile>(folder, kTreatment).value_or(TreatmentFile()).treatment();
    eachLocale(folder, [&](const StoreLocale& locale, const PackageFolder& localeFolder) {
        readMedia(treatment.media, locale, localeFolder);
    });
    return treatment;
}

Experiment readExperiment(const PackageFolder& folder) {
    auto experiment = record<ExperimentFile>(folder, kExperiment).value_or(ExperimentFile()).experiment();
    eachItem(folder, kTreatments, kTreatment, [&](const Slug& slug, const PackageFolder& treatment) {
        experiment.treatments.insert_or_assign(slug, readTreatment(treatment));
    });
    return experiment;
}

void readPlatforms(const PackageFolder& package, Project& project) {
    for (const auto& name : package.folderNames()) {
        const auto& folder = *package.folder(name);
        if (!isPlatformFolder(name, folder)) continue;
        const auto platform = StorePlatform::fromFolderName(usable(name, package));
        project.platforms.insert_or_assign(platform, readPlatform(folder));
    }
}

}  // namespace

Project read(const PackageFolder& package) {
    Project project;
    project.manifest = readManifest(package);
    if (const auto* app = package.folder(kApp)) project.app = readApp(*app);
    readPlatforms(package, project);
    eachItem(package, kPages, kPage, [&](const Slug& slug, const PackageFolder& folder) {
        project.pages.insert_or_assign(slug, readPage(folder));
    });
    eachItem(package, kExperiments, kExperiment, [&](const Slug& slug, const PackageFolder& folder) {
        project.experiments.insert_or_assign(slug, readExperiment(folder));
    });
    return project;
}

}  // namespace kestrin::ProjectPackageCodec
