// What the media module offers: the few operations for which the program needs an image or a video library.
//
// Loading libvips and libavformat costs some 40 ms, which a command that looks at no media must not pay. So the
// code that calls them is a shared object of its own, opened at its first use; this is the seam. Plain C types
// cross it, and no exception does.
#pragma once

#include <cstddef>
#include <cstdint>

extern "C" {

struct KestrinImageProperties {
    std::int64_t width, height;  // as stored: an orientation in the metadata is not applied
    bool hasAlpha;
};

struct KestrinVideoProperties {
    double width, height;  // the natural size, pixel aspect ratio applied
    double a, b, c,
        d;  // the linear part of the transform to the displayed picture: x' = ax + cy, y' = bx + dy
    double frameRate;  // negative: unknown
    double duration;   // in seconds; negative: unknown
};

enum KestrinFlattenOutcome { kestrinFlattened, kestrinUnreadable, kestrinUnencodable };

struct KestrinMediaBackend {
    bool (*readImage)(const char* path, KestrinImageProperties* properties);
    bool (*readVideo)(const char* path, KestrinVideoProperties* properties);
    // On success the bytes are the caller's, to be given back by `release`.
    KestrinFlattenOutcome (*flatten)(const char* path, void** bytes, std::size_t* size);
    void (*release)(void* bytes);
};

// The one symbol of the module. Null when its libraries can't be initialised.
[[gnu::visibility("default")]] const KestrinMediaBackend* kestrinMediaBackend(void);

}  // extern "C"
