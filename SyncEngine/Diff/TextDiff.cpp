#include "SyncEngine/Diff/TextDiff.h"

#include <deque>
#include <unordered_map>

#include "KestrinCore/UnicodeText.h"
#include "SyncEngine/Diff/EditScript.h"

namespace kestrin::TextDiff {
namespace {

bool isKana(char32_t scalar) {
    return scalar >= 0x3040 && scalar <= 0x30FF;
}

bool standsAlone(char32_t scalar) {
    return text::isPunctuation(scalar) || text::isSymbol(scalar) || text::isIdeographic(scalar) ||
           isKana(scalar);
}

// The token that is being read; its word and its space lie side by side in the text.
class TokenReader {
 public:
    explicit TokenReader(std::string_view text) : text_(text) {}

    void appendWord(std::size_t bytes) { wordSize_ += bytes; }
    void appendSpace(std::size_t bytes) { spaceSize_ += bytes; }
    bool hasWord() const { return wordSize_ > 0; }
    bool hasSpace() const { return spaceSize_ > 0; }

    void finishToken() {
        if (!hasWord() && !hasSpace()) return;
        found_.push_back({text_.substr(start_, wordSize_), text_.substr(start_ + wordSize_, spaceSize_)});
        start_ += wordSize_ + spaceSize_;
        wordSize_ = spaceSize_ = 0;
    }
    std::vector<Token> take() { return std::move(found_); }

 private:
    std::string_view text_;
    std::size_t start_ = 0, wordSize_ = 0, spaceSize_ = 0;
    std::vector<Token> found_;
};

// One number for all spellings of a word. Refers to the words that it is given.
class Vocabulary {
 public:
    std::vector<std::int32_t> numbers(const std::vector<Token>& tokens) {
        numbers_.reserve(numbers_.size() + tokens.size());
        std::vector<std::int32_t> result;
        result.reserve(tokens.size());
        for (const auto& token : tokens) result.push_back(number(token.word));
        return result;
    }

 private:
    std::int32_t number(std::string_view word) {
        const auto known = numbers_.find(word);
        if (known != numbers_.end()) return known->second;
        auto nfc = text::toNFC(word);
        const auto result = nfc == word ? next_++ : number(composed_.emplace_back(std::move(nfc)));
        numbers_.emplace(word, result);
        return result;
    }

    std::unordered_map<std::string_view, std::int32_t> numbers_;
    std::deque<std::string> composed_;  // what isn't in a text as it stands
    std::int32_t next_ = 0;
};

class SegmentList {
 public:
    void append(std::string_view text, Segment::Kind kind) {
        if (text.empty()) return;
        if (segments_.empty() || segments_.back().kind != kind) segments_.push_back({"", kind});
        segments_.back().text += text;
    }
    void append(const Token& token, Segment::Kind kind) {
        append(token.word, kind);
        append(token.space, kind);
    }
    std::vector<Segment> take() { return std::move(segments_); }

 private:
    std::vector<Segment> segments_;
};

void appendKept(const Token& from, const Token& to, SegmentList& segments) {
    segments.append(to.word, Segment::Kind::unchanged);
    if (text::equal(from.space, to.space)) return segments.append(to.space, Segment::Kind::unchanged);
    segments.append(from.space, Segment::Kind::removed);
    segments.append(to.space, Segment::Kind::added);
}

}  // namespace

std::vector<Token> tokens(std::string_view text) {
    TokenReader reader(text);
    bool previousStandsAlone = false;
    for (const auto character : text::graphemes(text)) {
        const auto scalar = text::firstScalar(character);
        if (text::isWhitespace(scalar)) {
            reader.appendSpace(character.size());
            continue;
        }
        const bool alone = standsAlone(scalar);
        if (reader.hasSpace() || (reader.hasWord() && (previousStandsAlone || alone))) reader.finishToken();
        reader.appendWord(character.size());
        previousStandsAlone = alone;
    }
    reader.finishToken();
    return reader.take();
}

std::vector<Segment> words(std::string_view from, std::string_view to) {
    const auto a = tokens(from), b = tokens(to);
    Vocabulary vocabulary;
    const auto script = EditScript::shortest(vocabulary.numbers(a), vocabulary.numbers(b));

    SegmentList segments;
    std::size_t i = 0, j = 0;
    for (;;) {
        while (i < a.size() && script.removed[i]) segments.append(a[i++], Segment::Kind::removed);
        if (j == b.size()) return segments.take();
        if (script.inserted[j]) {
            segments.append(b[j++], Segment::Kind::added);
        } else {
            appendKept(a[i++], b[j++], segments);
        }
    }
}

}  // namespace kestrin::TextDiff
