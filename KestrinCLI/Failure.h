// How a command ends when it can't do what it was asked to.
#pragma once

#include <string>

#include "KestrinCore/Error.h"

namespace kestrin {

// The end of a command with a message for the user. Whoever runs the command writes "kestrin: {message}" to
// standard error and ends with status 1.
class Failure : public Error {
 public:
    explicit Failure(std::string message) : message_(std::move(message)) {}
    std::string errorDescription() const override { return message_; }

 private:
    std::string message_;
};

// Ends the command. An exception, so that everything a command holds (temporary folders above all) is let go on
// the way out.
[[noreturn]] inline void fail(std::string message) {
    throw Failure(std::move(message));
}

}  // namespace kestrin
