#include "KestrinModel/ProjectFormat.h"

#include "KestrinModel/ProjectFormatError.h"

namespace kestrin::ProjectFormat {

JSONValue migrate(JSONValue manifest, std::int64_t version) {
    if (version < 1) throw ProjectFormatError(ProjectFormatError::InvalidSchemaVersion{});
    if (version > currentSchemaVersion) {
        throw ProjectFormatError(ProjectFormatError::NewerSchemaVersion{version});
    }
    return manifest;
}

}  // namespace kestrin::ProjectFormat
