// Which of the four errors something ends with.
#pragma once

#include <functional>
#include <optional>

#include "AssetPipeline/BuildArchive/BuildArchiveError.h"

namespace kestrin {

// nullopt when it ends well. Any other error comes through.
inline std::optional<BuildArchiveError::Kind> archiveErrorOf(const std::function<void()>& code) {
    try {
        code();
        return std::nullopt;
    } catch (const BuildArchiveError& error) {
        return error.kind;
    }
}

}  // namespace kestrin
