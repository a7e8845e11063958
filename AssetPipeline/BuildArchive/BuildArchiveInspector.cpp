#include "AssetPipeline/BuildArchive/BuildArchiveInspector.h"

#include <algorithm>

#include "AssetPipeline/BuildArchive/ByteReader.h"
#include "AssetPipeline/BuildArchive/DistributionFile.h"
#include "AssetPipeline/BuildArchive/PropertyList.h"
#include "AssetPipeline/BuildArchive/XarArchive.h"
#include "AssetPipeline/BuildArchive/ZipArchive.h"
#include "KestrinCore/UnicodeText.h"

namespace kestrin::BuildArchiveInspector {
namespace {

using Kind = BuildArchiveError::Kind;

// Payload/{name}.app/Info.plist: of the app at the top, not of an extension in it.
bool isAppsPropertyList(std::string_view name) {
    constexpr std::string_view kFolder = "Payload/", kFile = ".app/Info.plist";
    if (name.size() <= kFolder.size() + kFile.size() || !name.starts_with(kFolder) || !name.ends_with(kFile))
        return false;
    const auto app = name.substr(kFolder.size(), name.size() - kFolder.size() - kFile.size());
    return app.find('/') == app.npos;
}

std::string platformOf(const PropertyList& list) {
    const auto platforms = list.texts("CFBundleSupportedPlatforms");
    const auto supports = [&](std::string_view name) {
        return std::find(platforms.begin(), platforms.end(), name) != platforms.end();
    };
    if (supports("AppleTVOS")) return "TV_OS";
    return supports("XROS") ? "VISION_OS" : "IOS";
}

BuildArchiveInfo inspectIPA(const ByteReader& reader) {
    const ZipArchive archive(reader);
    const auto entry = archive.first(isAppsPropertyList);
    if (!entry) throw BuildArchiveError(Kind::noAppInside);
    const auto list = PropertyList::parse(archive.contents(*entry, PropertyList::mostBytes));
    return {
        .kind = BuildArchiveInfo::Kind::ipa,
        .bundleID = list.text("CFBundleIdentifier"),
        .shortVersion = list.text("CFBundleShortVersionString"),
        .buildVersion = list.text("CFBundleVersion"),
        .platform = platformOf(list),
        .usesNonExemptEncryption = list.truth("ITSAppUsesNonExemptEncryption"),
        .fileSize = static_cast<std::int64_t>(reader.size()),
    };
}

// A truth value as an attribute: tools write it as plists do ("true"), as Objective-C does ("YES"), or as a number.
bool isYes(const std::string& attribute) {
    const auto word = text::lowercased(attribute);
    return word == "true" || word == "yes" || word == "1";
}

BuildArchiveInfo inspectPKG(const ByteReader& reader) {
    if (!XarArchive::isArchive(reader)) throw BuildArchiveError(Kind::notAnArchive);
    const auto bundle = DistributionFile::appBundle(XarArchive::contents("Distribution", reader));
    if (!bundle) throw BuildArchiveError(Kind::noAppInside);
    const auto attribute = [&](const std::string& name) -> std::optional<std::string> {
        const auto found = bundle->find(name);
        return found == bundle->end() ? std::nullopt : std::optional(found->second);
    };
    const auto encryption = attribute("ITSAppUsesNonExemptEncryption");
    return {
        .kind = BuildArchiveInfo::Kind::pkg,
        .bundleID = attribute("id"),
        .shortVersion = attribute("CFBundleShortVersionString"),
        .buildVersion = attribute("CFBundleVersion"),
        .platform = "MAC_OS",
        .usesNonExemptEncryption = encryption ? std::optional(isYes(*encryption)) : std::nullopt,
        .fileSize = static_cast<std::int64_t>(reader.size()),
    };
}

}  // namespace

BuildArchiveInfo inspect(const std::filesystem::path& file) {
    const ByteReader reader(file);
    return text::lowercased(file.extension().native()) == ".pkg" ? inspectPKG(reader) : inspectIPA(reader);
}

}  // namespace kestrin::BuildArchiveInspector
