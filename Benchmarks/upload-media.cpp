// Brings a media file into the asset library of an app of the local App Store Connect, in whose environment it runs.
//
//   upload-media FILE             as a push does; prints the milliseconds for which its bytes were under way
//   upload-media --reserve FILE   only the first of the steps; prints what each part needs: CONTENT-TYPE URL
#include <chrono>
#include <exception>
#include <iostream>
#include <memory>
#include <string_view>

#include "ASCKit/Transport/CurlTransport.h"
#include "Benchmarks/EnvironmentCredential.h"
#include "SyncEngine/Push/MediaPushContext.h"

namespace {

using namespace kestrin;

constexpr const char* kApp = "1234567890";

// The transport of a push, with a watch for the parts of uploads.
class TimedTransport final : public HTTPTransport {
 public:
    HTTPResponse send(const HTTPRequest& request, const std::stop_token& stop) override {
        const auto start = std::chrono::steady_clock::now();
        auto reply = transport_.send(request, stop);
        if (request.method == "PUT") underWay += std::chrono::steady_clock::now() - start;
        return reply;
    }

    std::chrono::duration<double, std::milli> underWay{0};

 private:
    CurlTransport transport_;
};

void upload(const std::filesystem::path& file, ASCClient& client) {
    MediaPushContext context;
    context.libraryID = kApp;
    context.locate = [](const std::string& path) { return std::optional<std::filesystem::path>(path); };
    context.processingTimeout = std::chrono::minutes(1);
    context.pollInterval = std::chrono::milliseconds(10);
    context.sleep = sleepOnSteadyClock;
    context.ensureAsset(file.string(), "", {"IPHONE_67", "APP_PREVIEW"}, client);
}

void reserve(const std::filesystem::path& file, ASCClient& client) {
    const auto size = static_cast<std::int64_t>(std::filesystem::file_size(file));
    const auto reserved = ASC::reserveLibraryAsset(client, {.kind = ASCLibraryAsset::Kind::video,
                                                            .libraryID = kApp,
                                                            .category = "APP_SCREENSHOTS_AND_PREVIEWS",
                                                            .fileName = file.filename().string(),
                                                            .fileSize = size,
                                                            .referenceName = "a yardstick"});
    for (const auto& operation : reserved.operations)
        std::cout << operation.headers.at("Content-Type") << ' ' << operation.url.absoluteString() << '\n';
}

}  // namespace

int main(int argc, char** argv) {
    const bool onlyReserves = argc == 3 && std::string_view(argv[1]) == "--reserve";
    if (argc != 2 && !onlyReserves) {
        std::cerr << "usage: upload-media [--reserve] FILE\n";
        return 1;
    }
    try {
        const auto transport = std::make_shared<TimedTransport>();
        ASCClient client(TokenProvider(JWTSigner(environmentCredential())), transport, {});
        if (onlyReserves) {
            reserve(argv[2], client);
        } else {
            upload(argv[1], client);
            std::cout << transport->underWay.count() << '\n';
        }
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
