#include "KestrinModel/PackageLocation.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <system_error>

namespace kestrin {
namespace {

using std::filesystem::path;

[[noreturn]] void refuse(const path& given, std::error_code why) {
    throw FileError(FileError::Operation::write, given, why);
}

path withoutTrailingSlashes(const path& given) {
    auto text = given.native();
    while (text.size() > 1 && text.back() == '/') text.pop_back();
    return text;
}

}  // namespace

PackageLocation PackageLocation::of(const path& given) {
    PackageLocation location;
    location.given = given;
    std::error_code error;
    auto real = withoutTrailingSlashes(given);
    const auto status = std::filesystem::status(real, error);
    location.exists = std::filesystem::is_directory(status);
    if (location.exists) {
        real = std::filesystem::canonical(real, error);
    } else if (std::filesystem::exists(status)) {
        refuse(given, std::make_error_code(std::errc::not_a_directory));
    } else if (std::filesystem::is_symlink(std::filesystem::symlink_status(real))) {
        refuse(given, std::make_error_code(std::errc::no_such_file_or_directory));  // it leads nowhere
    } else if (status.type() == std::filesystem::file_type::not_found) {
        error.clear();
    }
    if (error) refuse(given, error);

    location.name = real.filename();
    const auto parent = real.has_parent_path() ? real.parent_path() : path(".");
    location.parent = files::Descriptor(open(parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!location.parent) refuse(given, std::error_code(errno, std::generic_category()));
    if (location.name.empty() || location.name == "..") {
        refuse(given, std::make_error_code(std::errc::invalid_argument));
    }
    return location;
}

}  // namespace kestrin
