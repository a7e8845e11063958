#include "SyncEngine/Push/MediaPushError.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

TEST(MediaPushError, EachCaseHasItsSentence) {
    using E = MediaPushError;
    const struct {
        E::Kind kind;
        const char* sentence;
    } rows[] = {
        {E::MissingFile{"Media/a.png"}, "Couldn’t find the media file Media/a.png."},
        {E::NoUploadOperations{"a.png"}, "App Store Connect didn’t accept the upload. Try again."},
        {E::ProcessingFailed{"a.png", "FAILED"},
         "App Store Connect couldn’t process a.png (FAILED). Check it matches the slot’s requirements."},
        {E::StillProcessing{"a.png"},
         "App Store Connect is still processing a.png. Push again later to finish placing it; it won’t be "
         "uploaded "
         "twice."},
        {E::MissingLocalization{"de-DE"},
         "Add text for de-DE and push it before its media: App Store Connect places media on a "
         "localization."},
        {E::NoMediaContext{}, "App Store Connect didn’t accept the upload. Try again."},
    };
    for (const auto& row : rows) EXPECT_EQ(E(row.kind).errorDescription(), row.sentence);
}

}  // namespace
}  // namespace kestrin
