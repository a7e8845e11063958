// Writes the large listing as a package: generate-listing PACKAGE [TIMES]
#include <cstdlib>
#include <exception>
#include <iostream>

#include "Benchmarks/LargeListing.h"
#include "KestrinModel/ProjectPackageFile.h"

int main(int argc, char** argv) {
    if (argc < 2) {
        std::cerr << "usage: generate-listing PACKAGE [TIMES]\n";
        return 1;
    }
    try {
        const int times = argc > 2 ? std::atoi(argv[2]) : 1;
        kestrin::ProjectPackageFile::save(kestrin::LargeListing::make(times), argv[1]);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
