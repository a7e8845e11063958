// What it takes to send a build: upload-build FILE. Hashes the file and sends it in parts of 100 MB to a process that
// throws them away, over the transport of every command; then curl sends the same file to the same process. Prints the
// throughput of each, and how much memory ours took at its highest.
#include <fmt/format.h>
#include <sys/resource.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>

#include "ASCKit/Transport/CurlTransport.h"
#include "AssetPipeline/MediaHash.h"
#include "Benchmarks/BodySink.h"

namespace {

constexpr std::int64_t kPart = 100'000'000;

template <class Work>
double secondsOf(const Work& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

long peakMebibytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

void send(const std::filesystem::path& file, std::int64_t size, const kestrin::URL& url) {
    kestrin::CurlTransport transport;
    for (std::int64_t offset = 0; offset < size; offset += kPart) {
        kestrin::HTTPRequest request{.method = "PUT", .url = url};
        request.body = kestrin::FileRange{file, offset, kPart};
        if (transport.send(request, {}).status != 200) std::abort();
    }
}

}  // namespace

int main(int count, char** words) {
    if (count != 2) return 1;
    const std::filesystem::path file = words[1];
    const auto size = static_cast<std::int64_t>(std::filesystem::file_size(file));
    const kestrin::BodySink sink;
    const auto report = [&](const char* what, double seconds) {
        fmt::print("{:<10} {:7.0f} MB/s\n", what, static_cast<double>(size) / 1e6 / seconds);
    };
    report("MD5", secondsOf([&] { kestrin::MediaHash::md5(file); }));
    report("upload", secondsOf([&] { send(file, size, *kestrin::URL::parse(sink.address())); }));
    fmt::print("peak memory of both {} MiB\n", peakMebibytes());
    const auto command =
        "curl --silent --noproxy '*' -H Expect: -T '" + file.string() + "' " + sink.address();
    report("curl -T", secondsOf([&] {
               if (std::system(command.c_str()) != 0) std::abort();
           }));
}
