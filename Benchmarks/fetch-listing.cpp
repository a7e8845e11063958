// Fetches the listing of an app of the local App Store Connect, in whose environment it runs, as a pull does, and goes no
// further. Prints the milliseconds of processor time that it took, the start of the program included.
//
//   fetch-listing APP-ID
#include <ctime>
#include <exception>
#include <iostream>
#include <optional>
#include <stdexcept>

#include "Benchmarks/EnvironmentCredential.h"
#include "SyncEngine/Pull/PullService.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: fetch-listing APP-ID\n";
        return 1;
    }
    try {
        using namespace kestrin;
        ASCClient client(environmentCredential());
        const auto listing = PullService(client).fetch(argv[1], {std::nullopt, Project()});
        if (listing.platforms.empty()) throw std::runtime_error("there is no listing");
        std::cout << static_cast<double>(std::clock()) * 1000 / CLOCKS_PER_SEC << '\n';
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
