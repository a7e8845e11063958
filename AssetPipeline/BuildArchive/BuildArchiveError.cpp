#include "AssetPipeline/BuildArchive/BuildArchiveError.h"

#include "KestrinCore/Message.h"

namespace kestrin {

using message::localized;

std::string BuildArchiveError::errorDescription() const {
    switch (kind) {
        case Kind::notAnArchive:
            return localized(
                "buildArchiveErrorNotAnArchive",
                "The file isn’t a whole .ipa or .pkg archive: pass the file that Xcode exported.");
        case Kind::malformed:
            return localized("buildArchiveErrorMalformed",
                             "The archive is damaged or incomplete: copy or export it again.");
        case Kind::unsupportedCompression:
            return localized(
                "buildArchiveErrorUnsupportedCompression",
                "The app’s Info.plist is compressed in a way that can’t be read: export the archive "
                "with Xcode, or pack it with zip.");
        case Kind::noAppInside:
            break;
    }
    return localized(
        "buildArchiveErrorNoAppInside",
        "There is no app in the archive: pass an .ipa with an app in its Payload folder, or a .pkg "
        "that was exported for the App Store.");
}

void failMalformed() {
    throw BuildArchiveError(BuildArchiveError::Kind::malformed);
}

}  // namespace kestrin
