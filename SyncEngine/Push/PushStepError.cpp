#include "SyncEngine/Push/PushStepError.h"

#include "KestrinCore/Message.h"

namespace kestrin {

std::string PushStepError::errorDescription() const {
    return std::visit(Overloaded{[](const MissingParent& error) {
                          return message::localized(
                              "pushStepErrorMissingParent",
                              "{name} doesn’t exist on App Store Connect yet. Push it first, with its name.",
                              {{"name", error.name}});
                      }},
                      kind);
}

}  // namespace kestrin
