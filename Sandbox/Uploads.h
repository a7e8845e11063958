// The upload addresses: where the bytes of assets and builds go, part by part.
//
// An address is good for one part of one file, for a week, until the file is committed. It belongs to the bytes'
// store, not to the API: it takes no token, and it answers in XML. Parts come in any order and may come again.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Sandbox/HTTPMessage.h"
#include "Sandbox/JSON.h"
#include "Sandbox/Store.h"

namespace kestrin::sandbox {

class Uploads {
 public:
    static constexpr std::string_view kPathStart = "/uploads/";

    // Opens addresses for a file of `size` bytes in parts of `partSize`, the last one smaller.
    void open(const Ref& owner, std::uint64_t size, std::uint64_t partSize, const std::string& contentType,
              std::int64_t now);

    // As the attribute uploadOperations shows them; null when nothing was ever opened. `forBuild` adds what the
    // operations of a build file have besides.
    Json operations(const Ref& owner, const std::string& root, bool forBuild) const;

    // The parts in their order, when every one is there whole; nullopt otherwise. They live until `close`.
    std::optional<std::vector<const std::string*>> parts(const Ref& owner) const;
    // The same as one piece.
    std::optional<std::string> content(const Ref& owner) const;

    // No part can be sent any more, and the bytes are forgotten.
    void close(const Ref& owner);

    // A request to an upload address.
    HTTPReply receive(const HTTPRequest& request, std::int64_t now);

 private:
    struct Part {
        std::uint64_t offset = 0, length = 0;
        std::optional<std::string> bytes;
    };
    struct Upload {
        std::string contentType;
        std::int64_t expires = 0;
        std::vector<Part> parts;
        bool isClosed = false;
    };

    std::map<Ref, Upload> uploads_;
};

}  // namespace kestrin::sandbox
