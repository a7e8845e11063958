#include "KestrinModel/ProjectFormatError.h"

#include "KestrinCore/Message.h"

namespace kestrin {

using message::localized;

std::string ProjectFormatError::errorDescription() const {
    return std::visit(
        Overloaded{
            [](const WrongFormat& error) {
                return localized("projectFormatErrorWrongFormat",
                                 "This isn’t a Kestrin project. Its manifest is for “{format}”.",
                                 {{"format", error.format}});
            },
            [](const NewerSchemaVersion&) {
                return localized(
                    "projectFormatErrorNewerSchemaVersion",
                    "This project was saved by a newer version of Kestrin. Update Kestrin to open it.");
            },
            [](const CorruptFile& error) {
                return localized("projectFormatErrorCorruptFile", "This project’s file “{path}” is damaged.",
                                 {{"path", error.path}});
            },
            [](const NotAPackage&) {
                return localized("projectFormatErrorNotAPackage",
                                 "This file isn’t a Kestrin project package.");
            },
            [](const MissingManifest&) {
                return localized("projectFormatErrorMissingManifest",
                                 "This project is missing its Kestrin.json manifest.");
            },
            [](const CorruptManifest&) {
                return localized("projectFormatErrorCorruptManifest",
                                 "This project’s Kestrin.json manifest is damaged.");
            },
            [](const InvalidSchemaVersion&) {
                return localized("projectFormatErrorInvalidSchemaVersion",
                                 "This project’s manifest has an invalid schema version.");
            },
        },
        kind);
}

}  // namespace kestrin
