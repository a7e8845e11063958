// The keys of the placements of the sample listing: on the default page, on a custom page and in a treatment.
#pragma once

#include "SyncEngine/Content/ContentKey.h"
#include "Tests/SyncEngine/Content/SampleListing.h"

namespace kestrin {

inline const ContentKey kPlacements =
    ContentKey::Placements{StorePlatform::iOS, sample::english, sample::screenshots};
inline const ContentKey kPagePlacements =
    ContentKey::PagePlacements{sample::winter, sample::english, sample::screenshots};
inline const ContentKey kTreatmentPlacements =
    ContentKey::TreatmentPlacements{sample::icons, sample::blue, sample::english, sample::screenshots};

}  // namespace kestrin
