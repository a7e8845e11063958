#include "KestrinModel/PackageTooLargeError.h"

#include "KestrinCore/Message.h"

namespace kestrin {

std::string PackageTooLargeError::errorDescription() const {
    return message::localized("packageTooLargeError",
                              "This project is too large: its files may have {limit} bytes together.",
                              {{"limit", std::to_string(limit)}});
}

}  // namespace kestrin
