#include "AssetPipeline/BuildArchive/ZipArchive.h"

#include <algorithm>

#include "AssetPipeline/BuildArchive/BuildArchiveError.h"
#include "AssetPipeline/BuildArchive/Inflate.h"
#include "AssetPipeline/BuildArchive/IntegerReading.h"
#include "KestrinCore/UnicodeText.h"

namespace kestrin {
namespace {

constexpr std::uint64_t kEndRecordSize = 22, kLongestComment = 65'535;
constexpr std::uint64_t kZip64LocatorSize = 20, kZip64RecordSize = 56;
constexpr std::uint64_t kDirectoryHeaderSize = 46, kLocalHeaderSize = 30;
constexpr std::string_view kEndSignature = "PK\x05\x06", kZip64LocatorSignature = "PK\x06\x07",
                           kZip64Signature = "PK\x06\x06", kDirectorySignature = "PK\x01\x02";
constexpr std::uint64_t kSaidElsewhere16 = 0xFFFF, kSaidElsewhere32 = 0xFFFFFFFF;

std::uint64_t number(std::string_view bytes, std::size_t offset, std::size_t size) {
    return integerOf(bytes.substr(offset, size), ByteOrder::littleEndian);
}

void requireSignature(std::string_view record, std::string_view signature) {
    if (!record.starts_with(signature)) failMalformed();
}

// Takes the sizes and the offset that didn't fit into 32 bits from the zip64 record of an extra field. It has, in this
// order, only those that are said to be there.
void readZip64Extra(std::string_view record, ZipArchive::Entry& entry) {
    for (auto* value : {&entry.uncompressedSize, &entry.compressedSize, &entry.localHeaderOffset}) {
        if (*value != kSaidElsewhere32) continue;
        if (record.size() < 8) return;
        *value = number(record, 0, 8);
        record.remove_prefix(8);
    }
}

void readExtra(std::string_view extra, ZipArchive::Entry& entry) {
    constexpr std::size_t kHeader = 4;
    constexpr std::uint64_t kZip64 = 1;
    while (extra.size() >= kHeader) {
        const auto id = number(extra, 0, 2);
        const auto length = static_cast<std::size_t>(number(extra, 2, 2));
        extra.remove_prefix(kHeader);
        if (length > extra.size()) return;  // padding, as some tools leave it
        if (id == kZip64) readZip64Extra(extra.substr(0, length), entry);
        extra.remove_prefix(length);
    }
}

}  // namespace

// Where the directory is, by the record at the end of the file.
struct ZipArchive::EndRecord {
    std::uint64_t place, entryCount, directoryOffset;

    static EndRecord find(const ByteReader& reader) {
        const auto size = reader.size();
        const BuildArchiveError none(BuildArchiveError::Kind::notAnArchive);
        if (size < kEndRecordSize) throw none;
        const auto start = size - std::min(size, kEndRecordSize + kLongestComment);
        const auto tail = reader.read(start, size - start);
        const auto found = tail.rfind(kEndSignature, tail.size() - kEndRecordSize);
        if (found == tail.npos) throw none;
        return {start + found, number(tail, found + 10, 2), number(tail, found + 16, 4)};
    }

    bool isZip64() const { return entryCount == kSaidElsewhere16 || directoryOffset == kSaidElsewhere32; }

    static EndRecord findZip64(const ByteReader& reader, std::uint64_t endRecord) {
        if (endRecord < kZip64LocatorSize) failMalformed();
        const auto locator = reader.read(endRecord - kZip64LocatorSize, kZip64LocatorSize);
        requireSignature(locator, kZip64LocatorSignature);
        const auto place = number(locator, 8, 8);
        const auto record = reader.read(place, kZip64RecordSize);
        requireSignature(record, kZip64Signature);
        return {place, number(record, 32, 8), number(record, 48, 8)};
    }
};

ZipArchive::ZipArchive(const ByteReader& reader) : reader_(reader) {
    auto end = EndRecord::find(reader);
    if (end.isZip64()) end = EndRecord::findZip64(reader, end.place);
    entryCount_ = end.entryCount;
    directoryOffset_ = end.directoryOffset;
    directoryEnd_ = end.place;
}

std::optional<ZipArchive::Entry> ZipArchive::first(
    const std::function<bool(const std::string& name)>& isWanted) const {
    std::optional<Entry> found;
    BufferedByteReader directory(reader_, directoryEnd_);
    auto offset = directoryOffset_;
    for (std::uint64_t i = 0; i < entryCount_; ++i) {
        const auto header = directory.read(offset, kDirectoryHeaderSize);
        requireSignature(header, kDirectorySignature);
        Entry entry{"", static_cast<std::uint16_t>(number(header, 10, 2)), number(header, 20, 4),
                    number(header, 24, 4), number(header, 42, 4)};
        const auto nameLength = static_cast<std::size_t>(number(header, 28, 2));
        const auto extraLength = number(header, 30, 2), commentLength = number(header, 32, 2);

        const auto nameAndExtra = directory.read(offset + kDirectoryHeaderSize, nameLength + extraLength);
        offset += kDirectoryHeaderSize + nameLength + extraLength + commentLength;
        if (found) continue;
        entry.name = text::repaired(nameAndExtra.substr(0, nameLength));
        if (!isWanted(entry.name)) continue;
        readExtra(nameAndExtra.substr(nameLength), entry);
        found = std::move(entry);
    }
    return found;
}

std::string ZipArchive::contents(const Entry& entry, std::uint64_t limit) const {
    if (entry.method != kStored && entry.method != kDeflated) {
        throw BuildArchiveError(BuildArchiveError::Kind::unsupportedCompression);
    }
    const bool isInflated = entry.method == kDeflated;
    if (entry.compressedSize > limit || (isInflated && entry.uncompressedSize > limit)) failMalformed();
    const auto header = reader_.read(entry.localHeaderOffset, kLocalHeaderSize);
    const auto start =
        entry.localHeaderOffset + kLocalHeaderSize + number(header, 26, 2) + number(header, 28, 2);
    auto data = reader_.read(start, entry.compressedSize);
    return isInflated ? Inflate::raw(data, entry.uncompressedSize) : data;
}

}  // namespace kestrin
