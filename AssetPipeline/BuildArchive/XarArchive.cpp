#include "AssetPipeline/BuildArchive/XarArchive.h"

#include <vector>

#include "AssetPipeline/BuildArchive/BuildArchiveError.h"
#include "AssetPipeline/BuildArchive/Inflate.h"
#include "AssetPipeline/BuildArchive/IntegerReading.h"
#include "AssetPipeline/BuildArchive/XMLElements.h"
#include "KestrinCore/DecimalInteger.h"

namespace kestrin::XarArchive {
namespace {

constexpr std::string_view kSignature = "xar!";
constexpr std::uint64_t kHeadSize = 28;

std::uint64_t number(std::string_view bytes, std::size_t offset, std::size_t size) {
    return integerOf(bytes.substr(offset, size), ByteOrder::bigEndian);
}

std::uint64_t numberOf(const std::string& text) {
    const auto number = decimalInteger(text);
    if (!number || *number < 0) failMalformed();
    return static_cast<std::uint64_t>(*number);
}

// Follows the nesting of a table of contents. Only what stands directly in a file or in its data describes the file:
// its extended attributes, say, have lengths, offsets and names of their own.
class TOCParser {
 public:
    explicit TOCParser(std::string_view wanted) : wanted_(wanted) {}

    void start(const std::string& name, const XMLElements::Attributes& attributes) {
        open_.push_back(placeOf(name));
        text_.clear();
        if (open_.back() == Place::file) files_.emplace_back();
        if (open_.back() != Place::encoding) return;
        const auto style = attributes.find("style");
        if (style != attributes.end()) files_.back().encoding = style->second;
    }

    void text(std::string_view piece) {
        if (isField(open_.back())) text_ += piece;
    }

    void end() {
        const auto place = open_.back();
        open_.pop_back();
        if (isField(place)) return keep(place);
        if (place != Place::file) return;
        if (path() == wanted_) found = files_.back();
        files_.pop_back();
    }

    std::optional<FileRecord> found;

 private:
    enum class Place { root, toc, file, data, name, offset, length, size, encoding, elsewhere };

    static bool isField(Place place) {
        return place == Place::name || place == Place::offset || place == Place::length ||
               place == Place::size;
    }

    Place placeOf(const std::string& name) const {
        if (open_.empty()) return Place::root;
        switch (open_.back()) {
            case Place::root:
                return name == "toc" ? Place::toc : Place::elsewhere;
            case Place::toc:
                return name == "file" ? Place::file : Place::elsewhere;
            case Place::file:
                return name == "file"   ? Place::file
                       : name == "name" ? Place::name
                       : name == "data" ? Place::data
                                        : Place::elsewhere;
            case Place::data:
                return name == "offset"     ? Place::offset
                       : name == "length"   ? Place::length
                       : name == "size"     ? Place::size
                       : name == "encoding" ? Place::encoding
                                            : Place::elsewhere;
            default:
                return Place::elsewhere;
        }
    }

    void keep(Place place) {
        auto& file = files_.back();
        if (place == Place::name) file.name = text_;
        if (place == Place::offset) file.offset = numberOf(text_);
        if (place == Place::length) file.length = numberOf(text_);
        if (place == Place::size) file.size = numberOf(text_);
    }

    std::string path() const {
        std::string joined;
        for (const auto& file : files_) joined += (joined.empty() ? "" : "/") + file.name;
        return joined;
    }

    std::string_view wanted_;
    std::vector<Place> open_;        // the elements that are open
    std::vector<FileRecord> files_;  // the files among them
    std::string text_;               // of the field that is open
};

// The table, and where the heap behind it starts.
struct Table {
    std::string xml;
    std::uint64_t heapStart;

    static Table read(const ByteReader& reader) {
        if (!isArchive(reader)) throw BuildArchiveError(BuildArchiveError::Kind::notAnArchive);
        const auto head = reader.read(0, kHeadSize);
        const auto headSize = number(head, 4, 2), compressed = number(head, 8, 8), size = number(head, 16, 8);
        if (compressed > XMLElements::mostBytes || size > XMLElements::mostBytes) failMalformed();
        return {Inflate::zlib(reader.read(headSize, compressed), size), headSize + compressed};
    }
};

}  // namespace

bool isArchive(const ByteReader& reader) {
    return reader.size() >= kSignature.size() && reader.read(0, kSignature.size()) == kSignature;
}

std::string contents(std::string_view path, const ByteReader& reader) {
    const auto table = Table::read(reader);
    const auto file = find(path, table.xml);
    if (!file || file->length > XMLElements::mostBytes || file->size > XMLElements::mostBytes)
        failMalformed();
    // Both are far below the largest number of 64 bits: the offset was read with a sign.
    auto stored = reader.read(table.heapStart + file->offset, file->length);
    // Despite its name the style stands for a zlib stream.
    return file->encoding == "application/x-gzip" ? Inflate::zlib(stored, file->size) : stored;
}

std::optional<FileRecord> find(std::string_view path, std::string_view tableOfContents) {
    TOCParser parser(path);
    XMLElements::forEach(
        tableOfContents,
        {
            .start = [&](const auto& name, const auto& attributes) { parser.start(name, attributes); },
            .end = [&] { parser.end(); },
            .text = [&](std::string_view text) { parser.text(text); },
            .isDone = [&] { return parser.found.has_value(); },
        });
    return parser.found;
}

}  // namespace kestrin::XarArchive
