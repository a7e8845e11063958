#include "AssetPipeline/AlphaFlattener.h"

#include <memory>

#include "AssetPipeline/MediaLibrary.h"
#include "KestrinCore/Message.h"

namespace kestrin {

std::string FlattenError::errorDescription() const {
    switch (kind) {
        case Kind::unreadable:
            return message::localized("flattenErrorUnreadable",
                                      "Couldn’t read the image whose transparency has to be removed.");
        case Kind::unencodable:
            return message::localized("flattenErrorUnencodable",
                                      "Couldn’t make a copy of the image without transparency.");
    }
    return {};
}

std::string AlphaFlattener::flattenedPNG(const std::filesystem::path& file) {
    const auto& backend = MediaLibrary::backend();
    void* bytes = nullptr;
    std::size_t size = 0;
    switch (backend.flatten(file.c_str(), &bytes, &size)) {
        case kestrinFlattened:
            break;
        case kestrinUnreadable:
            throw FlattenError(FlattenError::Kind::unreadable);
        case kestrinUnencodable:
            throw FlattenError(FlattenError::Kind::unencodable);
    }
    const std::unique_ptr<void, decltype(backend.release)> owned(bytes, backend.release);
    return std::string(static_cast<const char*>(bytes), size);
}

}  // namespace kestrin
