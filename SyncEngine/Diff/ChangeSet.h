// What differs between a project and App Store Connect, and what each difference means.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "SyncEngine/Content/ContentKey.h"

namespace kestrin {

// One differing value, seen from both sides; "" where a side has none.
struct Change {
    ContentKey key;
    std::string remote;
    std::string local;
    bool operator==(const Change&) const = default;
};

// Why a wanted change can't be written now.
struct BlockReason {
    struct VersionNotEditable {
        std::string state;
        bool operator==(const VersionNotEditable&) const = default;
    };
    struct AppInfoNotEditable {
        std::string state;
        bool operator==(const AppInfoNotEditable&) const = default;
    };
    struct PageNotEditable {
        std::string state;
        bool operator==(const PageNotEditable&) const = default;
    };
    struct ExperimentNotEditable {
        std::string state;
        bool operator==(const ExperimentNotEditable&) const = default;
    };
    struct NoRemoteVersion {
        bool operator==(const NoRemoteVersion&) const = default;
    };
    struct LocalizationMissing {
        bool operator==(const LocalizationMissing&) const = default;
    };
    struct LocaleRemovedLocally {
        bool operator==(const LocaleRemovedLocally&) const = default;
    };
    struct PageRemovedLocally {
        bool operator==(const PageRemovedLocally&) const = default;
    };
    struct ExperimentRemovedLocally {  // a treatment too
        bool operator==(const ExperimentRemovedLocally&) const = default;
    };
    struct ExperimentPlatformFixed {
        bool operator==(const ExperimentPlatformFixed&) const = default;
    };

    std::variant<VersionNotEditable, AppInfoNotEditable, PageNotEditable, ExperimentNotEditable,
                 NoRemoteVersion, LocalizationMissing, LocaleRemovedLocally, PageRemovedLocally,
                 ExperimentRemovedLocally, ExperimentPlatformFixed>
        kind;

    bool operator==(const BlockReason&) const = default;
};

struct BlockedChange {
    using Reason = BlockReason;

    Change change;
    Reason reason;
    bool operator==(const BlockedChange&) const = default;
};

// Each list in ascending key order; no key is in two of them.
struct ChangeSet {
    std::vector<Change> changes;         // only the local side moved: push sends it
    std::vector<Change> conflicts;       // both sides moved apart: push sends it only when told to
    std::vector<Change> drift;           // only the remote side moved: pull brings it in
    std::vector<BlockedChange> blocked;  // the local side moved, but the service's state forbids the write

    bool isInSync() const { return changes.empty() && conflicts.empty() && drift.empty() && blocked.empty(); }

    // Conflicts count, since a push can be told to overwrite them.
    bool hasPushableChanges() const { return !changes.empty() || !conflicts.empty(); }

    bool operator==(const ChangeSet&) const = default;
};

}  // namespace kestrin
