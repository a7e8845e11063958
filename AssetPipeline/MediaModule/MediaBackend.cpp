#include "AssetPipeline/MediaModule/MediaBackend.h"

#include "AssetPipeline/MediaModule/ImageBackend.h"
#include "AssetPipeline/MediaModule/VideoBackend.h"

const KestrinMediaBackend* kestrinMediaBackend(void) {
    static const KestrinMediaBackend kBackend = {
        kestrin::ImageBackend::read,
        kestrin::VideoBackend::read,
        kestrin::ImageBackend::flatten,
        kestrin::ImageBackend::release,
    };
    static const bool kReady = kestrin::ImageBackend::initialise() && kestrin::VideoBackend::initialise();
    return kReady ? &kBackend : nullptr;
}
