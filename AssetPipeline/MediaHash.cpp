#include "AssetPipeline/MediaHash.h"

#include <fcntl.h>
#include <openssl/evp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <vector>

#include "KestrinCore/Files.h"
#include "KestrinCore/Handle.h"

namespace kestrin::MediaHash {
namespace {

constexpr std::size_t kPieceSize = 1'048'576;

class Digest {
 public:
    Digest() : context_(EVP_MD_CTX_new()) {
        check(context_ && EVP_DigestInit_ex(context_.get(), EVP_md5(), nullptr) == 1);
    }

    void update(const void* bytes, std::size_t count) {
        check(EVP_DigestUpdate(context_.get(), bytes, count) == 1);
    }

    std::string hexadecimal() {
        unsigned char digest[EVP_MAX_MD_SIZE];
        unsigned int size = 0;
        check(EVP_DigestFinal_ex(context_.get(), digest, &size) == 1);
        constexpr std::string_view kDigits = "0123456789abcdef";
        std::string text;
        for (unsigned int i = 0; i < size; ++i) {
            text += kDigits[digest[i] >> 4];
            text += kDigits[digest[i] & 0xf];
        }
        return text;
    }

 private:
    static void check(bool succeeded) {
        if (!succeeded) throw std::runtime_error("MD5 isn't available in this OpenSSL");
    }

    Handle<EVP_MD_CTX, EVP_MD_CTX_free> context_;
};

void requireRegularFile(const files::Descriptor& file, const std::filesystem::path& name) {
    struct stat status {};
    if (fstat(file.number(), &status) != 0) throw FileError::fromErrno(FileError::Operation::read, name);
    if (S_ISREG(status.st_mode)) return;
    throw FileError(FileError::Operation::read, name, std::make_error_code(std::errc::invalid_argument));
}

}  // namespace

std::string md5(const std::filesystem::path& name) {
    // O_NONBLOCK: a named pipe in the file's place must not hold the program up.
    const files::Descriptor file(open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file) throw FileError::fromErrno(FileError::Operation::read, name);
    requireRegularFile(file, name);
    posix_fadvise(file.number(), 0, 0, POSIX_FADV_SEQUENTIAL);

    Digest digest;
    std::vector<char> piece(kPieceSize);
    for (;;) {
        const auto got = read(file.number(), piece.data(), piece.size());
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) throw FileError::fromErrno(FileError::Operation::read, name);
        if (got == 0) return digest.hexadecimal();
        digest.update(piece.data(), static_cast<std::size_t>(got));
    }
}

}  // namespace kestrin::MediaHash
