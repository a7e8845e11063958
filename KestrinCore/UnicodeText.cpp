#include "KestrinCore/UnicodeText.h"

#include <unicode/brkiter.h>
#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <stdexcept>
#include <vector>

namespace kestrin::text {
namespace {

void check(UErrorCode status, const char* operation) {
    if (U_FAILURE(status)) throw std::runtime_error(std::string(operation) + ": " + u_errorName(status));
}

const icu::Normalizer2& nfc() {
    static const icu::Normalizer2& instance = [&]() -> const icu::Normalizer2& {
        UErrorCode status = U_ZERO_ERROR;
        const auto* normalizer = icu::Normalizer2::getNFCInstance(status);
        check(status, "ICU's NFC data");
        return *normalizer;
    }();
    return instance;
}

// Everything of length beyond ICU's 32-bit indices is refused, far above any text that is read.
void requireIndexable(std::string_view s) {
    if (s.size() > 0x7fffffff) throw std::length_error("text of more than 2 GB");
}

icu::StringPiece piece(std::string_view s) {
    requireIndexable(s);
    return {s.data(), static_cast<std::int32_t>(s.size())};
}

// The scalar at `i`, which moves behind it; negative for an ill-formed sequence (its maximal subpart is passed).
UChar32 nextScalar(std::string_view s, std::int32_t& i) {
    UChar32 scalar = 0;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"  // ICU's macro isn't clean
    U8_NEXT(s.data(), i, static_cast<std::int32_t>(s.size()), scalar);
#pragma GCC diagnostic pop
    return scalar;
}

constexpr UChar32 kReplacement = 0xFFFD;

UChar32 orReplacement(UChar32 scalar) {
    return scalar < 0 ? kReplacement : scalar;
}

// Well-formed, and of characters below U+0300 alone: none of them combines with its neighbours or has another form
// in NFC. They are ASCII, or a lead byte below 0xCC and one trail byte.
bool isPlainlyNFC(std::string_view s) {
    for (std::size_t i = 0; i < s.size(); ++i) {
        const auto lead = static_cast<unsigned char>(s[i]);
        if (lead < 0x80) continue;
        if (lead < 0xC2 || lead >= 0xCC || ++i == s.size()) return false;
        if ((static_cast<unsigned char>(s[i]) & 0xC0) != 0x80) return false;
    }
    return true;
}

// ICU orders combining marks by insertion, so that its time grows with the square of the length of a run of them.
// Beyond this length, which no writing comes near (UAX #15 knows the limit of 30 for streams), we order them.
constexpr std::size_t kLongRun = 64;

bool isMark(UChar32 scalar) {
    return scalar >= 0x300 && u_getIntPropertyValue(scalar, UCHAR_LEAD_CANONICAL_COMBINING_CLASS) != 0;
}

// For well-formed text. A mark takes two bytes at least, so that no long run fits between two samples.
bool hasMarkAmongSamples(std::string_view s) {
    constexpr std::size_t kStep = 2 * kLongRun;
    for (std::size_t sample = kStep; sample < s.size(); sample += kStep) {
        auto i = static_cast<std::int32_t>(sample);
        while (U8_IS_TRAIL(s[static_cast<std::size_t>(i)])) --i;
        if (isMark(nextScalar(s, i))) return true;
    }
    return false;
}

bool hasLongRunOfMarks(std::string_view s) {
    if (!hasMarkAmongSamples(s)) return false;
    std::size_t run = 0;
    const auto length = static_cast<std::int32_t>(s.size());
    for (std::int32_t i = 0; i < length;) {
        run = isMark(nextScalar(s, i)) ? run + 1 : 0;
        if (run > kLongRun) return true;
    }
    return false;
}

// Never true for a text that isn't in NFC; may be false for one that is.
bool isKnownNFC(std::string_view s) {
    if (isPlainlyNFC(s)) return true;
    if (!isValidUTF8(s) || hasLongRunOfMarks(s)) return false;
    UErrorCode status = U_ZERO_ERROR;
    const bool normalized = nfc().isNormalizedUTF8(piece(s), status);
    check(status, "NFC quick check");
    return normalized;
}

void appendScalar(std::string& result, UChar32 scalar) {
    char buffer[U8_MAX_LENGTH];
    std::int32_t length = 0;
    U8_APPEND_UNSAFE(buffer, length, scalar);
    result.append(buffer, static_cast<std::size_t>(length));
}

// The NFD of a text, for runs of marks of any length.
std::string decomposed(std::string_view s) {
    std::string result;
    std::vector<UChar32> marks;
    const auto flush = [&] {
        std::stable_sort(marks.begin(), marks.end(), [](UChar32 a, UChar32 b) {
            return nfc().getCombiningClass(a) < nfc().getCombiningClass(b);
        });
        for (const auto mark : marks) appendScalar(result, mark);
        marks.clear();
    };
    const auto append = [&](UChar32 scalar) {
        if (nfc().getCombiningClass(scalar) != 0) return marks.push_back(scalar);
        flush();
        appendScalar(result, scalar);
    };
    const auto length = static_cast<std::int32_t>(s.size());
    icu::UnicodeString parts;
    for (std::int32_t i = 0; i < length;) {
        const auto scalar = orReplacement(nextScalar(s, i));
        if (!nfc().getDecomposition(scalar, parts)) {
            append(scalar);
            continue;
        }
        for (std::int32_t j = 0; j < parts.length(); j = parts.moveIndex32(j, 1)) append(parts.char32At(j));
    }
    flush();
    return result;
}

std::weak_ordering byBytes(std::string_view a, std::string_view b) {
    return a.compare(b) <=> 0;  // char_traits<char> compares as unsigned bytes
}

// Extended grapheme clusters over UTF-8. ICU's iterators are costly to make, so one is kept.
class GraphemeIterator {
 public:
    explicit GraphemeIterator(std::string_view s) {
        UErrorCode status = U_ZERO_ERROR;
        utext_openUTF8(&text_, s.data(), static_cast<std::int64_t>(s.size()), &status);
        iterator().setText(&text_, status);
        check(status, "grapheme iteration");
    }
    ~GraphemeIterator() { utext_close(&text_); }
    GraphemeIterator(const GraphemeIterator&) = delete;
    GraphemeIterator& operator=(const GraphemeIterator&) = delete;

    bool next() { return iterator().next() != icu::BreakIterator::DONE; }
    std::size_t position() { return static_cast<std::size_t>(iterator().current()); }
    // The start of the cluster that ends at `end`.
    std::size_t startOfLast(std::size_t end) {
        return static_cast<std::size_t>(iterator().preceding(static_cast<std::int32_t>(end)));
    }

 private:
    static icu::BreakIterator& iterator() {
        thread_local const std::unique_ptr<icu::BreakIterator> instance = [] {
            UErrorCode status = U_ZERO_ERROR;
            std::unique_ptr<icu::BreakIterator> made(
                icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
            check(status, "ICU's grapheme data");
            return made;
        }();
        return *instance;
    }

    UText text_ = UTEXT_INITIALIZER;
};

bool isInCategories(char32_t scalar, std::uint32_t categories) {
    return (U_GET_GC_MASK(static_cast<UChar32>(scalar)) & categories) != 0;
}

// Whether the rules of UAX #29 join the scalar to no neighbour, if that is of the same sort, but for CR LF. Most
// texts are of such scalars alone, and need no iterator.
bool isOneScalarPerGrapheme(UChar32 scalar) {
    switch (u_getIntPropertyValue(scalar, UCHAR_GRAPHEME_CLUSTER_BREAK)) {
        case U_GCB_OTHER:
        case U_GCB_CONTROL:
        case U_GCB_CR:
        case U_GCB_LF:
        case U_GCB_LV:  // a whole Hangul syllable joins only with a part of one
        case U_GCB_LVT:
            return true;
        default:
            return false;
    }
}

// Whether the text takes no segmentation: its characters are its scalars, but for CR LF.
bool isSimplySegmented(std::string_view s) {
    const auto length = static_cast<std::int32_t>(s.size());
    for (std::int32_t i = 0; i < length;) {
        const auto scalar = orReplacement(nextScalar(s, i));
        if (scalar >= 0x300 && !isOneScalarPerGrapheme(scalar)) return false;
    }
    return true;
}

// Calls `take` with each character of such a text.
template <class Take>
void forEachSimpleGrapheme(std::string_view s, const Take& take) {
    const auto length = static_cast<std::int32_t>(s.size());
    for (std::int32_t i = 0; i < length;) {
        const auto start = static_cast<std::size_t>(i);
        const bool isCRLF = s.substr(start).starts_with("\r\n");
        nextScalar(s, i);
        if (isCRLF) ++i;
        take(s.substr(start, static_cast<std::size_t>(i) - start));
    }
}

// Calls `take` with each character of any text.
template <class Take>
void forEachGrapheme(std::string_view s, const Take& take) {
    if (isSimplySegmented(s)) return forEachSimpleGrapheme(s, take);
    GraphemeIterator iterator(s);
    for (std::size_t start = 0; iterator.next(); start = iterator.position()) {
        take(s.substr(start, iterator.position() - start));
    }
}

bool isWidthForm(UChar32 scalar) {
    const auto type = u_getIntPropertyValue(scalar, UCHAR_DECOMPOSITION_TYPE);
    return type == U_DT_WIDE || type == U_DT_NARROW;
}

icu::UnicodeString withUsualWidth(const icu::UnicodeString& s) {
    UErrorCode status = U_ZERO_ERROR;
    const auto* nfkd = icu::Normalizer2::getNFKDInstance(status);
    check(status, "ICU's NFKD data");
    icu::UnicodeString result;
    for (std::int32_t i = 0; i < s.length(); i = s.moveIndex32(i, 1)) {
        const auto scalar = s.char32At(i);
        icu::UnicodeString usual;
        if (isWidthForm(scalar) && nfkd->getDecomposition(scalar, usual)) {
            result.append(usual);
        } else {
            result.append(scalar);
        }
    }
    return result;
}

// Decomposed, but for the order of the marks: they go.
icu::UnicodeString withoutMarks(const icu::UnicodeString& s) {
    icu::UnicodeString result, parts;
    const auto append = [&](UChar32 scalar) {
        if (!isInCategories(static_cast<char32_t>(scalar), U_GC_M_MASK)) result.append(scalar);
    };
    for (std::int32_t i = 0; i < s.length(); i = s.moveIndex32(i, 1)) {
        const auto scalar = s.char32At(i);
        if (!nfc().getDecomposition(scalar, parts)) {
            append(scalar);
            continue;
        }
        for (std::int32_t j = 0; j < parts.length(); j = parts.moveIndex32(j, 1)) append(parts.char32At(j));
    }
    return result;
}

icu::UnicodeString fromUTF8(std::string_view s) {
    return icu::UnicodeString::fromUTF8(piece(s));
}

std::string toUTF8(const icu::UnicodeString& s) {
    std::string result;
    return s.toUTF8String(result);
}

}  // namespace

bool equal(std::string_view a, std::string_view b) {
    if (a == b) return true;
    if (isPlainlyNFC(a) && isPlainlyNFC(b)) return false;
    return compare(a, b) == 0;
}

std::weak_ordering compare(std::string_view a, std::string_view b) {
    if (a == b) return std::weak_ordering::equivalent;
    const bool aIsNFC = isKnownNFC(a);
    const bool bIsNFC = isKnownNFC(b);
    if (aIsNFC && bIsNFC) return byBytes(a, b);
    return byBytes(aIsNFC ? std::string(a) : toNFC(a), bIsNFC ? std::string(b) : toNFC(b));
}

bool isASCII(std::string_view s) {
    for (const char c : s) {
        if (static_cast<unsigned char>(c) >= 0x80) return false;
    }
    return true;
}

bool isValidUTF8(std::string_view s) {
    if (isASCII(s)) return true;
    requireIndexable(s);
    const auto length = static_cast<std::int32_t>(s.size());
    for (std::int32_t i = 0; i < length;) {
        if (nextScalar(s, i) < 0) return false;
    }
    return true;
}

std::string repaired(std::string_view s) {
    if (isValidUTF8(s)) return std::string(s);
    std::string result;
    const auto length = static_cast<std::int32_t>(s.size());
    for (std::int32_t i = 0; i < length;) {
        const auto start = i;
        if (nextScalar(s, i) < 0) {
            result += "\xEF\xBF\xBD";
        } else {
            result.append(s.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(i - start)));
        }
    }
    return result;
}

std::string toNFC(std::string_view s) {
    if (isKnownNFC(s)) return std::string(s);
    if (!isValidUTF8(s)) return toNFC(repaired(s));
    const auto ordered = hasLongRunOfMarks(s) ? decomposed(s) : std::string();
    if (!ordered.empty()) s = ordered;
    std::string result;
    icu::StringByteSink<std::string> sink(&result, static_cast<std::int32_t>(s.size()));
    UErrorCode status = U_ZERO_ERROR;
    nfc().normalizeUTF8(0, piece(s), sink, nullptr, status);
    check(status, "NFC");
    return result;
}

std::size_t graphemeCount(std::string_view s) {
    requireIndexable(s);
    std::size_t count = 0;
    forEachGrapheme(s, [&](std::string_view) { ++count; });
    return count;
}

std::vector<std::string_view> graphemes(std::string_view s) {
    requireIndexable(s);
    std::vector<std::string_view> pieces;
    // Line by line, for a character ends with every line feed: a rare emoji then costs its own line a segmentation
    // and not the whole text.
    while (!s.empty()) {
        const auto line = s.substr(0, std::min(s.find('\n'), s.size() - 1) + 1);
        forEachGrapheme(line, [&](std::string_view character) { pieces.push_back(character); });
        s.remove_prefix(line.size());
    }
    return pieces;
}

std::size_t utf16Length(std::string_view s) {
    requireIndexable(s);
    std::size_t units = 0;
    const auto length = static_cast<std::int32_t>(s.size());
    for (std::int32_t i = 0; i < length;) {
        units += static_cast<std::size_t>(U16_LENGTH(orReplacement(nextScalar(s, i))));
    }
    return units;
}

char32_t firstScalar(std::string_view s) {
    if (s.empty()) return 0;
    requireIndexable(s);
    std::int32_t i = 0;
    return static_cast<char32_t>(orReplacement(nextScalar(s, i)));
}

bool isPunctuation(char32_t scalar) {
    return isInCategories(scalar, U_GC_P_MASK);
}

bool isSymbol(char32_t scalar) {
    return isInCategories(scalar, U_GC_S_MASK);
}

bool isIdeographic(char32_t scalar) {
    return u_hasBinaryProperty(static_cast<UChar32>(scalar), UCHAR_IDEOGRAPHIC) != 0;
}

bool isLetterOrNumber(std::string_view character) {
    if (character.empty()) return false;
    const auto scalar = static_cast<UChar32>(firstScalar(character));
    return u_isUAlphabetic(scalar) || u_getIntPropertyValue(scalar, UCHAR_NUMERIC_TYPE) != U_NT_NONE;
}

bool isWhitespace(char32_t scalar) {
    return u_isUWhiteSpace(static_cast<UChar32>(scalar)) != 0;
}

std::string_view withoutTrailingWhitespace(std::string_view s) {
    requireIndexable(s);
    // What follows a cluster doesn't change where it begins, so one iterator serves while the text gets shorter.
    std::optional<GraphemeIterator> graphemes;
    while (!s.empty()) {
        const auto last = static_cast<unsigned char>(s.back());
        const auto before = s.size() > 1 ? static_cast<unsigned char>(s[s.size() - 2]) : 0;
        if (last < 0x80 && before < 0x80) {  // no cluster of more than one character ends so, but CR LF
            if (!isWhitespace(last)) break;
            s.remove_suffix(1);
            continue;
        }
        if (!graphemes) graphemes.emplace(s);
        const auto start = graphemes->startOfLast(s.size());
        if (!isWhitespace(firstScalar(s.substr(start)))) break;
        s = s.substr(0, start);
    }
    return s;
}

std::string lowercased(std::string_view s) {
    return toUTF8(fromUTF8(s).toLower(icu::Locale::getRoot()));
}

std::string uppercased(std::string_view s) {
    return toUTF8(fromUTF8(s).toUpper(icu::Locale::getRoot()));
}

std::string folded(std::string_view s) {
    auto result = withoutMarks(withUsualWidth(fromUTF8(s)));
    return toUTF8(result.foldCase(U_FOLD_CASE_DEFAULT));
}

}  // namespace kestrin::text
