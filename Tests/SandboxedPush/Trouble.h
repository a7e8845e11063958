// What goes wrong with one request of a run.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <utility>

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

// "LostReplyOnce", "ServerErrorForAsLongAsItIsTried".
inline std::string nameOf(const Trouble& trouble) {
    const auto kind = [&] {
        switch (trouble.kind) {
            case Trouble::Kind::serverError:
                return "ServerError";
            case Trouble::Kind::conflict:
                return "Conflict";
            case Trouble::Kind::unauthorized:
                return "Unauthorized";
            case Trouble::Kind::lostRequest:
                return "LostRequest";
            case Trouble::Kind::lostReply:
                return "LostReply";
            case Trouble::Kind::killedAfter:
                return "Killed";
        }
        return "";
    }();
    return std::string(kind) + (trouble.lasts ? "ForAsLongAsItIsTried" : "Once");
}

// GoogleTest would show the bytes, padding included.
inline void PrintTo(const Trouble& trouble, std::ostream* out) {
    *out << nameOf(trouble);
}

// The process ended here. Nothing that runs in it may catch this, so it is no std::exception.
struct ProcessKilled {};

class TroubleMaker {
 public:
    // Strikes one request of a run, counted from 1.
    void arm(Trouble trouble, std::size_t place) {
        *this = {};
        trouble_ = trouble;
        place_ = place;
    }
    // Strikes every request for which `which` says so, and lets it through the second time.
    void armAtEach(Trouble::Kind kind, std::function<bool(const std::string&)> which) {
        *this = {};
        trouble_ = Trouble{kind, false};
        which_ = std::move(which);
    }
    void disarm() { trouble_.reset(); }

    std::ptrdiff_t strikes() const { return strikes_; }  // since it was armed

    // The trouble that strikes this request, if any.
    std::optional<Trouble::Kind> next(const std::string& line) {
        if (!trouble_ || !isStruck(line, std::exchange(struck_, std::nullopt) == line)) return std::nullopt;
        struck_ = line;
        ++strikes_;
        return trouble_->kind;
    }

 private:
    bool isStruck(const std::string& line, bool again) {
        if (which_) return !again && which_(line);
        return ++count_ == place_ || (again && trouble_->lasts);
    }

    std::optional<Trouble> trouble_;
    std::size_t place_ = 0;
    std::size_t count_ = 0;
    std::function<bool(const std::string&)> which_;
    std::ptrdiff_t strikes_ = 0;
    std::optional<std::string> struck_;  // the request before this one, if it was struck
};

}  // namespace kestrin
