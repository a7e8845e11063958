// Writes the listing of one platform out as a fastlane deliver folder, so that a project can leave Kestrin at any
// time.
//
// An export over an older one clears what is gone from the project field by field: a text that is empty now has its
// file removed. A file that holds the text already isn't touched, but counts. Screenshots are replaced where the names
// are equal, and nothing else is removed: not the screenshots of an older export with higher numbers, nor the folder of
// a locale that the project no longer has.
//
// Import reads back what export wrote. A text comes back as it was unless it ends in white space, holds a carriage
// return, begins with a byte order mark or is larger than 16 MiB; a category if it is in upper case without blanks
// and "MZGenre."; a locale if it has a text and its code has the form that the import recognises.
#pragma once

#include <array>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "KestrinModel/FastlaneExportError.h"
#include "KestrinModel/FastlaneExportSummary.h"
#include "KestrinModel/Project.h"

namespace kestrin::FastlaneDeliverExporter {

// The one type of media slot that deliver uploads.
inline constexpr std::string_view screenshotType = "APP_SCREENSHOT";

// The files of "review_information". Whether a demo account is required has none, and its password is in no
// project.
struct ReviewFileName {
    std::optional<std::string> ReviewDetailContent::*field;
    std::string_view name;
};
inline constexpr std::array<ReviewFileName, 6> reviewFileNames = {{
    {&ReviewDetailContent::contactFirstName, "first_name.txt"},
    {&ReviewDetailContent::contactLastName, "last_name.txt"},
    {&ReviewDetailContent::contactPhone, "phone_number.txt"},
    {&ReviewDetailContent::contactEmail, "email_address.txt"},
    {&ReviewDetailContent::demoAccountName, "demo_user.txt"},
    {&ReviewDetailContent::notes, "notes.txt"},
}};

// From the path of a project's file, or the ID of an asset on App Store Connect, to a file on this machine.
using FileFinder = std::function<std::optional<std::filesystem::path>(const std::string&)>;

// Writes the texts to "metadata" and the screenshots to "screenshots" below `target`, which is made if need be.
//
// Texts: "metadata/{locale}/{file}" for the manifest's locales, one line feed after each text; what all locales
// share beside them; the review details in "review_information". Categories go out as they stand.
//
// Screenshots: "screenshots/{locale}/01_{group in lower case}_{file name}", numbered through all slots of a locale
// in their order. A file of the project that `locate` doesn't find, or that can't be read, is listed as missing; an
// asset that `remoteFile` doesn't know is counted. An asset keeps its name with the extension of its copy, which
// may be in another format; anything else has the name of its file. "/" and NUL in a group or a name, which is the
// server's word, become "-", so that every file stays in its locale's folder.
//
// Nothing is written outside `target`. Throws FastlaneExportError, before anything is written, for a locale that
// can't be a folder's name and for a folder below `target` that is a symbolic link; a link in place of a file is
// replaced. Throws FileError when the file system refuses (a name that is too long for it included); what was
// written so far stays. Nothing is flushed to the disk: an export can be repeated.
FastlaneExportSummary exportListing(const Project& project, const StorePlatform& platform,
                                    const std::filesystem::path& target, const FileFinder& locate,
                                    const FileFinder& remoteFile);

}  // namespace kestrin::FastlaneDeliverExporter
