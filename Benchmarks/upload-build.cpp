// What it takes to send a build to a process that throws it away.
//
//   upload-build FILE PART-SIZE     as `kestrin build upload` does, in parts of so many bytes; prints the milliseconds
//                                   for which it was hashed, those for which it was sent, and the peak memory in KiB
//   upload-build --yardstick FILE   by curl -T, in one piece; prints the milliseconds for which it was sent
#include <fmt/format.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string_view>

#include "ASCKit/Transport/CurlTransport.h"
#include "Benchmarks/BodySink.h"
#include "SyncEngine/Release/BuildUploader.h"
#include "Tests/Support/TestCredential.h"

namespace {

using namespace kestrin;

using Milliseconds = std::chrono::duration<double, std::milli>;

// Parts of the file go over the transport of every command to the sink; what App Store Connect says to the rest comes
// from here.
class UploadService final : public HTTPTransport {
 public:
    UploadService(std::string sink, std::int64_t fileSize, std::int64_t partSize)
        : sink_(std::move(sink)), fileSize_(fileSize), partSize_(partSize) {}

    HTTPResponse send(const HTTPRequest& request, const std::stop_token& stop) override {
        if (request.method == "PUT") return parts_.send(request, stop);
        if (request.url.path() == "/v1/buildUploadFiles") return {201, {}, reservation()};
        if (request.method == "PATCH") return {200, {}, ""};
        return {200,
                {},
                R"({"data":{"type":"buildUploads","id":"U","attributes":{"state":{"state":"COMPLETE"}}}})"};
    }

 private:
    std::string reservation() const {
        std::string operations;
        for (std::int64_t offset = 0; offset < fileSize_; offset += partSize_) {
            operations += fmt::format(R"({}{{"method":"PUT","url":"{}","offset":{},"length":{}}})",
                                      operations.empty() ? "" : ",", sink_, offset,
                                      std::min(partSize_, fileSize_ - offset));
        }
        return R"({"data":{"type":"buildUploadFiles","id":"F","attributes":{"uploadOperations":[)" +
               operations + "]}}}";
    }

    std::string sink_;
    std::int64_t fileSize_, partSize_;
    CurlTransport parts_;
};

long peakKibibytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

void upload(const std::filesystem::path& file, std::int64_t partSize) {
    const BodySink sink;
    const auto size = static_cast<std::int64_t>(std::filesystem::file_size(file));
    ASCClient client(TokenProvider(JWTSigner(testCredential())),
                     std::make_shared<UploadService>(sink.address(), size, partSize),
                     {.root = URL::parse("https://api.example.test")});
    BuildUploader uploader(client, {.pollInterval = {}, .timeout = {}});

    const auto start = std::chrono::steady_clock::now();
    auto hashed = start, sent = start;
    const auto watch = [&](const BuildUploadProgress& progress) {
        if (std::holds_alternative<BuildUploadProgress::Reserving>(progress.kind))
            hashed = std::chrono::steady_clock::now();
        if (std::holds_alternative<BuildUploadProgress::Committing>(progress.kind))
            sent = std::chrono::steady_clock::now();
    };
    uploader.upload(file, {.shortVersion = "1", .buildVersion = "1", .platform = "IOS", .fileSize = size},
                    "7", watch);
    fmt::print("{:.1f}\n{:.1f}\n{}\n", Milliseconds(hashed - start).count(),
               Milliseconds(sent - hashed).count(), peakKibibytes());
}

void sendWithCurl(const std::filesystem::path& file) {
    const BodySink sink;
    const auto command = "curl --silent --show-error --fail --noproxy '*' -H Expect: -T '" + file.string() +
                         "' " + sink.address();
    const auto start = std::chrono::steady_clock::now();
    if (std::system(command.c_str()) != 0) throw std::runtime_error("curl has failed");
    fmt::print("{:.1f}\n", Milliseconds(std::chrono::steady_clock::now() - start).count());
}

}  // namespace

int main(int count, char** words) {
    if (count != 3) return 1;
    try {
        if (words[1] == std::string_view("--yardstick")) {
            sendWithCurl(words[2]);
        } else {
            upload(words[1], std::atoll(words[2]));
        }
    } catch (const std::exception& error) {
        fmt::print(stderr, "{}\n", error.what());
        return 1;
    }
}
