// Any bytes are XML, with the bundle of an app in it or without one, or malformed.
#include <cstdint>
#include <cstdlib>

#include "AssetPipeline/BuildArchive/BuildArchiveError.h"
#include "AssetPipeline/BuildArchive/DistributionFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const auto bundle = kestrin::DistributionFile::appBundle({reinterpret_cast<const char*>(data), size});
        if (bundle && !bundle->contains("CFBundleShortVersionString")) std::abort();
    } catch (const kestrin::BuildArchiveError& error) {
        if (error.kind != kestrin::BuildArchiveError::Kind::malformed) std::abort();
    }
    return 0;
}
