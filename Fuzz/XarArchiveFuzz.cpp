// Any bytes are a xar archive with a distribution file, or end in one of the four errors. The table of contents of a
// real archive is compressed, which no fuzzer sees through: bytes that don't begin as such an archive are taken for
// a table as it stands.
#include "AssetPipeline/BuildArchive/BuildArchiveError.h"
#include "AssetPipeline/BuildArchive/XarArchive.h"
#include "Fuzz/ArchiveFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const kestrin::ArchiveFile file;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    try {
        if (!bytes.starts_with("xar!")) {
            kestrin::XarArchive::find("Distribution", bytes);
            return 0;
        }
        file.hold(data, size);
        kestrin::XarArchive::contents("Distribution", kestrin::ByteReader(file.path()));
    } catch (const kestrin::BuildArchiveError&) {
    }
    return 0;
}
