// What header fields hold, and what addresses are: any text has a reading or none.
#include <chrono>
#include <cstdint>
#include <cstdlib>

#include "ASCKit/QueryEncoder.h"
#include "ASCKit/Transport/HTTPDate.h"
#include "ASCKit/Transport/RateLimitStatus.h"
#include "ASCKit/Transport/RetryPolicy.h"
#include "ASCKit/URL.h"

namespace {

constexpr std::chrono::sys_seconds kNow{std::chrono::seconds(1'800'000'000)};

void require(bool holds) {
    if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (const auto wait = kestrin::RetryPolicy::retryAfter(text, kNow)) require(wait->count() >= 0);
    if (kestrin::HTTPDate::parse(text, kNow))
        require(kestrin::RetryPolicy::retryAfter(text, kNow).has_value());
    kestrin::RateLimitStatus::parse(text);

    if (const auto url = kestrin::URL::parse(text)) {
        require(url->absoluteString() == text);
        require(text.find(url->path()) != text.npos);
        if (const auto origin = url->origin()) require(!origin->host.empty());
    }
    require(kestrin::URL::parse("https://example.test/?" + kestrin::QueryEncoder::percentEncode(text))
                .has_value());
    return 0;
}
