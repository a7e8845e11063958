#include "SyncEngine/Push/MediaPushError.h"

#include "KestrinCore/Message.h"

namespace kestrin {
namespace {

std::string notAccepted() {
    return message::localized("mediaPushErrorNotAccepted",
                              "App Store Connect didn’t accept the upload. Try again.");
}

}  // namespace

std::string MediaPushError::errorDescription() const {
    return std::visit(
        Overloaded{
            [](const MissingFile& error) {
                return message::localized("mediaPushErrorMissingFile", "Couldn’t find the media file {path}.",
                                          {{"path", error.path}});
            },
            [](const NoUploadOperations&) { return notAccepted(); },
            [](const ProcessingFailed& error) {
                return message::localized("mediaPushErrorProcessingFailed",
                                          "App Store Connect couldn’t process {fileName} ({state}). Check it "
                                          "matches the slot’s requirements.",
                                          {{"fileName", error.fileName}, {"state", error.state}});
            },
            [](const StillProcessing& error) {
                return message::localized(
                    "mediaPushErrorStillProcessing",
                    "App Store Connect is still processing {fileName}. Push again later "
                    "to finish placing it; it won’t be uploaded twice.",
                    {{"fileName", error.fileName}});
            },
            [](const MissingLocalization& error) {
                return message::localized("mediaPushErrorMissingLocalization",
                                          "Add text for {locale} and push it before its media: App Store "
                                          "Connect places media on a localization.",
                                          {{"locale", error.locale}});
            },
            [](const NoMediaContext&) { return notAccepted(); },
        },
        kind);
}

}  // namespace kestrin
