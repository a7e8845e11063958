#include "KestrinModel/PackageFolder.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "KestrinCore/Error.h"
#include "KestrinCore/UnicodeText.h"
#include "KestrinModel/PackageTooLargeError.h"

namespace kestrin {
namespace {

using Folder = std::unique_ptr<PackageFolder>;

// Which of several spellings of a name is meant: the lowest.
int spellingRank(const std::string& name) {
    if (!text::isValidUTF8(name)) return 2;
    return name == text::toNFC(name) ? 0 : 1;
}

// Throws for what contents() of the copy would.
std::uintmax_t sizeOfReadableFile(const std::filesystem::path& path) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (error) throw FileError(FileError::Operation::read, path, error);
    if (std::filesystem::is_directory(status)) {
        throw FileError(FileError::Operation::read, path, std::make_error_code(std::errc::is_a_directory));
    }
    if (!std::filesystem::is_regular_file(status)) {
        throw FileError(FileError::Operation::read, path, std::make_error_code(std::errc::invalid_argument));
    }
    if (!files::isReadable(path)) {
        throw FileError(FileError::Operation::read, path, std::make_error_code(std::errc::permission_denied));
    }
    const auto size = std::filesystem::file_size(path, error);
    if (error) throw FileError(FileError::Operation::read, path, error);
    return size;
}

}  // namespace

PackageFolder::PackageFolder(std::unique_ptr<DiskFolder> disk) : disk_(std::move(disk)) {}

PackageFolder::PackageFolder(std::unique_ptr<DiskFolder> disk, std::string path, ByteCount set)
    : disk_(std::move(disk)), path_(std::move(path)), set_(std::move(set)) {}

bool PackageFolder::SpellingLess::operator()(const std::string& a, const std::string& b) const {
    if (a == b) return false;
    const auto order = text::compare(a, b);
    if (order != 0) return order < 0;
    const int rankOfA = spellingRank(a);
    const int rankOfB = spellingRank(b);
    return rankOfA != rankOfB ? rankOfA < rankOfB : a < b;
}

void PackageFolder::list() const {
    if (isListed_ || !disk_) return;
    for (auto& entry : disk_->entries()) {
        switch (entry.kind) {
            case DiskEntries::Kind::file:
                children_.emplace(std::move(entry.name), OnDisk{});
                break;
            case DiskEntries::Kind::folder: {
                auto path = pathOf(entry.name);
                auto disk = std::make_unique<DiskFolder>(*disk_, entry.name, path);
                children_.emplace(std::move(entry.name),
                                  Folder(new PackageFolder(std::move(disk), std::move(path), set_)));
                break;
            }
            case DiskEntries::Kind::other:
                children_.emplace(std::move(entry.name), Special{});
                break;
        }
    }
    isListed_ = true;
}

const PackageFolder::Children& PackageFolder::children() const {
    list();
    return children_;
}

PackageFolder::Children::iterator PackageFolder::find(std::string_view name) const {
    list();
    if (!text::isValidUTF8(name)) return children_.find(std::string(name));
    const auto child = children_.lower_bound(text::toNFC(name));
    if (child == children_.end() || !text::equal(child->first, name)) return children_.end();
    return text::isValidUTF8(child->first) ? child : children_.end();
}

bool PackageFolder::isMeant(Children::const_iterator child) const {
    return find(child->first) == child;
}

bool PackageFolder::isEmpty() const {
    return children().empty();
}

bool PackageFolder::contains(std::string_view name) const {
    const auto child = find(name);
    return child != children_.end() && !std::holds_alternative<Special>(child->second);
}

bool PackageFolder::containsAny(std::string_view name) const {
    return find(name) != children_.end();
}

bool PackageFolder::hasFile(std::string_view name) const {
    return contains(name) && !folder(name);
}

const PackageFolder* PackageFolder::folder(std::string_view name) const {
    const auto child = find(name);
    const auto* folder = child == children_.end() ? nullptr : std::get_if<Folder>(&child->second);
    return folder ? folder->get() : nullptr;
}

PackageFolder* PackageFolder::folder(std::string_view name) {
    return const_cast<PackageFolder*>(std::as_const(*this).folder(name));
}

std::optional<std::string> PackageFolder::contents(std::string_view name) const {
    const auto child = find(name);
    if (child == children_.end()) return std::nullopt;
    if (std::holds_alternative<OnDisk>(child->second)) return disk_->contents(child->first, kMaximumFileSize);
    const auto* file = std::get_if<New>(&child->second);
    if (!file) return std::nullopt;
    if (const auto* source = std::get_if<std::filesystem::path>(&file->content)) {
        return files::readWhole(*source, kMaximumFileSize);
    }
    return std::get<std::string>(file->content);
}

template <class Kind>
std::vector<std::string> PackageFolder::namesOf() const {
    std::vector<std::string> names;
    list();
    for (auto child = children_.begin(); child != children_.end(); ++child) {
        if (std::holds_alternative<Kind>(child->second) && isMeant(child)) names.push_back(child->first);
    }
    return names;
}

std::vector<std::string> PackageFolder::folderNames() const {
    return namesOf<Folder>();
}

std::vector<std::string> PackageFolder::fileNames() const {
    auto names = namesOf<OnDisk>();
    const auto added = namesOf<New>();
    const auto middle = static_cast<std::ptrdiff_t>(names.size());
    names.insert(names.end(), added.begin(), added.end());
    std::inplace_merge(names.begin(), names.begin() + middle, names.end(), SpellingLess());
    return names;
}

std::string PackageFolder::pathOf(std::string_view name) const {
    return path_.empty() ? std::string(name) : path_ + "/" + std::string(name);
}

void PackageFolder::put(std::string_view name, std::variant<std::string, std::filesystem::path> content) {
    changed_ = true;
    const auto child = find(name);
    if (child == children_.end()) {
        children_.emplace(name, New{std::move(content)});
        return;
    }
    const auto* added = std::get_if<New>(&child->second);
    const bool replacesFile = added ? added->replacesFile : std::holds_alternative<OnDisk>(child->second);
    child->second = New{std::move(content), replacesFile};
}

void PackageFolder::setFile(std::string_view name, std::string bytes) {
    if (bytes.size() > kMaximumFileSize) throw FileTooLargeError(pathOf(name), kMaximumFileSize);
    *set_ += bytes.size();
    if (*set_ > kMaximumTotalSize) throw PackageTooLargeError(kMaximumTotalSize);
    const auto child = find(name);
    if (child != children_.end()) {
        if (std::holds_alternative<OnDisk>(child->second) && disk_->holds(child->first, bytes)) return;
        const auto* added = std::get_if<New>(&child->second);
        const auto* present = added ? std::get_if<std::string>(&added->content) : nullptr;
        if (present && *present == bytes) return;
    }
    put(name, std::move(bytes));
}

PackageFolder& PackageFolder::directory(std::string_view name) {
    if (auto* existing = folder(name)) return *existing;
    changed_ = true;
    auto child = find(name);
    if (child == children_.end()) child = children_.emplace(name, Special{}).first;
    child->second = Folder(new PackageFolder(nullptr, pathOf(name), set_));
    return *std::get<Folder>(child->second);
}

bool PackageFolder::hasSameSize(Children::const_iterator child, std::uintmax_t size) const {
    if (std::holds_alternative<OnDisk>(child->second)) {
        return static_cast<std::uintmax_t>(disk_->status(child->first).st_size) == size;
    }
    const auto* added = std::get_if<New>(&child->second);
    if (!added) return false;
    if (const auto* bytes = std::get_if<std::string>(&added->content)) return bytes->size() == size;
    return sizeOfReadableFile(std::get<std::filesystem::path>(added->content)) == size;
}

void PackageFolder::addFile(std::string_view name, const std::filesystem::path& source) {
    const auto size = sizeOfReadableFile(source);
    const auto child = find(name);
    if (child != children_.end() && hasSameSize(child, size)) return;
    put(name, source);
}

void PackageFolder::remove(std::string_view name) {
    if (!contains(name)) return;
    children_.erase(find(name));
    changed_ = true;
}

void PackageFolder::removeFolders(
    const std::function<bool(const std::string& name, PackageFolder& folder)>& isStale) {
    list();
    const auto removed = std::erase_if(children_, [&](const auto& child) {
        const auto* folder = std::get_if<Folder>(&child.second);
        return folder && isStale(child.first, **folder);
    });
    changed_ = changed_ || removed > 0;
}

void PackageFolder::removeAll(const std::function<bool(const std::string& name)>& isStale) {
    list();
    const auto removed = std::erase_if(children_, [&](const auto& child) {
        return !std::holds_alternative<Special>(child.second) && isStale(child.first);
    });
    changed_ = changed_ || removed > 0;
}

bool PackageFolder::isChanged() const {
    if (changed_) return true;
    return std::any_of(children_.begin(), children_.end(), [](const auto& child) {
        const auto* folder = std::get_if<Folder>(&child.second);
        return folder && (*folder)->isChanged();
    });
}

}  // namespace kestrin
