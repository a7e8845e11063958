// Documents are read by simdjson where it can, which takes a tenth of the other library's time: a pull reads thousands
// of replies. What simdjson refuses is read again by nlohmann/json, which decides: it says where a document is broken,
// and knows the few things that simdjson doesn't take (integers of more than 64 bits, a byte order mark). So the quick
// reader has to refuse whatever the careful one refuses, and to give the same value for anything else.
#include <simdjson.h>

#include <algorithm>
#include <bit>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

#include "KestrinCore/ExactInteger.h"
#include "KestrinCore/StableJSON.h"

namespace kestrin::StableJSON {
namespace {

JSONValue numberFrom(double number) {
    const auto integer = exactInteger(number);
    return integer ? JSONValue(*integer) : JSONValue(number);
}

using Members = FlatMapBuilder<JSONObject, OfSameKey::last>;

// Makes values of what simdjson has read. It goes as deep as the document, which kMaximumDepth bounds.
class Builder {
 public:
    // Of all members where `names` is null.
    explicit Builder(const MemberNames* names) : names_(names) {}

    JSONValue valueOf(simdjson::dom::element element, bool isOutermost = false) const {
        using Type = simdjson::dom::element_type;
        switch (element.type()) {
            case Type::ARRAY:
                return arrayOf(simdjson::dom::array(element));
            case Type::OBJECT:
                return objectOf(simdjson::dom::object(element), isOutermost);
            case Type::INT64:
                return std::int64_t(element);
            case Type::UINT64:
                return static_cast<double>(std::uint64_t(element));
            case Type::DOUBLE:
                return numberFrom(double(element));
            case Type::STRING:
                return std::string_view(element);
            case Type::BOOL:
                return bool(element);
            case Type::NULL_VALUE:
                break;
        }
        return nullptr;
    }

 private:
    JSONArray arrayOf(simdjson::dom::array elements) const {
        JSONArray array;
        array.reserve(elements.size());
        for (const auto element : elements) array.push_back(valueOf(element));
        return array;
    }

    JSONObject objectOf(simdjson::dom::object object, bool isOutermost) const {
        Members members;
        members.reserve(object.size());
        for (const auto& [name, value] : object) {
            if (!names_ || isOutermost || names_->contains(name))
                members.add(std::string(name), valueOf(value));
        }
        return std::move(members).take();
    }

    const MemberNames* names_;
};

// nullopt for a document that only the careful reader can judge.
std::optional<JSONValue> readWith(simdjson::dom::parser& parser, std::string_view bytes,
                                  const Builder& builder) {
    // Room to grow, since it is a bit more for every larger reply, and never the depth that the library would take.
    const auto capacity = std::bit_ceil(std::max(bytes.size(), std::size_t{4096}));
    if (parser.capacity() < bytes.size() &&
        (parser.allocate(capacity, kMaximumDepth) || parser.doc.allocate(capacity)))
        return std::nullopt;
    simdjson::dom::element root;
    if (parser.parse(bytes.data(), bytes.size()).get(root)) return std::nullopt;
    return builder.valueOf(root, true);
}

std::optional<JSONValue> readQuickly(std::string_view bytes, const Builder& builder) {
    // A parser has several times the size of what it reads: that of the usual reply is kept, a larger one isn't.
    constexpr std::size_t kKept = std::size_t{1} << 20;
    if (bytes.size() <= kKept) {
        thread_local simdjson::dom::parser kept;
        return readWith(kept, bytes, builder);
    }
    simdjson::dom::parser large;
    return readWith(large, bytes, builder);
}

std::string notJSON(std::size_t position) {
    return "not a JSON document (byte " + std::to_string(position) + ")";
}

class CarefulReader : public nlohmann::json_sax<nlohmann::json> {
 public:
    JSONValue result;
    std::string problem;

    bool null() override { return put(JSONValue()); }
    bool boolean(bool value) override { return put(JSONValue(value)); }
    bool number_integer(number_integer_t value) override { return put(JSONValue(std::int64_t{value})); }
    bool number_unsigned(number_unsigned_t value) override {
        if (std::in_range<std::int64_t>(value)) return put(JSONValue(static_cast<std::int64_t>(value)));
        return put(JSONValue(static_cast<double>(value)));
    }
    bool number_float(number_float_t value, const string_t& digits) override {
        // Digits alone come here only when they are too many for 64 bits; what they were rounded to may fit again.
        const bool isTooLarge = digits.find_first_of(".eE") == std::string::npos;
        return put(isTooLarge ? JSONValue(value) : numberFrom(value));
    }
    bool string(string_t& value) override { return put(JSONValue(std::move(value))); }
    bool binary(binary_t&) override { return false; }
    bool start_object(std::size_t) override { return enter(Members()); }
    bool key(string_t& value) override {
        open_.back().name = std::move(value);
        return true;
    }
    bool end_object() override { return leave(); }
    bool start_array(std::size_t) override { return enter(JSONArray()); }
    bool end_array() override { return leave(); }
    bool parse_error(std::size_t position, const std::string&, const nlohmann::detail::exception&) override {
        problem = notJSON(position);
        return false;
    }

 private:
    struct Level {
        std::variant<JSONArray, Members> container;
        std::string name;  // of the member being read, in an object
    };

    bool put(JSONValue value) {
        if (open_.empty()) {
            result = std::move(value);
            return true;
        }
        auto& level = open_.back();
        std::visit(Overloaded{
                       [&](JSONArray& array) { array.push_back(std::move(value)); },
                       [&](Members& members) { members.add(std::move(level.name), std::move(value)); },
                   },
                   level.container);
        return true;
    }

    bool enter(std::variant<JSONArray, Members> container) {
        if (open_.size() >= kMaximumDepth) {
            problem = "nested too deep";
            return false;
        }
        open_.push_back({std::move(container), {}});
        return true;
    }

    bool leave() {
        auto container = std::move(open_.back().container);
        open_.pop_back();
        return put(std::visit(Overloaded{
                                  [](JSONArray& array) { return JSONValue(std::move(array)); },
                                  [](Members& members) { return JSONValue(std::move(members).take()); },
                              },
                              container));
    }

    std::vector<Level> open_;
};

JSONValue readCarefully(std::string_view bytes) {
    // The parser would take NUL for the end and never look at what stands behind it.
    if (const auto nul = bytes.find('\0'); nul != std::string_view::npos)
        throw DecodingError({}, notJSON(nul + 1));
    CarefulReader reader;
    if (!nlohmann::json::sax_parse(bytes.begin(), bytes.end(), &reader))
        throw DecodingError({}, reader.problem);
    return std::move(reader.result);
}

}  // namespace

JSONValue decode(std::string_view bytes) {
    auto value = readQuickly(bytes, Builder(nullptr));
    return value ? *std::move(value) : readCarefully(bytes);
}

JSONValue decodeOnly(const MemberNames& names, std::string_view bytes) {
    auto value = readQuickly(bytes, Builder(&names));
    return value ? *std::move(value) : readCarefully(bytes);
}

}  // namespace kestrin::StableJSON
