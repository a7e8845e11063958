// Sending a file's bytes to where the service wants them.
//
// An upload has three steps: something is reserved, whose reply says where each byte range goes; the ranges are sent
// one after another; what was reserved is committed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <variant>
#include <vector>

#include "ASCKit/ASCClient.h"
#include "KestrinCore/JSONValue.h"

namespace kestrin {

// One byte range to send.
struct UploadOperation {
    std::string method;
    URL url;
    std::int64_t offset = 0;
    std::int64_t length = 0;
    std::map<std::string, std::string> headers;

    // From the attribute `uploadOperations`. Items without a proper address, offset or length are left out; a value
    // that isn't a list has none. The method is PUT where none is given.
    static std::vector<UploadOperation> operations(const JSONObject& attributes);

    bool operator==(const UploadOperation&) const = default;
};

// Where the bytes come from: a file, read while it is sent and never whole, or bytes in memory.
struct UploadSource {
    std::variant<std::filesystem::path, std::string> kind;

    static UploadSource file(std::filesystem::path path) { return {std::move(path)}; }
    static UploadSource data(std::string bytes) { return {std::move(bytes)}; }

    // One part as a request's body. Past the end there are no bytes.
    HTTPBody slice(std::int64_t offset, std::int64_t length) const;
};

namespace ASC {

// For whoever goes along with an upload part by part, counted from 0. What they throw ends the upload.
struct PartHooks {
    std::function<void(std::size_t part)> before = {};
    std::function<void(std::size_t part)> after = {};  // of one that has arrived
};

// Sends the parts strictly in the order given, with the headers that each names and no token: these addresses aren't
// the API's. The first part that fails for good ends the upload with its error. No operations: nothing happens. The
// client's uploadNews are told how far it is.
void upload(ASCClient& client, const std::vector<UploadOperation>& operations, const UploadSource& source,
            const PartHooks& hooks = {});

}  // namespace ASC
}  // namespace kestrin
