// Prints the header of a request that the key in the environment signs, for curl; it is good for 19 minutes.
#include <exception>
#include <iostream>

#include "ASCKit/Credentials/TokenProvider.h"
#include "Benchmarks/EnvironmentCredential.h"

int main() {
    try {
        kestrin::TokenProvider tokens{kestrin::JWTSigner(kestrin::environmentCredential())};
        std::cout << "Authorization: Bearer " << tokens.token() << '\n';
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
