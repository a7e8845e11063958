// What happens to assets between their commit and their use.
//
// Processing has no clock: it moves on when its state is read, after Settings::processingReads readings that still
// showed it under way.
#pragma once

#include "Sandbox/State.h"

namespace kestrin::sandbox {

// One more reading of the resource's state; true when the time to move on has come.
bool isDue(const State& state, Resource& resource);
// The same from the beginning.
void beginProcessing(Resource& resource);

// Whether a file of that name is one that the settings let fail, or take with a warning.
bool isUnprocessable(const State& state, const std::string& fileName);
bool isQuestionable(const State& state, const std::string& fileName);

// Moves a build in PROCESSING on, when it is due: to VALID.
void processBuild(const State& state, Resource& build);

// Moves an asset in UPLOAD_COMPLETE on, when it is due: to PREPARE_FOR_SUBMISSION or FAILED, by what its bytes are.
void processAsset(State& state, Resource& asset);

// The picture of an asset as the client sees it, {"width", "height"}; null before there is one.
Json pixelSize(int width, int height);

}  // namespace kestrin::sandbox
