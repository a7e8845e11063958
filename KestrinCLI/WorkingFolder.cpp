#include "KestrinCLI/WorkingFolder.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace kestrin {

void findWorkingFolderAgain() {
    std::error_code gone;
    if (!std::filesystem::current_path(gone).empty()) return;
    const char* place = std::getenv("PWD");
    if (place && *place == '/') std::filesystem::current_path(place, gone);
}

}  // namespace kestrin
