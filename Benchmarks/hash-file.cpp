// Prints the MD5 of a file as media are hashed.
//
//   hash-file FILE
#include <exception>
#include <iostream>

#include "AssetPipeline/MediaHash.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: hash-file FILE\n";
        return 1;
    }
    try {
        std::cout << kestrin::MediaHash::md5(argv[1]) << '\n';
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
