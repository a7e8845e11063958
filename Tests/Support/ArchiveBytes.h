// Build archives made byte by byte, so that a test can lie in any field.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrin {

std::string littleEndian(std::uint64_t number, int bytes);
std::string bigEndian(std::uint64_t number, int bytes);

// Deflate data without a header, and in a zlib stream.
std::string deflated(std::string_view content);
std::string zlibStream(std::string_view content);

struct ZipMember {
    std::string name;
    std::string data;        // as it is stored
    std::uint64_t size = 0;  // as it was before, so the directory says
    std::uint16_t method = 0;
    std::string localExtra = {}, directoryExtra = {}, comment = {};
};
ZipMember storedMember(std::string name, std::string content);
ZipMember deflatedMember(std::string name, std::string_view content);

struct ZipForm {
    std::string comment = {};
    bool isZip64 = false;     // every size, count and offset is said in its zip64 form
    std::uint64_t start = 0;  // where in the file the bytes will stand
};
std::string zip(const std::vector<ZipMember>& members, const ZipForm& form = {});

// With a table of contents as it stands.
std::string xar(std::string_view tableOfContents, std::string_view heap = {});

struct XarMember {
    std::string name, encoding;  // without an encoding: ""
    std::string data;            // as it is stored
    std::uint64_t size = 0;      // as it was before
};
std::string xar(const std::vector<XarMember>& members);

// A property list in XML with these elements in its dictionary.
std::string xmlPropertyList(std::string_view elements);

// A binary property list. References take one byte; the first object is the top.
namespace binaryPropertyList {
std::string ascii(std::string_view text);
std::string array(const std::vector<int>& references);
std::string dictionary(const std::vector<int>& keys, const std::vector<int>& values);
std::string of(const std::vector<std::string>& objects);
}  // namespace binaryPropertyList

}  // namespace kestrin
