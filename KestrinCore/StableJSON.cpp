#include "KestrinCore/StableJSON.h"

#include <array>
#include <charconv>
#include <cmath>

#include "KestrinCore/ExactInteger.h"
#include "KestrinCore/Message.h"
#include "KestrinCore/UnicodeText.h"

namespace kestrin::StableJSON {
namespace {

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

}  // namespace kestrin::StableJSON
