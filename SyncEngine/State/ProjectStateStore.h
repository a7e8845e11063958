// What is remembered about a project between runs, outside its package: the last agreed values, the service's
// identifiers, and the assets seen.
//
//   {root}/{projectID}/base.json           the values that both sides last agreed on, by ContentKey id
//   {root}/{projectID}/remote-ids.json     RemoteIDs
//   {root}/{projectID}/remote-assets.json  library assets by id
//   {root}/refdata.json                    AssetLibraryRefData, shared by all projects
//
// Files are stable JSON, replaced atomically one by one and never together: a failure in between leaves one newer
// than another, which the next pull mends. A project without a snapshot is met as for the first time, so deleting
// the folder costs a new first pull and nothing worse. There are no locks: of two runs at once the last one wins,
// file by file.
//
// A missing file is absent, not an error. One that can't be read is a FileError, one that isn't what it should be a
// StateFileError that names it; it stays as it is until the user removes it.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "ASCKit/Resources/AssetLibraryRefData.h"
#include "KestrinCore/Error.h"
#include "KestrinCore/Files.h"
#include "KestrinCore/UUID.h"
#include "SyncEngine/Content/ContentGraph.h"
#include "SyncEngine/Remote/RemoteListing.h"

namespace kestrin {

class StateFileError : public Error {
 public:
    StateFileError(std::filesystem::path where, std::string what)
        : path(std::move(where)), problem(std::move(what)) {}
    std::string errorDescription() const override;

    std::filesystem::path path;
    std::string problem;  // the decoder's words, for whoever debugs
};

class ProjectStateStore {
 public:
    explicit ProjectStateStore(std::filesystem::path folder) : root(std::move(folder)) {}

    // The command line's: ".kestrin/state" in the home folder. FileError where there is no home folder.
    static ProjectStateStore commandLine();
    // For a front end with windows: "Kestrin/Projects" in the folder for application data (XDG_DATA_HOME).
    static ProjectStateStore application();

    // Absent: there is no snapshot, which isn't the same as an empty one. Entries whose key doesn't parse are left
    // out: a newer version may have kinds of values that this one doesn't know.
    std::optional<FlatValues> base(const UUID& id) const;
    void saveBase(const FlatValues& values, const UUID& id) const;

    std::optional<RemoteIDs> remoteIDs(const UUID& id) const;
    void saveRemoteIDs(const RemoteIDs& ids, const UUID& id) const;

    KnownAssets remoteAssets(const UUID& id) const;  // a missing file has none
    void saveRemoteAssets(const KnownAssets& assets, const UUID& id) const;

    std::optional<AssetLibraryRefData> refData() const;
    void saveRefData(const AssetLibraryRefData& data) const;

    // The files of a project by their names, not open for one that isn't there. A caller that saves something else
    // after the state keeps them first, and puts them back when that fails: a snapshot that is newer than the
    // package would make every remote change since look like an edit of the package. As files are replaced and never
    // written into, one that is open stays what it was, and costs no memory however large it is.
    using Earlier = std::map<std::string, files::Descriptor>;
    Earlier keep(const UUID& id) const;
    // Puts back what was replaced since. Throws FileError where that can't be written.
    void restore(const Earlier& earlier, const UUID& id) const;

    std::filesystem::path root;
};

}  // namespace kestrin
