// Carries out a plan: its steps one after another, in the given order, up to the first failure.
//
// What to write is the plan's business. What is added here is the chain of ids, since a step may be planned below
// something that an earlier step only makes; the form of values on the wire; and the news of each step.
#pragma once

#include <exception>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <variant>
#include <vector>

#include "ASCKit/ASCClient.h"
#include "KestrinCore/Error.h"
#include "SyncEngine/Push/MediaPushContext.h"
#include "SyncEngine/Push/PushStep.h"

namespace kestrin {

// The news of one step: started, then finished or failed.
struct PushEvent {
    struct Started {
        PushStep step;
        bool operator==(const Started&) const = default;
    };
    struct Finished {
        PushStep step;
        bool operator==(const Finished&) const = default;
    };
    struct Failed {
        PushStep step;
        std::string message;  // the sentence of the error
        bool operator==(const Failed&) const = default;
    };

    std::variant<Started, Finished, Failed> kind;
    bool operator==(const PushEvent&) const = default;
};

// Called from within the run. What it throws ends the run as it is.
using PushEventHandler = std::function<void(const PushEvent&)>;

// A run that was stopped by a step. What the completed steps wrote stays written, and so does the failed step's part
// of it; the next push sends the rest.
class PushFailure : public Error {
 public:
    // Of the exception that is being handled, which has this sentence.
    PushFailure(std::vector<PushStep> done, PushStep stopped, std::string sentence)
        : completed(std::move(done)),
          failed(std::move(stopped)),
          underlying(std::current_exception()),
          sentence_(std::move(sentence)) {}

    std::string errorDescription() const override { return sentence_; }  // the underlying error's

    std::vector<PushStep> completed;  // in their order
    PushStep failed;
    std::exception_ptr underlying;

 private:
    std::string sentence_;
};

struct PushExecutor {
    ASCClient& client;
    std::optional<MediaPushContext> media;  // without it a media step fails
    std::stop_token stop = {};              // asked between steps

    // The steps that were completed: all of them. Throws PushFailure for a step that failed, whatever its error, and
    // Cancelled for a stop between two steps. Nothing is tried again here and nothing rolled back.
    //
    // Of all creates only that of a version's localization has a second way: where one of the locale exists that the
    // listing didn't show (the service answers 409), that one is updated.
    std::vector<PushStep> run(const std::vector<PushStep>& steps, const PushEventHandler& onEvent) const;
};

}  // namespace kestrin
