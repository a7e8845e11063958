// Any bytes are a JSON document or a DecodingError, and a document that was read once keeps its value and its bytes
// over every further writing and reading.
#include <cstdint>
#include <cstdlib>

#include "KestrinCore/StableJSON.h"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

void check(std::string_view bytes) {
    const auto value = kestrin::StableJSON::decode(bytes);
    const auto written = kestrin::StableJSON::encode(value);
    const auto again = kestrin::StableJSON::decode(written);
    require(kestrin::StableJSON::encode(again) == written);
    require(kestrin::StableJSON::decode(kestrin::StableJSON::encodeCompact(value)) == again);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        check({reinterpret_cast<const char*>(data), size});
    } catch (const kestrin::DecodingError&) {
    }
    return 0;
}
