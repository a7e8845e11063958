// Loads a package, changes one text if one is given, and saves it; prints the milliseconds of load and save.
//
//   save-listing PACKAGE [TEXT]
#include <chrono>
#include <exception>
#include <iostream>

#include "KestrinModel/ProjectPackageFile.h"

namespace {

double millisecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::cerr << "usage: save-listing PACKAGE [TEXT]\n";
        return 1;
    }
    try {
        using namespace kestrin;
        const auto start = std::chrono::steady_clock::now();
        auto project = ProjectPackageFile::load(argv[1]);
        const double load = millisecondsSince(start);
        if (argc > 2)
            project.setValue(argv[2], ListingField::whatsNew, StoreLocale::englishUS, StorePlatform::iOS);
        const auto saving = std::chrono::steady_clock::now();
        ProjectPackageFile::save(project, argv[1]);
        std::cout << load << ' ' << millisecondsSince(saving) << '\n';
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
