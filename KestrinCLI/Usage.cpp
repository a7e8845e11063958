#include "KestrinCLI/Usage.h"

namespace kestrin {

const std::string_view usageText =
    R"(usage: kestrin <command> [arguments]

commands:
  pull <project.kestrin> [--bundle-id ID] [--take-remote]
                                 Pull the live listing into a project (creates it if needed).
                                 Conflicts keep the local text unless --take-remote.
  diff <project.kestrin>      Show what differs from App Store Connect (exits 1 if anything does)
  push <project.kestrin> [--yes] [--include-conflicts] [--locales a,b]
                                 Push local changes, then read them back to verify
  verify <project.kestrin>    Check App Store Connect matches the project (exits 1 if not)
  check <project.kestrin>     Report fields over App Store Connect's limits
  build upload <project> <file.ipa|.pkg> [--version V --build N]
                                 Upload a build and wait for App Store Connect to process it
  build list <project> [--platform IOS]
                                 List builds for the platform's current version
  build attach <project> <build number> [--platform IOS] [--encryption yes|no]
                                 Make a processed build the one the version ships
  version create <project> <version> [--platform IOS]
                                 Add a new App Store version (then pull to bring it in)
  submit <project> [--platform IOS] [--check] [--yes]
                                 Check the version is ready and send it to App Review
  pages <project.kestrin>     List custom product pages and optimization tests, with their states
  page submit <project> <page> [--yes]
                                 Send a custom product page to App Review
  test submit <project> <test> [--yes]
                                 Send an optimization test to App Review
  test start <project> <test> [--yes]
                                 Start an approved optimization test
  import fastlane <dir> --into <project.kestrin> [--bundle-id ID]
                                 Import a fastlane deliver metadata folder
  export fastlane <project.kestrin> --to <dir> [--platform IOS] [--download-screenshots]
                                 Write the listing out as a fastlane deliver folder
  inspect <project.kestrin>   Print a project's manifest
  apps                           List the apps the API key can see
  refdata dump                   Print App Asset Library reference data (raw JSON)
  api GET <path?query>           Print one raw API response (read-only, for debugging)
  version                        Print the project format version
)";

void printUsage(Console& console) {
    console.write(usageText);
}

}  // namespace kestrin
