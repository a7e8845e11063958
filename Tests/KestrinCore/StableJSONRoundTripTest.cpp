#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>

#include "KestrinCore/StableJSON.h"
#include "Tests/Support/Generators.h"

namespace kestrin {
namespace {

using StableJSON::decode;

RC_GTEST_PROP(StableJSONRoundTrip, WrittenAndReadIsTheSameValue, ()) {
    const auto value = *arbitrary::jsonValue();
    RC_ASSERT(decode(StableJSON::encode(value)) == value);
    RC_ASSERT(decode(StableJSON::encodeCompact(value)) == value);
}

RC_GTEST_PROP(StableJSONRoundTrip, AnObjectWrittenMemberByMemberIsTheSameBytes, ()) {
    const auto members = *arbitrary::unknownFields();
    std::string bytes;
    StableJSON::ObjectWriter object([&](std::string_view piece) { bytes += piece; });
    for (const auto& [name, value] : members) object.add(name, value);
    object.finish();
    RC_ASSERT(bytes == StableJSON::encode(JSONValue(members)));
}

RC_GTEST_PROP(StableJSONRoundTrip, ReadAndWrittenIsTheSameBytes, ()) {
    const auto bytes = StableJSON::encode(*arbitrary::jsonValue());
    RC_ASSERT(StableJSON::encode(decode(bytes)) == bytes);
}

RC_GTEST_PROP(StableJSONRoundTrip, AnyFiniteNumberKeepsItsValueAndItsBytes, (double number)) {
    RC_PRE(std::isfinite(number));
    const auto bytes = StableJSON::encode(JSONValue(number));
    const auto value = decode(bytes);
    const auto* integer = value.integerValue();
    RC_ASSERT((integer ? static_cast<double>(*integer) : std::get<double>(value.storage())) == number);
    RC_ASSERT(StableJSON::encode(value) == bytes);
}

RC_GTEST_PROP(StableJSONRoundTrip, AWholeNumberComesBackAsAnIntegerOfTheSameBytes, (std::int32_t integer)) {
    const auto bytes = StableJSON::encode(JSONValue(static_cast<double>(integer)));
    RC_ASSERT(bytes == StableJSON::encode(JSONValue(integer)));
    RC_ASSERT(decode(bytes) == JSONValue(integer));
}

// Two libraries read documents, and which of them a document comes to must not be seen. The one that reads most leaves
// those with a byte order mark to the other.
std::optional<JSONValue> valueOf(const std::string& bytes) {
    try {
        return decode(bytes);
    } catch (const DecodingError&) {
        return std::nullopt;
    }
}

void expectBothReadersAgree(const std::string& bytes) {
    RC_ASSERT(valueOf(bytes) == valueOf("\xEF\xBB\xBF" + bytes));
}

RC_GTEST_PROP(StableJSONRoundTrip, AByteOrderMarkChangesNothing, ()) {
    const auto value = *arbitrary::jsonValue();
    expectBothReadersAgree(StableJSON::encode(value));
    expectBothReadersAgree(StableJSON::encodeCompact(value));
}

RC_GTEST_PROP(StableJSONRoundTrip, AByteOrderMarkMakesNoBrokenDocumentWhole, ()) {
    auto bytes = StableJSON::encodeCompact(*arbitrary::jsonValue());
    const auto place = *rc::gen::inRange<std::size_t>(0, bytes.size());
    const auto other =
        *rc::gen::oneOf(rc::gen::element<std::string>("", "\\", "\"", "\\u", "\\ud83d", "\\udc00", "e", "-",
                                                      ".", "0", ",", ":", "[", "{", "\t"),
                        rc::gen::map(rc::gen::arbitrary<char>(), [](char c) { return std::string(1, c); }));
    expectBothReadersAgree(bytes.replace(place, *rc::gen::inRange<std::size_t>(0, 3), other));
}

RC_GTEST_PROP(StableJSONRoundTrip, ANumberIsTheSameWithAByteOrderMark, ()) {
    const auto digits =
        *rc::gen::container<std::string>(rc::gen::element('0', '1', '5', '9', '.', 'e', 'E', '-', '+'));
    expectBothReadersAgree(digits);
}

RC_GTEST_PROP(StableJSONRoundTrip, AnyBytesAreADocumentOrAnError, ()) {
    const auto bytes = *arbitrary::bytes();
    try {
        const auto value = decode(bytes);
        RC_ASSERT(decode(StableJSON::encode(value)) == value);
    } catch (const DecodingError& error) {
        RC_ASSERT(!error.errorDescription().empty());
    }
}

RC_GTEST_PROP(StableJSONRoundTrip, ABrokenDocumentIsADocumentOrAnError, ()) {
    auto bytes = StableJSON::encode(*arbitrary::jsonValue());
    const auto place = *rc::gen::inRange<std::size_t>(0, bytes.size());
    if (*rc::gen::arbitrary<bool>()) {
        bytes.resize(place);
    } else {
        bytes[place] = *rc::gen::arbitrary<char>();
    }
    try {
        const auto value = decode(bytes);
        RC_ASSERT(decode(StableJSON::encode(value)) == value);
    } catch (const DecodingError& error) {
        RC_ASSERT(!error.errorDescription().empty());
    }
}

}  // namespace
}  // namespace kestrin
