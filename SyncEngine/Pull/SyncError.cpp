#include "SyncEngine/Pull/SyncError.h"

#include "KestrinCore/Message.h"

namespace kestrin {

std::string SyncError::errorDescription() const {
    return std::visit(
        Overloaded{
            [](const AppNotFound& error) {
                return message::localized("syncErrorAppNotFound",
                                          "No app with the bundle ID {bundleID} is visible to this API key.",
                                          {{"bundleID", error.bundleID}});
            },
            [](const NotConnected&) {
                return message::localized("syncErrorNotConnected",
                                          "This project isn’t connected to an App Store Connect app yet.");
            },
        },
        kind);
}

}  // namespace kestrin
