// Replaces a package by a changed tree, whole or not at all.
//
// The new tree is built beside the package, in a hidden folder ".{name}.kestrin-stage-{UUID}". What hasn't changed
// is a hard link to the file in the package (a copy where there can't be one) with all that is known of it;
// folders keep their permissions, and the time of their last change where none of their own entries changed. The
// stage is then flushed to the disk and exchanged with the package in one step, so that whoever looks, after a
// crash too, finds the old package or the new, whole. What is left under the stage's name goes.
//
// A folder that this user may not write to isn't changed, though the way of doing it would let us: that is refused.
// So is a tree more than 100 folders deep.
//
// A file system that can't exchange two folders gets two renames instead. Should the program end between them,
// there is no package for the moment, but a folder ".{name}.kestrin-old-{UUID}"; restore() puts it back.
//
// A running save holds a lock (flock) on its stage. A stage that nobody has locked was left by a run that was
// killed, and sweep() removes it.
#pragma once

#include <string>
#include <vector>

#include "KestrinModel/PackageFolder.h"
#include "KestrinModel/PackageLocation.h"

namespace kestrin::PackageStage {

// Writes `package`, the changed tree of the package at `location` or a new one, in its place. Throws FileError,
// naming the file in the package or the package, and then the old package is there as it was. That another save has
// replaced the package meanwhile is such an error (EBUSY). A failure to remove the old tree isn't one: the save has
// happened, and the next one sweeps.
void replace(const PackageLocation& location, const PackageFolder& package);

// Removes what runs that were killed have left beside the package: only folders with exactly the names above, and of
// stages only those that nobody has locked. What can't be removed stays.
void sweep(const PackageLocation& location);

// Puts back the package that a killed run had moved aside, if there is none at `location` and there is one such.
// Whether there now is a package.
bool restore(PackageLocation& location);

}  // namespace kestrin::PackageStage
