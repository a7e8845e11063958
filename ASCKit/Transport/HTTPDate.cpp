#include "ASCKit/Transport/HTTPDate.h"

#include <algorithm>
#include <array>

namespace kestrin::HTTPDate {
namespace {

using namespace std::chrono;

constexpr std::array<std::string_view, 7> kDays = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                   "Thursday", "Friday", "Saturday"};
constexpr std::array<std::string_view, 12> kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// Takes a text apart from the left; once something didn't fit, nothing does.
class Scanner {
 public:
    explicit Scanner(std::string_view text) : rest_(text) {}

    bool fits() const { return fits_; }
    bool fitsToTheEnd() const { return fits_ && rest_.empty(); }

    Scanner& literal(std::string_view expected) {
        fits_ = fits_ && rest_.starts_with(expected);
        if (fits_) rest_.remove_prefix(expected.size());
        return *this;
    }

    // The index of the name that comes next; `length` characters of each name count.
    template <class Names>
    Scanner& name(const Names& names, std::size_t length, unsigned& index) {
        const auto found = std::find_if(names.begin(), names.end(), [&](std::string_view each) {
            return rest_.starts_with(each.substr(0, length));
        });
        fits_ = fits_ && found != names.end();
        if (!fits_) return *this;
        index = static_cast<unsigned>(found - names.begin());
        rest_.remove_prefix(std::min(length, found->size()));
        return *this;
    }

    Scanner& number(std::size_t digits, int& value) {
        const auto text = rest_.substr(0, digits);
        fits_ = fits_ && text.size() == digits && text.find_first_not_of("0123456789") == text.npos;
        if (!fits_) return *this;
        value = 0;
        for (const char digit : text) value = 10 * value + (digit - '0');
        rest_.remove_prefix(digits);
        return *this;
    }

    // asctime pads the day of the month with a blank.
    Scanner& blankPaddedNumber(int& value) {
        return rest_.starts_with(' ') ? literal(" ").number(1, value) : number(2, value);
    }

 private:
    std::string_view rest_;
    bool fits_ = true;
};

struct Fields {
    unsigned weekday = 0, month = 0;  // counted from 0
    int day = 0, year = 0, hour = 0, minute = 0, second = 0;
};

Scanner& timeOfDay(Scanner& scanner, Fields& f) {
    return scanner.number(2, f.hour).literal(":").number(2, f.minute).literal(":").number(2, f.second);
}

std::optional<sys_seconds> timeOf(const Fields& f) {
    const year_month_day date{year{f.year}, month{f.month + 1}, day{static_cast<unsigned>(f.day)}};
    // A leap second, the only one that is called 60, is the first second of the minute after it.
    if (!date.ok() || f.hour > 23 || f.minute > 59 || f.second > 60) return std::nullopt;
    return sys_days{date} + hours{f.hour} + minutes{f.minute} + seconds{f.second};
}

std::optional<Fields> imfFixdate(std::string_view text) {
    Fields f;
    Scanner scanner(text);
    scanner.name(kDays, 3, f.weekday).literal(", ").number(2, f.day).literal(" ");
    scanner.name(kMonths, 3, f.month).literal(" ").number(4, f.year).literal(" ");
    return timeOfDay(scanner, f).literal(" GMT").fitsToTheEnd() ? std::optional(f) : std::nullopt;
}

std::optional<Fields> rfc850(std::string_view text, system_clock::time_point now) {
    Fields f;
    Scanner scanner(text);
    scanner.name(kDays, text.npos, f.weekday).literal(", ").number(2, f.day).literal("-");
    scanner.name(kMonths, 3, f.month).literal("-").number(2, f.year).literal(" ");
    if (!timeOfDay(scanner, f).literal(" GMT").fitsToTheEnd()) return std::nullopt;

    const int thisYear = static_cast<int>(year_month_day{floor<days>(now)}.year());
    f.year += thisYear - thisYear % 100 + 100;
    while (f.year > thisYear + 50) f.year -= 100;
    return f;
}

std::optional<Fields> asctime(std::string_view text) {
    Fields f;
    Scanner scanner(text);
    scanner.name(kDays, 3, f.weekday).literal(" ").name(kMonths, 3, f.month).literal(" ");
    scanner.blankPaddedNumber(f.day).literal(" ");
    return timeOfDay(scanner, f).literal(" ").number(4, f.year).fitsToTheEnd() ? std::optional(f)
                                                                               : std::nullopt;
}

}  // namespace

std::optional<sys_seconds> parse(std::string_view text, system_clock::time_point now) {
    auto fields = imfFixdate(text);
    if (!fields) fields = rfc850(text, now);
    if (!fields) fields = asctime(text);
    if (!fields) return std::nullopt;
    return timeOf(*fields);
}

}  // namespace kestrin::HTTPDate
