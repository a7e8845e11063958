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

// The state that a sandbox printed, or one written by hand in the same form: {"resources": [{"type", "id",
// "attributes", "relationships": {"app": {"data": {"type", "id"}}}}]}. Throws std::runtime_error naming the file.
Seed fromFile(const std::filesystem::path& path);

}  // namespace seeds

// All resources in the form that fromFile reads.
Json stateJSON(const State& state);

}  // namespace kestrin::sandbox
