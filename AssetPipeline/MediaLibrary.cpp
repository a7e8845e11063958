#include "AssetPipeline/MediaLibrary.h"

#include <dlfcn.h>

#include "KestrinCore/Message.h"

namespace kestrin {
namespace {

constexpr const char* kModule = "kestrin-media.so";  // found by the executable's run path

const KestrinMediaBackend& load() {
    // Never closed: libvips can't be started a second time.
    void* module = dlopen(kModule, RTLD_NOW | RTLD_LOCAL);
    if (!module) throw MediaModuleError(dlerror());
    void* symbol = dlsym(module, "kestrinMediaBackend");
    if (!symbol) throw MediaModuleError(dlerror());
    const auto* backend = reinterpret_cast<decltype(&kestrinMediaBackend)>(symbol)();
    if (!backend) throw MediaModuleError("libvips doesn't start");
    return *backend;
}

}  // namespace

std::string MediaModuleError::errorDescription() const {
    return message::localized("mediaModuleError", "Couldn’t load Kestrin’s media module: {reason}.",
                              {{"reason", reason}});
}

const KestrinMediaBackend& MediaLibrary::backend() {
    static const KestrinMediaBackend& instance = load();
    return instance;
}

}  // namespace kestrin
