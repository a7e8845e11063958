#include "SyncEngine/Push/PushError.h"

#include "KestrinCore/Message.h"

namespace kestrin {

std::string PushError::errorDescription() const {
    return std::visit(
        Overloaded{[](const NotEnoughRequestsLeft& error) {
            return message::localized(
                "pushErrorNotEnoughRequestsLeft",
                "This push needs about {needed} requests, but the API key has {remaining} left "
                "this hour. Try again later.",
                {{"needed", std::to_string(error.needed)}, {"remaining", std::to_string(error.remaining)}});
        }},
        kind);
}

}  // namespace kestrin
