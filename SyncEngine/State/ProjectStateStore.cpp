#include "SyncEngine/State/ProjectStateStore.h"

#include <cstdlib>
#include <string_view>

#include "KestrinCore/HomeFolder.h"
#include "KestrinCore/Message.h"
#include "KestrinCore/StableJSON.h"
#include "KestrinCore/UnicodeText.h"

namespace kestrin {
namespace {

namespace fs = std::filesystem;

constexpr const char* kBase = "base.json";
constexpr const char* kRemoteIDs = "remote-ids.json";
constexpr const char* kRemoteAssets = "remote-assets.json";
constexpr const char* kRefData = "refdata.json";

// Far above what a listing can come to, so that a file from elsewhere can't exhaust the memory.
constexpr std::uintmax_t kMaximumFileSize = 256u << 20;

// Not open when there is no such file.
files::Descriptor openIfThere(const fs::path& file) {
    try {
        return files::openRegular(file);
    } catch (const FileError& error) {
        if (error.reason == std::errc::no_such_file_or_directory) return {};
        throw;
    }
}

std::optional<JSONValue> read(const fs::path& file) {
    const auto opened = openIfThere(file);
    if (!opened) return std::nullopt;
    try {
        return StableJSON::decode(files::readWhole(opened, file, kMaximumFileSize));
    } catch (const DecodingError& error) {
        throw StateFileError(file, error.errorDescription());
    }
}

// The record in a file; a document of another shape is the file's fault too.
template <class Decode>
auto decoded(const fs::path& file, Decode&& decode) -> std::optional<decltype(decode(JSONValue()))> {
    const auto value = read(file);
    if (!value) return std::nullopt;
    try {
        return decode(*value);
    } catch (const DecodingError& error) {
        throw StateFileError(file, error.errorDescription());
    }
}

void write(const fs::path& file, const JSONValue& value) {
    files::createFolders(file.parent_path());
    files::writeAtomically(file, StableJSON::encode(value));
}

// An object of these members, which are in ascending byte order of their names. They are encoded one by one: a document
// of all assets of a large listing takes ten times the memory of the listing itself.
template <class Members, class Encode>
void writeMembers(const fs::path& file, const Members& members, Encode&& encode) {
    files::createFolders(file.parent_path());
    files::writeAtomically(file, [&](const files::TakePiece& take) {
        StableJSON::ObjectWriter object(take);
        for (const auto& [name, value] : members) object.add(name, encode(value));
        object.finish();
    });
}

FlatValues decodeBase(const JSONValue& value) {
    const ObjectDecoder members(value);
    FlatMapBuilder<FlatValues, OfSameKey::last> values;
    for (const auto& [id, ignored] : *value.objectValue()) {
        auto text = members.string(id);
        if (const auto key = ContentKey::fromID(id)) values.add(*key, std::move(text));
    }
    return std::move(values).take();
}

KnownAssets decodeAssets(const JSONValue& value) {
    const ObjectDecoder members(value);
    KnownAssets assets;
    for (const auto& [id, ignored] : *value.objectValue()) {
        auto asset = members.optionalRecord<ASCLibraryAsset>(id);
        if (!asset) ObjectDecoder::fail(id, "expected an object");
        assets.emplace(id, *std::move(asset));
    }
    return assets;
}

fs::path home() {
    if (auto folder = homeFolder()) return *std::move(folder);
    throw FileError(FileError::Operation::read, "~",
                    std::make_error_code(std::errc::no_such_file_or_directory));
}

void removeFile(const fs::path& file) {
    std::error_code error;
    fs::remove(file, error);
    if (error) throw FileError(FileError::Operation::remove, file, error);
}

fs::path fileOf(const fs::path& root, const UUID& id, const char* name) {
    return root / id.text() / name;
}

}  // namespace

std::string StateFileError::errorDescription() const {
    return message::localized(
        "stateFileErrorDamaged",
        "The state file “{path}” is damaged. Remove it and pull again to make a new one.",
        {{"path", text::repaired(path.native())}});
}

ProjectStateStore ProjectStateStore::commandLine() {
    return ProjectStateStore(home() / ".kestrin" / "state");
}

ProjectStateStore ProjectStateStore::application() {
    const char* data = std::getenv("XDG_DATA_HOME");
    const bool isSet = data && fs::path(data).is_absolute();
    return ProjectStateStore((isSet ? fs::path(data) : home() / ".local" / "share") / "Kestrin" / "Projects");
}

std::optional<FlatValues> ProjectStateStore::base(const UUID& id) const {
    return decoded(fileOf(root, id, kBase), decodeBase);
}

void ProjectStateStore::saveBase(const FlatValues& values, const UUID& id) const {
    std::map<std::string_view, std::string_view> byID;
    for (const auto& [key, value] : values) byID.insert_or_assign(key.id(), value);
    writeMembers(fileOf(root, id, kBase), byID, [](std::string_view value) { return JSONValue(value); });
}

std::optional<RemoteIDs> ProjectStateStore::remoteIDs(const UUID& id) const {
    return decoded(fileOf(root, id, kRemoteIDs), RemoteIDs::fromJSON);
}

void ProjectStateStore::saveRemoteIDs(const RemoteIDs& ids, const UUID& id) const {
    write(fileOf(root, id, kRemoteIDs), ids.toJSON());
}

KnownAssets ProjectStateStore::remoteAssets(const UUID& id) const {
    return decoded(fileOf(root, id, kRemoteAssets), decodeAssets).value_or(KnownAssets{});
}

void ProjectStateStore::saveRemoteAssets(const KnownAssets& assets, const UUID& id) const {
    writeMembers(fileOf(root, id, kRemoteAssets), assets,
                 [](const ASCLibraryAsset& asset) { return asset.toJSON(); });
}

std::optional<AssetLibraryRefData> ProjectStateStore::refData() const {
    return decoded(root / kRefData, AssetLibraryRefData::fromJSON);
}

void ProjectStateStore::saveRefData(const AssetLibraryRefData& data) const {
    write(root / kRefData, data.toJSON());
}

ProjectStateStore::Earlier ProjectStateStore::keep(const UUID& id) const {
    Earlier earlier;
    for (const char* name : {kBase, kRemoteIDs, kRemoteAssets}) {
        earlier.emplace(name, openIfThere(fileOf(root, id, name)));
    }
    return earlier;
}

void ProjectStateStore::restore(const Earlier& earlier, const UUID& id) const {
    for (const auto& [name, kept] : earlier) {
        const auto file = fileOf(root, id, name.c_str());
        if (!kept) {
            removeFile(file);
        } else if (!files::areSameFile(kept, openIfThere(file))) {
            files::copyAtomically(kept, file, file);
        }
    }
    std::error_code isInUse;
    fs::remove(root / id.text(), isInUse);
}

}  // namespace kestrin
