// Any text is a private key that signs, or ASCError::InvalidPrivateKey.
#include <chrono>
#include <cstdint>
#include <cstdlib>

#include "ASCKit/ASCError.h"
#include "ASCKit/Credentials/JWTSigner.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kestrin;
    try {
        const JWTSigner signer(
            {"KEY", APIKeyKind::individual(), {reinterpret_cast<const char*>(data), size}});
        const auto token = signer.token(std::chrono::system_clock::time_point(), std::chrono::minutes(19));
        if (token.size() - token.rfind('.') != 1 + 86) std::abort();  // 64 bytes in base64 without padding
    } catch (const ASCError& error) {
        if (!error.as<ASCError::InvalidPrivateKey>()) std::abort();
    }
    return 0;
}
