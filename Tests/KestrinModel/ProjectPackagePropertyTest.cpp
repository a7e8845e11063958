#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "KestrinCore/UnicodeText.h"
#include "KestrinModel/ProjectPackageCodec.h"
#include "KestrinModel/ProjectPackageFile.h"
#include "Tests/Support/DiskSnapshot.h"
#include "Tests/Support/Generators.h"
#include "Tests/Support/PackageTrees.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

// Of two projects one may spell a name composed and the other decomposed; the folder that is there keeps its
// spelling. So trees are compared by names as text.
Listing withNamesAsText(const Listing& listing) {
    Listing result;
    for (const auto& [path, bytes] : listing) result.emplace(text::toNFC(path), bytes);
    return result;
}

RC_GTEST_PROP(ProjectPackageProperty, WhatIsWrittenReadsBackEqual, ()) {
    const auto project = *arbitrary::project();
    RC_ASSERT(ProjectPackageCodec::read(ProjectPackageCodec::write(project)) == project);
}

RC_GTEST_PROP(ProjectPackageProperty, WritingOverWhatWasWrittenGivesTheSameTree, ()) {
    const auto project = *arbitrary::project();
    auto first = ProjectPackageCodec::write(project);
    const auto listing = listingOf(first);
    RC_ASSERT(listingOf(ProjectPackageCodec::write(project, std::move(first))) == listing);
}

RC_GTEST_PROP(ProjectPackageProperty, WritingOverAnotherProjectLeavesNothingOfIt, ()) {
    const auto before = *arbitrary::project();
    const auto after = *arbitrary::project();
    const auto written = ProjectPackageCodec::write(after, ProjectPackageCodec::write(before));
    RC_ASSERT(withNamesAsText(listingOf(written)) ==
              withNamesAsText(listingOf(ProjectPackageCodec::write(after))));
}

RC_GTEST_PROP(ProjectPackageProperty, LoadAndSaveTouchNothingOnDisk, ()) {
    const TemporaryFolder folder(TemporaryFolder::quickPlace());
    const auto package = folder / "Demo.kestrin";
    const auto project = *arbitrary::project();
    ProjectPackageFile::save(project, package);
    const auto before = snapshotOf(folder.path());

    const auto loaded = ProjectPackageFile::load(package);
    RC_ASSERT(loaded == project);
    ProjectPackageFile::save(loaded, package);
    RC_ASSERT(snapshotOf(folder.path()) == before);
}

RC_GTEST_PROP(ProjectPackageProperty, ASaveOnDiskHoldsWhatTheTreeHolds, ()) {
    const TemporaryFolder folder(TemporaryFolder::quickPlace());
    const auto package = folder / "Demo.kestrin";
    const auto before = *arbitrary::project();
    const auto after = *arbitrary::project();
    ProjectPackageFile::save(before, package);
    ProjectPackageFile::save(after, package);
    RC_ASSERT(ProjectPackageFile::load(package) == after);
    const PackageFolder onDisk(std::make_unique<DiskFolder>(package));
    RC_ASSERT(withNamesAsText(listingOf(onDisk)) ==
              withNamesAsText(listingOf(ProjectPackageCodec::write(after))));
    RC_ASSERT(std::distance(std::filesystem::directory_iterator(folder.path()), {}) == 1);
}

}  // namespace
}  // namespace kestrin
