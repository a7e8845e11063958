#include "KestrinCore/Error.h"

namespace kestrin {

const char* Error::what() const noexcept {
    try {
        what_ = errorDescription();
        return what_.c_str();
    } catch (...) {
        return "an error without a description";
    }
}

}  // namespace kestrin
