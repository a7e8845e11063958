#include "SyncEngine/Release/BuildUploader.h"

#include <sys/stat.h>

#include "ASCKit/Resources/BuildUploads.h"
#include "AssetPipeline/MediaHash.h"
#include "KestrinCore/FileError.h"
#include "KestrinCore/UnicodeText.h"
#include "SyncEngine/Release/BuildUploadError.h"

namespace kestrin {
namespace {

using Progress = BuildUploadProgress;

const char* typeIdentifier(BuildArchiveInfo::Kind kind) {
    return kind == BuildArchiveInfo::Kind::pkg ? "com.apple.pkg" : "com.apple.ipa";
}

std::string nameOf(const std::filesystem::path& file) {
    return text::repaired(file.filename().native());
}

// A file that stays as it is as long as it is sent: the digest is of the whole, the parts are read one by one over
// minutes, and the service takes whatever comes.
class UnchangedFile {
 public:
    // `size` is what the file had when it was inspected.
    UnchangedFile(const std::filesystem::path& path, std::int64_t size) : path_(path), seen_(status()) {
        if (seen_.st_size != size) fail();
    }

    // BuildUploadError when another program has written to it or replaced it; FileError when it is gone.
    void check() const {
        const auto now = status();
        const bool isTheSame = now.st_dev == seen_.st_dev && now.st_ino == seen_.st_ino &&
                               now.st_size == seen_.st_size && isEqual(now.st_mtim, seen_.st_mtim);
        if (!isTheSame) fail();
    }

 private:
    struct stat status() const {
        struct stat found {};
        if (stat(path_.c_str(), &found) != 0) throw FileError::fromErrno(FileError::Operation::read, path_);
        return found;
    }

    static bool isEqual(const timespec& a, const timespec& b) {
        return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
    }

    [[noreturn]] void fail() const { throw BuildUploadError(BuildUploadError::FileChanged{nameOf(path_)}); }

    const std::filesystem::path& path_;
    struct stat seen_;
};

}  // namespace

BuildUploadResult BuildUploader::upload(const std::filesystem::path& file, const BuildArchiveInfo& info,
                                        const std::string& appID, const OnProgress& onProgress) {
    const auto shortVersion = info.shortVersion.value_or(""), buildVersion = info.buildVersion.value_or("");
    if (shortVersion.empty() || buildVersion.empty())
        throw BuildUploadError(BuildUploadError::MissingVersions{});

    onProgress({Progress::Hashing{}});
    const UnchangedFile unchanged(file, info.fileSize);
    const auto md5 = MediaHash::md5(file);
    unchanged.check();

    onProgress({Progress::Reserving{}});
    const auto upload = ASC::createBuildUpload(client_, {.appID = appID,
                                                         .shortVersion = shortVersion,
                                                         .buildVersion = buildVersion,
                                                         .platform = info.platform});
    const auto reserved = ASC::reserveBuildUploadFile(client_, {.uploadID = upload.id,
                                                                .fileName = nameOf(file),
                                                                .fileSize = info.fileSize,
                                                                .uti = typeIdentifier(info.kind)});
    const auto& parts = reserved.operations;
    if (parts.empty()) throw BuildUploadError(BuildUploadError::NoUploadOperations{});

    const auto tell = [&](std::size_t part) { onProgress({Progress::Sending{part, parts.size()}}); };
    try {
        ASC::upload(client_, parts, UploadSource::file(file),
                    {.before = tell, .after = [&](std::size_t) { unchanged.check(); }});
    } catch (const Error&) {
        unchanged.check();  // a cut file fails in a way that tells nobody why
        throw;
    }
    onProgress({Progress::Sending{parts.size(), parts.size()}});
    onProgress({Progress::Committing{}});
    ASC::commitBuildUploadFile(client_, reserved.id, md5);
    return waitForBuild(upload.id, onProgress);
}

BuildUploadResult BuildUploader::waitForBuild(const std::string& uploadID, const OnProgress& onProgress) {
    for (Seconds elapsed{0};; elapsed += patience_.pollInterval) {
        const auto upload = ASC::buildUpload(client_, uploadID);
        const auto state = upload ? upload->state.value_or("") : "";
        onProgress({Progress::Processing{state}});
        if (state == "FAILED") throw BuildUploadError(BuildUploadError::Rejected{upload->errors});
        if (state == "COMPLETE") return {uploadID, upload->buildID, upload->warnings};
        if (elapsed >= patience_.timeout) throw BuildUploadError(BuildUploadError::StillProcessing{uploadID});
        sleep_(patience_.pollInterval, {});
    }
}

}  // namespace kestrin
