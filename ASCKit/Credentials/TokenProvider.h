// Hands out tokens, signing a new one only when the last has nearly run out.
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "ASCKit/Credentials/JWTSigner.h"
#include "KestrinCore/Clock.h"

namespace kestrin {

class TokenProvider {
 public:
    static constexpr Seconds kLifetime = std::chrono::minutes(19);  // inside the service's 20
    static constexpr Seconds kMargin = std::chrono::minutes(2);     // what a token in use has left at least

    explicit TokenProvider(JWTSigner signer, Clock now = systemNow);

    // The cached token, or a new one when there is none or the cached one has come to within the margin of its end.
    std::string token();

    // The next token() signs anew: the service refused this one.
    void invalidate();

 private:
    struct Cached {
        std::string token;
        std::chrono::system_clock::time_point refreshAfter;
    };
    JWTSigner signer_;
    Clock now_;
    std::optional<Cached> cached_;
};

}  // namespace kestrin
