#include "KestrinCLI/LocalCommands.h"

#include <fmt/format.h>

#include <algorithm>

#include "KestrinCLI/ProjectAccess.h"
#include "KestrinCLI/Wording.h"
#include "KestrinModel/ProjectFormat.h"
#include "SyncEngine/Content/ContentGraph.h"

namespace kestrin {
namespace {

std::string placeOf(const ListingIssue& issue) {
    auto place = fmt::format("{} {}", issue.locale.rawValue, rawValue(issue.field));
    return issue.platform ? issue.platform->folderName() + " " + place : place;
}

std::string describe(const ListingIssue::Kind& kind) {
    return std::visit(Overloaded{
                          [](const ListingIssue::OverLimit& issue) {
                              return fmt::format("{} characters, limit {}", issue.count.graphemes,
                                                 issue.limit);
                          },
                          [](const ListingIssue::OverLimitInUTF16Only& issue) {
                              return fmt::format("{} characters but {} UTF-16 units, limit {} (verify)",
                                                 issue.count.graphemes, issue.count.utf16, issue.limit);
                          },
                          [](const ListingIssue::DuplicateKeywords& issue) {
                              return "duplicate keywords " + commaList(issue.keywords);
                          },
                      },
                      kind);
}

bool isOverLimit(const ListingIssue& issue) {
    return std::holds_alternative<ListingIssue::OverLimit>(issue.kind);
}

}  // namespace

std::string describe(const ListingIssue& issue) {
    return placeOf(issue) + ": " + describe(issue.kind);
}

int LocalCommands::check(const Arguments& args, Console& console) {
    const auto issues = ListingValidator::issues(loadProject(args[1]));
    for (const auto& issue : issues) console.print(describe(issue));
    if (issues.empty()) {
        console.print("No issues.");
        return 0;
    }
    const auto overLimit = std::count_if(issues.begin(), issues.end(), isOverLimit);
    console.print(fmt::format("{} issues, {} over a limit.", issues.size(), overLimit));
    return overLimit == 0 ? 0 : 1;
}

int LocalCommands::inspect(const Arguments& args, Console& console) {
    const auto project = loadProject(args[1]);
    const auto& manifest = project.manifest;
    const auto& bundleID = manifest.app.bundleID;
    console.print("project:   " + manifest.projectID.text());
    console.print("bundle ID: " + (bundleID.empty() ? "(not set)" : bundleID));
    console.print("app ID:    " + manifest.app.ascAppID.value_or("(not bound)"));
    console.print("platforms: " + commaList(manifest.platforms));
    console.print("locales:   " + commaList(manifest.locales));
    console.print(fmt::format("fields:    {}", ContentGraph::flatten(project).size()));
    return 0;
}

int LocalCommands::version(const Arguments&, Console& console) {
    console.print(
        fmt::format("{} schema {}", ProjectFormat::identifier, ProjectFormat::currentSchemaVersion));
    return 0;
}

}  // namespace kestrin
