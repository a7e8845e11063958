// What goes wrong with one request of a run.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace kestrin {

struct Trouble {
    enum class Kind {
        serverError,   // 500, and nothing was done
        conflict,      // 409, and nothing was done
        unauthorized,  // 401, and nothing was done
        lostRequest,   // the connection is lost before the service acts
        lostReply,     // the connection is lost after the service has acted
        killedAfter,   // the process ends when the service has acted
    };
    Kind kind = Kind::serverError;
    bool lasts = false;  // strikes the same request again for as long as it is tried
};

// The process ended here. Nothing that runs in it may catch this, so it is no std::exception.
struct ProcessKilled {};

// Strikes one request of a run, counted from 1.
class TroubleMaker {
 public:
    void arm(Trouble trouble, std::size_t place) {
        trouble_ = trouble;
        place_ = place;
        count_ = 0;
        struck_.reset();
    }
    void disarm() { trouble_.reset(); }

    // The trouble that strikes this request, if any.
    std::optional<Trouble::Kind> next(const std::string& line) {
        if (!trouble_) return std::nullopt;
        const bool again = trouble_->lasts && struck_ == line;
        struck_.reset();
        if (++count_ != place_ && !again) return std::nullopt;
        struck_ = line;
        return trouble_->kind;
    }

 private:
    std::optional<Trouble> trouble_;
    std::size_t place_ = 0;
    std::size_t count_ = 0;
    std::optional<std::string> struck_;  // the request before this one, if it was struck
};

}  // namespace kestrin
