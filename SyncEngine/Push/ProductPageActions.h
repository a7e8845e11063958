// The writes of custom pages and of tests.
#pragma once

#include "ASCKit/ASCClient.h"
#include "SyncEngine/Push/PushStep.h"
#include "SyncEngine/Push/RunState.h"

namespace kestrin {

// Performs one action. An id that the action doesn't carry is one that this run has made: it is looked up in the run
// state, and what isn't there is PushStepError::MissingParent.
class ProductPageActions {
 public:
    ProductPageActions(ASCClient& ascClient, RunState& runState) : client_(ascClient), state_(runState) {}

    void operator()(const PushStep::CreateCustomPage& action);
    void operator()(const PushStep::UpdateCustomPage& action);
    void operator()(const PushStep::UpdateCustomPageVersion& action);
    void operator()(const PushStep::UpdateCustomPageLocalization& action);
    void operator()(const PushStep::CreateCustomPageLocalization& action);
    void operator()(const PushStep::CreateExperiment& action);
    void operator()(const PushStep::UpdateExperiment& action);
    void operator()(const PushStep::CreateTreatment& action);
    void operator()(const PushStep::UpdateTreatment& action);
    void operator()(const PushStep::CreateTreatmentLocalization& action);

 private:
    ASCClient& client_;
    RunState& state_;
};

}  // namespace kestrin
