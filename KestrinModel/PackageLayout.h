// The names in a project package, for its reader and its writer.
#pragma once

#include <string>
#include <string_view>

#include "KestrinModel/PackageFolder.h"

namespace kestrin::PackageLayout {

inline constexpr std::string_view kManifest = "Kestrin.json";
inline constexpr std::string_view kLegacyManifest = "Marquel.json";
inline constexpr std::string_view kGitAttributes = ".gitattributes";

inline constexpr std::string_view kApp = "App";
inline constexpr std::string_view kInfo = "info.json";

inline constexpr std::string_view kVersion = "version.json";
inline constexpr std::string_view kReview = "review.json";

inline constexpr std::string_view kPages = "Pages";
inline constexpr std::string_view kPage = "page.json";

inline constexpr std::string_view kExperiments = "Experiments";
inline constexpr std::string_view kExperiment = "experiment.json";
inline constexpr std::string_view kTreatments = "Treatments";
inline constexpr std::string_view kTreatment = "treatment.json";

inline constexpr std::string_view kLocales = "Locales";
inline constexpr std::string_view kJSON = ".json";  // behind a locale's name in App/Locales
inline constexpr std::string_view kListing = "listing.json";
inline constexpr std::string_view kPlacements = "placements.json";
inline constexpr std::string_view kPromotionalText = "promotional-text.txt";

// Whether the folder `name` at the root of a package is one of a platform.
bool isPlatformFolder(std::string_view name, const PackageFolder& folder);

// `name`, found in `folder` where it names a part of the project. Throws PackageNameError when it can't: it isn't
// UTF-8, or nothing is left of it without what the layout adds.
const std::string& usable(const std::string& name, const PackageFolder& folder);

// The locale that a file of App/Locales is for; nullopt for one that isn't named "….json".
std::optional<std::string> localeOfFile(const std::string& fileName, const PackageFolder& folder);

}  // namespace kestrin::PackageLayout
