// Brings the texts of a fastlane deliver folder into a project.
//
// A deliver folder holds one folder per locale with one text file per field, a folder "default" for what all
// locales share, a folder "review_information", and three files that stand beside them. It is the user's own:
// symbolic links in it are followed. Only texts are read; screenshots stay where they are.
#pragma once

#include <array>
#include <filesystem>
#include <string_view>

#include "KestrinModel/ListingField.h"
#include "KestrinModel/Project.h"

namespace kestrin::FastlaneDeliverImporter {

// The file of each field in a locale's folder. A field without a row never passes through a deliver folder.
// FastlaneDeliverExporter writes by this same table.
struct FileName {
    ListingField field;
    std::string_view name;
};
inline constexpr std::array<FileName, 9> fileNames = {{
    {ListingField::name, "name.txt"},
    {ListingField::subtitle, "subtitle.txt"},
    {ListingField::privacyPolicyUrl, "privacy_url.txt"},
    {ListingField::description, "description.txt"},
    {ListingField::keywords, "keywords.txt"},
    {ListingField::promotionalText, "promotional_text.txt"},
    {ListingField::whatsNew, "release_notes.txt"},
    {ListingField::supportUrl, "support_url.txt"},
    {ListingField::marketingUrl, "marketing_url.txt"},
}};

inline constexpr std::string_view metadataFolder = "metadata";
inline constexpr std::string_view reviewFolder = "review_information";
inline constexpr std::string_view copyrightFile = "copyright.txt";
inline constexpr std::string_view primaryCategoryFile = "primary_category.txt";
inline constexpr std::string_view secondaryCategoryFile = "secondary_category.txt";

// Reads `folder`, or its subfolder "metadata" if there is one, into `project`.
//
// A folder is a locale's when its whole name is two or three letters a to z, then perhaps "-" and two to four
// letters of either case ("de", "zh-Hans"; not "es-419"). Its texts go over those of "default". A locale that the
// manifest lacks is appended in the order of the folder names, `platform` is added and the platforms are sorted.
//
// A text loses its trailing white space and a byte order mark, and its line ends become "\n". A file that is
// missing, can't be read, isn't UTF-8, holds more than 16 MiB or comes out empty is no value: what the project
// holds there stays. Any other text takes the place of the project's.
//
// A category may be written as App Store Connect names it or as old versions of deliver did: "MZGenre.Photo Video"
// comes in as "PHOTO_VIDEO".
//
// Throws FileError when the folder can't be listed, and FileTooLargeError when the texts of the whole folder, with
// "default" counted once per locale, come to more than 32 MiB. Then the project is as it was.
void importListing(const std::filesystem::path& folder, Project& project, const StorePlatform& platform);

}  // namespace kestrin::FastlaneDeliverImporter
