#include "Tests/Support/ArchiveBytes.h"

#include <zlib.h>

#include <stdexcept>

namespace kestrin {
namespace {

constexpr std::uint64_t kElsewhere16 = 0xFFFF, kElsewhere32 = 0xFFFFFFFF;

std::string compressedBy(std::string_view content, int windowBits) {
    z_stream stream{};
    if (deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, windowBits, 9, Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::runtime_error("zlib doesn't compress");
    std::string copy(content), out(deflateBound(&stream, static_cast<uLong>(content.size())), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(copy.data());
    stream.avail_in = static_cast<uInt>(copy.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = static_cast<uInt>(out.size());
    const int result = deflate(&stream, Z_FINISH);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    if (result != Z_STREAM_END) throw std::runtime_error("zlib doesn't compress");
    return out;
}

std::string localHeader(const ZipMember& member) {
    return "PK\x03\x04" + littleEndian(20, 2) + littleEndian(0, 2) + littleEndian(member.method, 2) +
           littleEndian(0, 8) + littleEndian(member.data.size(), 4) + littleEndian(member.size, 4) +
           littleEndian(member.name.size(), 2) + littleEndian(member.localExtra.size(), 2) + member.name +
           member.localExtra;
}

std::string directoryHeader(const ZipMember& member, std::uint64_t offset, bool isZip64) {
    auto extra = member.directoryExtra;
    if (isZip64) {
        extra += littleEndian(1, 2) + littleEndian(24, 2) + littleEndian(member.size, 8) +
                 littleEndian(member.data.size(), 8) + littleEndian(offset, 8);
    }
    const auto said = [&](std::uint64_t number) { return littleEndian(isZip64 ? kElsewhere32 : number, 4); };
    return "PK\x01\x02" + littleEndian(20, 2) + littleEndian(20, 2) + littleEndian(0, 2) +
           littleEndian(member.method, 2) + littleEndian(0, 8) + said(member.data.size()) +
           said(member.size) + littleEndian(member.name.size(), 2) + littleEndian(extra.size(), 2) +
           littleEndian(member.comment.size(), 2) + littleEndian(0, 8) + said(offset) + member.name + extra +
           member.comment;
}

std::string zip64End(std::size_t count, std::uint64_t directorySize, std::uint64_t directory) {
    return "PK\x06\x06" + littleEndian(44, 8) + littleEndian(45, 2) + littleEndian(45, 2) +
           littleEndian(0, 8) + littleEndian(count, 8) + littleEndian(count, 8) +
           littleEndian(directorySize, 8) + littleEndian(directory, 8) +
           // and the locator
           "PK\x06\x07" + littleEndian(0, 4) + littleEndian(directory + directorySize, 8) +
           littleEndian(1, 4);
}

}  // namespace

std::string littleEndian(std::uint64_t number, int bytes) {
    std::string text;
    for (; bytes > 0; --bytes, number >>= 8) text += static_cast<char>(number & 0xFF);
    return text;
}

std::string bigEndian(std::uint64_t number, int bytes) {
    const auto text = littleEndian(number, bytes);
    return {text.rbegin(), text.rend()};
}

std::string deflated(std::string_view content) {
    return compressedBy(content, -15);
}

std::string zlibStream(std::string_view content) {
    return compressedBy(content, 15);
}

ZipMember storedMember(std::string name, std::string content) {
    const auto size = content.size();
    return {std::move(name), std::move(content), size};
}

ZipMember deflatedMember(std::string name, std::string_view content) {
    return {std::move(name), deflated(content), content.size(), 8};
}

std::string zip(const std::vector<ZipMember>& members, const ZipForm& form) {
    std::string bytes, directory;
    for (const auto& member : members) {
        directory += directoryHeader(member, form.start + bytes.size(), form.isZip64);
        bytes += localHeader(member) + member.data;
    }
    const auto directoryOffset = form.start + bytes.size();
    bytes += directory;
    if (form.isZip64) bytes += zip64End(members.size(), directory.size(), directoryOffset);
    const auto count = form.isZip64 ? kElsewhere16 : members.size();
    return bytes + "PK\x05\x06" + littleEndian(0, 4) + littleEndian(count, 2) + littleEndian(count, 2) +
           littleEndian(directory.size(), 4) +
           littleEndian(form.isZip64 ? kElsewhere32 : directoryOffset, 4) +
           littleEndian(form.comment.size(), 2) + form.comment;
}

std::string xar(std::string_view tableOfContents, std::string_view heap) {
    const auto compressed = zlibStream(tableOfContents);
    return "xar!" + bigEndian(28, 2) + bigEndian(1, 2) + bigEndian(compressed.size(), 8) +
           bigEndian(tableOfContents.size(), 8) + bigEndian(0, 4) + compressed + std::string(heap);
}

std::string xar(const std::vector<XarMember>& members) {
    std::string table = "<?xml version=\"1.0\" encoding=\"UTF-8\"?><xar><toc>", heap;
    for (const auto& member : members) {
        table += "<file><data><length>" + std::to_string(member.data.size()) + "</length><offset>" +
                 std::to_string(heap.size()) + "</offset><size>" + std::to_string(member.size) + "</size>";
        if (!member.encoding.empty()) table += "<encoding style=\"" + member.encoding + "\"/>";
        table += "</data><type>file</type><name>" + member.name + "</name></file>";
        heap += member.data;
    }
    return xar(table + "</toc></xar>", heap);
}

std::string xmlPropertyList(std::string_view elements) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
           "<plist version=\"1.0\"><dict>" +
           std::string(elements) + "</dict></plist>\n";
}

namespace binaryPropertyList {
namespace {

// The type and the count, which is a number of its own when it doesn't fit into half a byte.
std::string head(int type, std::size_t count) {
    const auto byte = [](std::size_t value) { return std::string(1, static_cast<char>(value)); };
    const auto high = static_cast<std::size_t>(type) << 4;
    return count < 15 ? byte(high | count) : byte(high | 15) + byte(0x11) + bigEndian(count, 2);
}

std::string bytesOf(const std::vector<int>& references) {
    return {references.begin(), references.end()};
}

}  // namespace

std::string ascii(std::string_view text) {
    return head(5, text.size()) + std::string(text);
}

std::string array(const std::vector<int>& references) {
    return head(10, references.size()) + bytesOf(references);
}

std::string dictionary(const std::vector<int>& keys, const std::vector<int>& values) {
    return head(13, keys.size()) + bytesOf(keys) + bytesOf(values);
}

std::string of(const std::vector<std::string>& objects) {
    std::string bytes = "bplist00", offsets;
    for (const auto& object : objects) {
        offsets += bigEndian(bytes.size(), 4);
        bytes += object;
    }
    return bytes + offsets + bigEndian(0, 6) + bigEndian(4, 1) + bigEndian(1, 1) +
           bigEndian(objects.size(), 8) + bigEndian(0, 8) + bigEndian(bytes.size(), 8);
}

}  // namespace binaryPropertyList
}  // namespace kestrin
