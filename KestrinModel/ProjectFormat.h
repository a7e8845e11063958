// The format of a project package: its identifier, its version, and the way from an older version to this one.
#pragma once

#include <cstdint>
#include <string_view>

#include "KestrinCore/JSONValue.h"

namespace kestrin::ProjectFormat {

// What a manifest says in "format". The legacy identifier is read, and replaced by the first save.
inline constexpr std::string_view identifier = "com.brennoway.kestrin.project";
inline constexpr std::string_view legacyIdentifier = "com.brennoway.marquel.project";

inline constexpr std::int64_t currentSchemaVersion = 1;

// The manifest of a package of `version`, as this version has it. Throws ProjectFormatError: InvalidSchemaVersion
// below 1, NewerSchemaVersion above the current version. There is no older version yet: this is the place for the
// steps that lead from one to the next.
JSONValue migrate(JSONValue manifest, std::int64_t version);

}  // namespace kestrin::ProjectFormat
