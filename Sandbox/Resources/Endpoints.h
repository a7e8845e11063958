// The endpoints of App Store Connect that the sandbox has, by resource family.
#pragma once

#include "Sandbox/Router.h"

namespace kestrin::sandbox {

void addAppEndpoints(Router& router);
void addAppInfoEndpoints(Router& router);
void addVersionEndpoints(Router& router);
void addVersionLocalizationEndpoints(Router& router);
void addReviewDetailEndpoints(Router& router);
void addBuildEndpoints(Router& router);
void addCustomPageEndpoints(Router& router);
void addExperimentEndpoints(Router& router);
void addAssetLibraryEndpoints(Router& router);
void addPlacementEndpoints(Router& router);
void addRefDataEndpoints(Router& router);
void addReviewSubmissionEndpoints(Router& router);
void addBuildUploadEndpoints(Router& router);

}  // namespace kestrin::sandbox
