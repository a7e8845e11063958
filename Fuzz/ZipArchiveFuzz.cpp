// Any bytes are an .ipa whose app can be read, or end in one of the four errors.
#include "AssetPipeline/BuildArchive/BuildArchiveInspector.h"
#include "Fuzz/ArchiveFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const kestrin::ArchiveFile file;
    file.hold(data, size);
    try {
        kestrin::BuildArchiveInspector::inspect(file.path());
    } catch (const kestrin::BuildArchiveError&) {
    }
    return 0;
}
