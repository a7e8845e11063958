// A project package on disk: loaded whole, saved whole.
//
// Nothing is kept open between the two, and nothing is locked: another program that writes into the package between
// a load and a save is not noticed. A load while another program saves gives the project of before or of after. A save
// while another program saves may fail; no file that isn't the project's is lost either way.
#pragma once

#include <filesystem>

#include "KestrinModel/Project.h"

namespace kestrin::ProjectPackageFile {

// Reads the project. Throws FileError for what the file system refuses, with the path given or one relative to the
// package, or when saves of other programs keep replacing the package while it is read; ProjectFormatError for what
// isn't a project; PackageNameError for a name that can't be used; FileTooLargeError; PackageTooLargeError. Nothing on
// disk is changed, but that a package which a killed save had moved aside is put back in its place (see PackageStage).
Project load(const std::filesystem::path& path);

// Makes the package hold `project`; ProjectPackageCodec::write says what becomes of what is there. A save that
// changes nothing writes nothing and changes no time stamp. One that changes something replaces the package in one
// step (PackageStage), so that it is wholly old or wholly new at any time. A path that is a link to a package keeps
// being one. Throws what ProjectPackageCodec::write throws, and FileError; the package is then as it was.
//
// The folder is another one after a save that changed something: a shell whose working directory is the package, or
// somewhere in it, has to enter it again.
void save(const Project& project, const std::filesystem::path& path);

}  // namespace kestrin::ProjectPackageFile
