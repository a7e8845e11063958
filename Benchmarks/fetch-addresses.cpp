// Fetches addresses of the local App Store Connect, in whose environment it runs, one after the other and decoding each
// reply as a pull decodes placements: the lines of FILE. Prints the milliseconds of processor time that an address took,
// the start of the program included.
//
//   fetch-addresses FILE
#include <sys/resource.h>

#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "ASCKit/ASCClient.h"
#include "ASCKit/Resources/Placements.h"
#include "Benchmarks/EnvironmentCredential.h"

namespace {

using namespace kestrin;

std::vector<URL> addressesIn(const char* file) {
    std::ifstream lines(file);
    std::vector<URL> addresses;
    for (std::string line; std::getline(lines, line);) {
        const auto address = URL::parse(line);
        if (!address) throw std::runtime_error("not an address: " + line);
        addresses.push_back(*address);
    }
    if (addresses.empty()) throw std::runtime_error(std::string("no addresses in ") + file);
    return addresses;
}

double processorMilliseconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto of = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) * 1000 + static_cast<double>(time.tv_usec) / 1000;
    };
    return of(usage.ru_utime) + of(usage.ru_stime);
}

void fetch(const std::vector<URL>& addresses) {
    ASCClient client(environmentCredential());
    const auto fields = ResourceFields(ASCPlacement::fields()) += ASCLibraryAsset::fields();
    const auto root = client.root().absoluteString();
    for (const auto& address : addresses) {
        ASCRequest request;
        request.path = address.absoluteString().substr(root.size());  // and its query as it stands
        if (client.pages(request, fields).empty())
            throw std::runtime_error("no page at " + address.absoluteString());
    }
    std::cout << processorMilliseconds() / static_cast<double>(addresses.size()) << '\n';
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: fetch-addresses FILE\n";
        return 1;
    }
    try {
        fetch(addressesIn(argv[1]));
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
