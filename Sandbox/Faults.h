// What goes wrong on purpose, and at which request.
//
// A fault is one line of text:
//
//     pattern ["#" from ["+" [count]]] "=" action
//
// The pattern is compared with "METHOD /path?query" of each request, "*" standing for any characters. Without "#"
// every matching request is struck; "#3" strikes the third alone, "#3+2" the third and fourth, "#3+" all from the
// third on. Actions:
//
//     latency:20              answer 20 ms later
//     status:503              don't act, answer with that status
//     status:429;retry-after:2    … and that header (seconds or an HTTP date)
//     drop-before             close the connection without acting and without a reply
//     drop-after              act, then close the connection without a reply
//     cut:100                 act, close the connection after 100 bytes of the body
//     truncate                act, answer with half of the body as if it were whole
//     garbage                 act, answer 200 with a body that isn't JSON
//     empty                   act, answer 200 with no body
//     ignore                  don't act, answer 200 with no body
//
// All latencies that match add up; of the others the first that strikes counts.
#pragma once

#include <chrono>
#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "Sandbox/HTTPMessage.h"

namespace kestrin::sandbox {

struct Fault {
    enum class Action { latency, status, dropBefore, dropAfter, cut, truncate, garbage, empty, ignore };

    static constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

    std::string pattern = "*";
    std::size_t from = 1;  // counted over the matching requests
    std::size_t count = kAll;
    Action action = Action::latency;
    std::size_t value = 0;   // milliseconds, a status, bytes
    std::string retryAfter;  // of a status; "" for none
    std::string text;        // the line that it was read from

    // Whether the service does what the request asks for.
    bool acts() const;

    // Throws std::invalid_argument, naming what is wrong with the line.
    static Fault parse(std::string_view line);
};

class Faults {
 public:
    // What is to happen to one request.
    struct Strike {
        std::chrono::milliseconds latency{};
        const Fault* fault = nullptr;  // nullptr: nothing but the latency
    };

    void add(std::string_view line) { armed_.push_back({Fault::parse(line), 0}); }
    void clear() { armed_.clear(); }
    std::vector<std::string> lines() const;

    // Counts the request.
    Strike strike(std::string_view requestLine);

    // Does to an answer what the fault says; for those that act first.
    static void apply(const Fault& fault, Answer& answer);

 private:
    struct Armed {
        Fault fault;
        std::size_t seen = 0;
    };
    std::vector<Armed> armed_;
};

}  // namespace kestrin::sandbox
