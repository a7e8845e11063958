#include "KestrinCLI/ChangePrinting.h"

#include <fmt/format.h>

#include "KestrinCore/UnicodeText.h"

namespace kestrin {
namespace {

constexpr std::size_t kPreviewLength = 70;

std::string onOneLine(std::string_view text) {
    std::string line;
    for (const char c : text) {
        if (c == '\n') {
            line += "⏎ ";
        } else {
            line += c;
        }
    }
    return line;
}

std::string idsOf(const PushStep& step) {
    std::string ids;
    for (const auto& key : step.keys) {
        if (!ids.empty()) ids += ", ";
        ids += key.id();
    }
    return ids;
}

}  // namespace

std::string preview(std::string_view text) {
    if (text.empty()) return "(empty)";
    auto line = onOneLine(text);
    const auto characters = text::graphemes(line);
    if (characters.size() <= kPreviewLength) return line;
    std::string cut;
    for (std::size_t i = 0; i + 1 < kPreviewLength; ++i) cut += characters[i];
    return cut + "…";
}

void printChanges(std::string_view title, const std::vector<Change>& changes, Console& console) {
    if (changes.empty()) return;
    console.print(fmt::format("{} ({}):", title, changes.size()));
    for (const auto& change : changes) {
        console.print("  " + change.key.id());
        console.print("    - " + preview(change.remote));
        console.print("    + " + preview(change.local));
    }
}

void printChangeSet(const ChangeSet& set, Console& console) {
    printChanges("To push", set.changes, console);
    printChanges("Conflicts: changed here and in App Store Connect", set.conflicts, console);
    printChanges("Changed in App Store Connect (pull to bring in)", set.drift, console);
    if (set.blocked.empty()) return;
    console.print(fmt::format("Can't push ({}):", set.blocked.size()));
    for (const auto& blocked : set.blocked) {
        console.print("  " + blocked.change.key.id() + ": " + describe(blocked.reason));
    }
}

std::string describe(const BlockReason& reason) {
    return std::visit(
        Overloaded{
            [](const BlockReason::VersionNotEditable& r) {
                return "the version is " + r.state + "; only promotional text can change";
            },
            [](const BlockReason::AppInfoNotEditable& r) { return "the app info is " + r.state; },
            [](const BlockReason::PageNotEditable& r) {
                return "the page's version is " + r.state + "; changing it needs a new version of the page";
            },
            [](const BlockReason::ExperimentNotEditable& r) {
                return "the test is " + r.state + " and can't change any more";
            },
            [](const BlockReason::NoRemoteVersion&) {
                return std::string("App Store Connect has no version for this platform");
            },
            [](const BlockReason::LocalizationMissing&) {
                return std::string("the locale has no localization in App Store Connect; add its text first");
            },
            [](const BlockReason::LocaleRemovedLocally&) {
                return std::string("the locale was removed here; Kestrin never deletes localizations");
            },
            [](const BlockReason::PageRemovedLocally&) {
                return std::string("the page was removed here; Kestrin never deletes pages");
            },
            [](const BlockReason::ExperimentRemovedLocally&) {
                return std::string("removed here; Kestrin never deletes tests or treatments");
            },
            [](const BlockReason::ExperimentPlatformFixed&) {
                return std::string("a test's platform is set when it's created");
            },
        },
        reason.kind);
}

std::string describe(const PushStep& step) {
    if (const auto* asset = std::get_if<PushStep::EnsureAsset>(&step.action)) {
        return "upload " + asset->path + " (or reuse it if already uploaded)";
    }
    if (const auto* place = std::get_if<PushStep::PlaceMedia>(&step.action)) {
        return fmt::format("place {} item(s) in {}", place->placement.desired.size(), idsOf(step));
    }
    return (step.isCreate() ? "create " : "update ") + idsOf(step);
}

}  // namespace kestrin
