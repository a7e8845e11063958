// Between a project in memory and the tree of files that holds it.
//
//   Kestrin.json                                      the manifest ("Marquel.json" in packages of old)
//   .gitattributes                                    written once, then the user's
//   App/info.json                                     AppInfoContent
//   App/Locales/{locale}.json                         LocaleFile
//   {platform}/version.json, review.json              VersionContent, ReviewDetailContent
//   {platform}/Locales/{locale}/listing.json          LocaleFile
//   {platform}/Locales/{locale}/description.txt, promotional-text.txt, whats-new.txt   TextFile
//   {platform}/Locales/{locale}/placements.json       PlacementsFile
//   Pages/{slug}/page.json                            PageFile
//   Pages/{slug}/Locales/{locale}/promotional-text.txt, placements.json
//   Experiments/{slug}/experiment.json                ExperimentFile
//   Experiments/{slug}/Treatments/{slug}/treatment.json, Locales/{locale}/placements.json
//
// The law of this format: writing what was read changes no byte, and what the program doesn't know survives, be it
// a JSON member, a file, or a folder that isn't one of a platform, page or test. What the model no longer holds goes
// with its whole folder, as that is how a deletion is carried out. Media files lie anywhere; nobody here looks at
// them.
#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "KestrinModel/PackageFolder.h"
#include "KestrinModel/Project.h"

namespace kestrin::ProjectPackageCodec {

// The project in a package. Throws ProjectFormatError for the first file that isn't what it should be;
// PackageNameError for a name that isn't UTF-8 where it would name a locale, platform, page or test; FileError for
// what can't be read; FileTooLargeError and PackageTooLargeError for more than PackageFolder reads.
//
// A folder in "Pages" without "page.json" is no page, one in "Experiments" without "experiment.json" no test, and a
// folder beside them with neither "version.json" nor "Locales" no platform: all of these are passed over. Where two
// folders mean the same platform ("iOS" and "IOS"), the last in the order of names counts.
Project read(const PackageFolder& package);

// A file to store beside the project: its path relative to the package, and where to copy it from. One that is there
// already with the same size is left alone.
using AddedFiles = text::TextMap<std::filesystem::path>;

// The tree that holds `project`, made from the one that was there before: all that the project says, and all that
// isn't the project's. Nothing on disk is changed. Throws PackageNameError (see PackageNames::check) before
// anything else, StableJSON::EncodingError for a number that JSON doesn't have, FileTooLargeError and
// PackageTooLargeError for what couldn't be read again, FileError for what has to be read and can't.
PackageFolder write(const Project& project, PackageFolder previous = {}, const AddedFiles& addingFiles = {});

}  // namespace kestrin::ProjectPackageCodec
