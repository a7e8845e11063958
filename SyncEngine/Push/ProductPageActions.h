// The writes of custom pages and of tests.
#pragma once

#include "ASCKit/ASCClient.h"
#include "SyncEngine/Push/PushStep.h"
#include "SyncEngine/Push/RunState.h"

namespace kestrin {

// Performs one action. An id that the action doesn't carry is one that this run has made: it is looked up in the run
// state, and what isn't there is PushStepError::MissingParent. What an action makes is in the state afterwards.
void performProductPage(const PushStep::CreateCustomPage& action, RunState& state, ASCClient& client);
void performProductPage(const PushStep::UpdateCustomPage& action, RunState& state, ASCClient& client);
void performProductPage(const PushStep::UpdateCustomPageVersion& action, RunState& state, ASCClient& client);
void performProductPage(const PushStep::UpdateCustomPageLocalization& action, RunState& state,
                        ASCClient& client);
void performProductPage(const PushStep::CreateCustomPageLocalization& action, RunState& state,
                        ASCClient& client);
void performProductPage(const PushStep::CreateExperiment& action, RunState& state, ASCClient& client);
void performProductPage(const PushStep::UpdateExperiment& action, RunState& state, ASCClient& client);
void performProductPage(const PushStep::CreateTreatment& action, RunState& state, ASCClient& client);
void performProductPage(const PushStep::UpdateTreatment& action, RunState& state, ASCClient& client);
void performProductPage(const PushStep::CreateTreatmentLocalization& action, RunState& state,
                        ASCClient& client);

}  // namespace kestrin
