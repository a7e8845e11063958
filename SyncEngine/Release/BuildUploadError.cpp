#include "SyncEngine/Release/BuildUploadError.h"

#include <fmt/format.h>

#include "KestrinCore/Message.h"

namespace kestrin {

using message::localized;

std::string BuildUploadError::errorDescription() const {
    return std::visit(
        Overloaded{
            [](const Rejected& error) {
                const auto errors = fmt::format("{}", fmt::join(error.errors, " "));
                return localized("buildUploadErrorRejected", "App Store Connect rejected the build: {errors}",
                                 {{"errors", errors}});
            },
            [](const StillProcessing&) {
                return localized(
                    "buildUploadErrorStillProcessing",
                    "The build was uploaded and App Store Connect is still processing it. It will "
                    "appear in the build list when it’s ready.");
            },
            [](const MissingVersions&) {
                return localized("buildUploadErrorMissingVersions",
                                 "Enter the version and build number: they couldn’t be read from the file.");
            },
            [](const NoUploadOperations&) {
                return localized("buildUploadErrorNoUploadOperations",
                                 "App Store Connect didn’t accept the upload. Try again.");
            },
            [](const FileChanged& error) {
                return localized(
                    "buildUploadErrorFileChanged",
                    "“{fileName}” changed while it was uploaded. Upload it again when it is finished.",
                    {{"fileName", error.fileName}});
            },
        },
        kind);
}

}  // namespace kestrin
