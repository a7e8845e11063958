#include "Sandbox/Faults.h"

#include <charconv>
#include <stdexcept>

#include "Sandbox/Refusal.h"

namespace kestrin::sandbox {
namespace {

using Action = Fault::Action;

struct Word {
    std::string_view word;
    Action action;
    bool hasValue;
};

constexpr Word kWords[] = {
    {"latency", Action::latency, true},
    {"status", Action::status, true},
    {"drop-before", Action::dropBefore, false},
    {"drop-after", Action::dropAfter, false},
    {"cut", Action::cut, true},
    {"truncate", Action::truncate, false},
    {"garbage", Action::garbage, false},
    {"empty", Action::empty, false},
    {"ignore", Action::ignore, false},
};

[[noreturn]] void reject(std::string_view line, const std::string& why) {
    throw std::invalid_argument("fault \"" + std::string(line) + "\": " + why);
}

std::size_t number(std::string_view digits, std::string_view line) {
    std::size_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc{} || end != digits.data() + digits.size()) {
        reject(line, "\"" + std::string(digits) + "\" is no number");
    }
    return value;
}

// What stands before `mark` and behind it; the latter empty when there is no mark.
std::pair<std::string_view, std::string_view> splitAt(std::string_view text, std::string_view mark) {
    const auto place = text.find(mark);
    if (place == std::string_view::npos) return {text, {}};
    return {text.substr(0, place), text.substr(place + mark.size())};
}

void readAction(Fault& fault, std::string_view text, std::string_view line) {
    const auto [main, retryAfter] = splitAt(text, ";retry-after:");
    const auto [word, value] = splitAt(main, ":");
    for (const auto& row : kWords) {
        if (row.word != word) continue;
        if (row.hasValue == value.empty()) reject(line, "the value is missing or too much");
        fault.action = row.action;
        fault.value = row.hasValue ? number(value, line) : 0;
        fault.retryAfter = retryAfter;
        return;
    }
    reject(line, "there is no action \"" + std::string(word) + "\"");
}

void readTimes(Fault& fault, std::string_view text, std::string_view line) {
    const auto plus = text.find('+');
    fault.from = number(text.substr(0, plus), line);
    fault.count = 1;
    if (plus == std::string_view::npos) return;
    const auto count = text.substr(plus + 1);
    fault.count = count.empty() ? Fault::kAll : number(count, line);
}

// "*" in the pattern stands for any characters, or none.
bool matches(std::string_view pattern, std::string_view text) {
    const auto [head, tail] = splitAt(pattern, "*");
    if (head.size() == pattern.size()) return pattern == text;
    if (!text.starts_with(head)) return false;
    for (auto rest = text.substr(head.size());; rest.remove_prefix(1)) {
        if (matches(tail, rest)) return true;
        if (rest.empty()) return false;
    }
}

HTTPReply plannedFailure(const Fault& fault) {
    const auto status = static_cast<int>(fault.value);
    const char* code = status == 401   ? "NOT_AUTHORIZED"
                       : status == 403 ? "FORBIDDEN_ERROR"
                       : status == 404 ? "NOT_FOUND"
                       : status == 409 ? "STATE_ERROR"
                       : status == 429 ? "RATE_LIMIT_EXCEEDED"
                                       : "UNEXPECTED_ERROR";
    auto reply = errorReply({{status, code, "The sandbox was told to fail here."}}, "fault");
    if (!fault.retryAfter.empty()) reply.headers.emplace_back("Retry-After", fault.retryAfter);
    return reply;
}

}  // namespace

bool Fault::acts() const {
    return action != Action::dropBefore && action != Action::status && action != Action::ignore;
}

Fault Fault::parse(std::string_view line) {
    const auto equals = line.rfind('=');
    if (equals == std::string_view::npos) reject(line, "there is no \"=\"");
    Fault fault;
    fault.text = line;
    auto pattern = line.substr(0, equals);
    if (const auto mark = pattern.rfind('#'); mark != std::string_view::npos) {
        readTimes(fault, pattern.substr(mark + 1), line);
        pattern = pattern.substr(0, mark);
    }
    fault.pattern = pattern;
    readAction(fault, line.substr(equals + 1), line);
    return fault;
}

std::vector<std::string> Faults::lines() const {
    std::vector<std::string> lines;
    for (const auto& armed : armed_) lines.push_back(armed.fault.text);
    return lines;
}

Faults::Strike Faults::strike(std::string_view requestLine) {
    Strike strike;
    for (auto& [fault, seen] : armed_) {
        if (!matches(fault.pattern, requestLine)) continue;
        ++seen;
        if (seen < fault.from || seen - fault.from >= fault.count) continue;
        if (fault.action == Action::latency) {
            strike.latency += std::chrono::milliseconds(fault.value);
        } else if (strike.fault == nullptr) {
            strike.fault = &fault;
        }
    }
    return strike;
}

void Faults::apply(const Fault& fault, Answer& answer) {
    auto& [reply, wire] = answer;
    switch (fault.action) {
        case Action::latency:
            break;
        case Action::status:
            reply = plannedFailure(fault);
            break;
        case Action::dropBefore:
        case Action::dropAfter:
            wire.closeSilently = true;
            break;
        case Action::cut:
            wire.bodyLimit = fault.value;
            break;
        case Action::truncate:
            reply.body.resize(reply.body.size() / 2);
            break;
        case Action::garbage:
            reply.status = 200;
            reply.body = "<html><body>We'll be back soon.</body></html>";
            break;
        case Action::empty:
        case Action::ignore:
            reply.status = 200;
            reply.body.clear();
            break;
    }
}

}  // namespace kestrin::sandbox
