// Any bytes are a property list, XML or binary, whose texts are UTF-8, or malformed.
#include <cstdint>
#include <cstdlib>

#include "AssetPipeline/BuildArchive/BuildArchiveError.h"
#include "AssetPipeline/BuildArchive/PropertyList.h"
#include "KestrinCore/UnicodeText.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const auto list = kestrin::PropertyList::parse({reinterpret_cast<const char*>(data), size});
        for (const char* key : {"CFBundleIdentifier", "CFBundleVersion", "CFBundleShortVersionString"}) {
            if (!kestrin::text::isValidUTF8(list.text(key).value_or(""))) std::abort();
        }
        list.truth("ITSAppUsesNonExemptEncryption");
        for (const auto& platform : list.texts("CFBundleSupportedPlatforms")) {
            if (!kestrin::text::isValidUTF8(platform)) std::abort();
        }
    } catch (const kestrin::BuildArchiveError& error) {
        if (error.kind != kestrin::BuildArchiveError::Kind::malformed) std::abort();
    }
    return 0;
}
