#include "KestrinCore/LongWait.h"

namespace kestrin {

void LongWait::sleep(Seconds wait, const std::string& what, const std::stop_token& stop) {
    if (!notes_.tell) return sleep_(wait, stop);
    if (!began_) began_ = notes_.now();
    for (Seconds left = wait;;) {
        tellIfDue(what);
        const Seconds untilNote = told_ + std::chrono::minutes(1) - soFar();
        if (left < untilNote) return sleep_(left, stop);
        sleep_(untilNote, stop);
        left -= untilNote;
    }
}

void LongWait::tellIfDue(const std::string& what) {
    const auto minutes = std::chrono::floor<std::chrono::minutes>(soFar());
    if (minutes <= told_) return;
    told_ = minutes;
    notes_.tell(what, minutes);
}

}  // namespace kestrin
