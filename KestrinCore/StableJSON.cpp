#include "KestrinCore/StableJSON.h"

#include <array>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>

#include "KestrinCore/Message.h"
#include "KestrinCore/UnicodeText.h"

namespace kestrin::StableJSON {
namespace {

constexpr double kTwoTo63 = 9223372036854775808.0;

// The integer that `number` is, if it is one of 64 bits. 2^63 itself isn't, hence "<".
std::optional<std::int64_t> exactInteger(double number) {
    if (!(number >= -kTwoTo63 && number < kTwoTo63)) return std::nullopt;
    const auto integer = static_cast<std::int64_t>(number);
    if (static_cast<double>(integer) != number) return std::nullopt;
    return integer;
}

// Writing

// What an ObjectWriter collects before it hands it over.
constexpr std::size_t kPiece = std::size_t{64} << 10;

// Below it a number is written with an exponent, so that no number is a long row of zeros.
constexpr double kSmallestPlain = 1e-4;

class Writer {
 public:
    Writer(std::string& out, bool pretty) : out_(out), pretty_(pretty) {}

    void write(const JSONValue& value, std::size_t depth) {
        std::visit(Overloaded{
                       [&](std::monostate) { out_ += "null"; },
                       [&](const std::string& string) { writeString(string); },
                       [&](std::int64_t integer) { writeNumber(integer); },
                       [&](double number) { writeDouble(number); },
                       [&](bool boolean) { out_ += boolean ? "true" : "false"; },
                       [&](const JSONArray& array) { writeArray(array, depth); },
                       [&](const JSONObject& object) { writeObject(object, depth); },
                   },
                   value.storage());
    }

    // One member of an object whose members are `depth` levels down; `isFirst` is false afterwards.
    void writeMember(std::string_view name, const JSONValue& value, bool& isFirst, std::size_t depth) {
        separate(isFirst, depth);
        writeString(name);
        out_ += pretty_ ? " : " : ":";
        write(value, depth);
    }

 private:
    void writeArray(const JSONArray& array, std::size_t depth) {
        open('[', array.empty(), depth);
        bool first = true;
        for (const auto& element : array) {
            separate(first, depth + 1);
            write(element, depth + 1);
        }
        close(']', depth);
    }

    void writeObject(const JSONObject& object, std::size_t depth) {
        open('{', object.empty(), depth);
        bool first = true;
        for (const auto& [key, value] : object) writeMember(key, value, first, depth + 1);
        close('}', depth);
    }

    void open(char bracket, bool empty, std::size_t depth) {
        if (depth >= kMaximumDepth) throw EncodingError();  // nobody could read it
        out_ += bracket;
        if (pretty_ && empty) out_ += '\n';
    }

    void separate(bool& first, std::size_t depth) {
        if (!first) out_ += ',';
        first = false;
        if (pretty_) newline(depth);
    }

    void close(char bracket, std::size_t depth) {
        if (pretty_) newline(depth);
        out_ += bracket;
    }

    void newline(std::size_t depth) {
        out_ += '\n';
        out_.append(2 * depth, ' ');
    }

    template <class... Number>
    void writeNumber(Number... number) {
        std::array<char, 32> digits;
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number...).ptr;
        out_.append(digits.data(), end);
    }

    void writeDouble(double number) {
        if (!std::isfinite(number)) throw EncodingError();
        // As digits alone, since that is how it will be written once it has been read back.
        if (const auto integer = exactInteger(number)) return writeNumber(*integer);
        const auto magnitude = std::fabs(number);
        const bool isPlain = magnitude >= kSmallestPlain && magnitude < kTwoTo63;
        writeNumber(number, isPlain ? std::chars_format::fixed : std::chars_format::scientific);
    }

    void writeString(std::string_view string) {
        if (!text::isValidUTF8(string)) return writeString(text::repaired(string));
        out_ += '"';
        std::size_t plain = 0;  // where the run of characters that stand for themselves begins
        for (std::size_t i = 0; i < string.size(); ++i) {
            const auto byte = static_cast<unsigned char>(string[i]);
            if (byte >= 0x20 && byte != '"' && byte != '\\') continue;
            out_.append(string.substr(plain, i - plain));
            plain = i + 1;
            writeEscape(byte);
        }
        out_.append(string.substr(plain));
        out_ += '"';
    }

    void writeEscape(unsigned char byte) {
        switch (byte) {
            case '"':
                out_ += "\\\"";
                return;
            case '\\':
                out_ += "\\\\";
                return;
            case '\n':
                out_ += "\\n";
                return;
            case '\r':
                out_ += "\\r";
                return;
            case '\t':
                out_ += "\\t";
                return;
            case '\b':
                out_ += "\\b";
                return;
            case '\f':
                out_ += "\\f";
                return;
            default:
                break;
        }
        constexpr std::string_view kHex = "0123456789abcdef";
        out_ += "\\u00";
        out_ += kHex[byte >> 4];
        out_ += kHex[byte & 0xf];
    }

    std::string& out_;
    bool pretty_;
};

// Reading

std::string notJSON(std::size_t position) {
    return "not a JSON document (byte " + std::to_string(position) + ")";
}

class Reader : public nlohmann::json_sax<nlohmann::json> {
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
        if (const auto integer = exactInteger(value); integer && !isTooLarge) return put(JSONValue(*integer));
        return put(JSONValue(value));
    }
    bool string(string_t& value) override { return put(JSONValue(std::move(value))); }
    bool binary(binary_t&) override { return false; }
    bool start_object(std::size_t) override { return enter(JSONValue(JSONObject())); }
    bool key(string_t& value) override {
        open_.back().key = std::move(value);
        return true;
    }
    bool end_object() override { return leave(); }
    bool start_array(std::size_t) override { return enter(JSONValue(JSONArray())); }
    bool end_array() override { return leave(); }
    bool parse_error(std::size_t position, const std::string&, const nlohmann::detail::exception&) override {
        problem = notJSON(position);
        return false;
    }

 private:
    struct Level {
        JSONValue container;
        std::string key;  // of the member being read, in an object
    };

    bool put(JSONValue value) {
        if (open_.empty()) {
            result = std::move(value);
            return true;
        }
        auto& level = open_.back();
        if (auto* array = level.container.arrayValue()) {
            array->push_back(std::move(value));
        } else {
            level.container.objectValue()->insert_or_assign(std::move(level.key), std::move(value));
        }
        return true;
    }

    bool enter(JSONValue container) {
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
        return put(std::move(container));
    }

    std::vector<Level> open_;
};

}  // namespace

std::string EncodingError::errorDescription() const {
    return message::localized("encodingErrorInvalidValue", "This value can’t be written as JSON.");
}

std::string encode(const JSONValue& value) {
    std::string out;
    Writer(out, true).write(value, 0);
    out += '\n';
    return out;
}

ObjectWriter::ObjectWriter(Take take) : take_(std::move(take)), pending_("{") {}

void ObjectWriter::add(std::string_view name, const JSONValue& value) {
    Writer(pending_, true).writeMember(name, value, isEmpty_, 1);
    if (pending_.size() >= kPiece) handOver();
}

void ObjectWriter::finish() {
    pending_ += isEmpty_ ? "\n\n}\n" : "\n}\n";
    handOver();
}

void ObjectWriter::handOver() {
    take_(pending_);
    pending_.clear();
}

std::string encodeCompact(const JSONValue& value) {
    std::string out;
    Writer(out, false).write(value, 0);
    return out;
}

JSONValue decode(std::string_view bytes) {
    // The parser would take NUL for the end and never look at what stands behind it.
    if (const auto nul = bytes.find('\0'); nul != std::string_view::npos)
        throw DecodingError({}, notJSON(nul + 1));
    Reader reader;
    if (!nlohmann::json::sax_parse(bytes.begin(), bytes.end(), &reader))
        throw DecodingError({}, reader.problem);
    return std::move(reader.result);
}

}  // namespace kestrin::StableJSON
