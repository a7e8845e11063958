// What a sandbox knows when it starts.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "Sandbox/State.h"

namespace kestrin::sandbox {

using Seed = std::function<void(State&)>;

namespace seeds {

// No apps; only what App Store Connect has for everybody (categories).
void empty(State& state);

// An invented app, "Tide Notes" (id 1234567890, com.example.tidenotes), in en-US, de-DE and ja on iOS and macOS:
// versions on sale and one in preparation, App Review details, builds, screenshots and a preview, a custom product
// page in preparation and one on sale, a test in preparation and one that is over. And "Lighthouse" (id 1234567891),
// an app with nothing in it.
void everyday(State& state);

// An app "Tide Notes" (id 1234567890, com.example.tidenotes) as App Store Connect makes it: a version 1.0 for iOS in
// preparation, with its name in en-US and nothing else.
void newApp(State& state);

// The listing of Benchmarks/LargeListing.h, as the app 1234567890, com.example.walks: everything is in preparation,
// every medium approved under the identifier that the listing has for it. A pull takes some 3,500 requests.
void large(State& state);

// The state that a sandbox printed, or one written by hand in the same form: {"clock": seconds since 1970,
// "resources": [{"type", "id", "attributes", "relationships": {"app": {"data": {"type", "id"}}}}]}. The clock is
// optional. The seed throws std::runtime_error for anything else.
Seed fromDocument(Json document);

// The same from a file. Throws std::runtime_error naming the file, when it is made or when it is used.
Seed fromFile(const std::filesystem::path& path);

}  // namespace seeds

// All resources in the form that fromDocument reads; bytes that were uploaded aren't among them.
Json stateJSON(const State& state);

// One of them.
Json resourceJSON(const Resource& resource);

}  // namespace kestrin::sandbox
