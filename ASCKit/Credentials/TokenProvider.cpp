#include "ASCKit/Credentials/TokenProvider.h"

namespace kestrin {

TokenProvider::TokenProvider(JWTSigner signer, Clock now)
    : signer_(std::move(signer)), now_(std::move(now)) {}

std::string TokenProvider::token() {
    const auto now = now_();
    if (!cached_ || now >= cached_->refreshAfter) {
        const auto validity =
            std::chrono::duration_cast<std::chrono::system_clock::duration>(kLifetime - kMargin);
        cached_ = Cached{signer_.token(now, kLifetime), now + validity};
    }
    return cached_->token;
}

void TokenProvider::invalidate() {
    cached_.reset();
}

}  // namespace kestrin
