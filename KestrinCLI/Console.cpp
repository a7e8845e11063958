#include "KestrinCLI/Console.h"

#include <system_error>

namespace kestrin {

void Console::print(std::string_view line) {
    std::string bytes(line);
    write(bytes += '\n');
}

void Console::note(std::string_view message) {
    std::string bytes(message);
    writeError(bytes += '\n');
}

std::string OutputFailure::errorDescription() const {
    return "standard output can't be written: " + std::generic_category().message(errorNumber_);
}

}  // namespace kestrin
