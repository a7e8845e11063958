#include "SyncEngine/Release/Releaser.h"

#include "KestrinCore/MapLookup.h"
#include "SyncEngine/Pull/ConnectedApp.h"
#include "SyncEngine/Push/ProjectPusher.h"
#include "SyncEngine/Release/ReleaseError.h"

namespace kestrin {
namespace {

constexpr int kConflict = 409;
constexpr const char* kReviewDetails = "appStoreReviewDetails";

std::optional<std::string> nonEmpty(const std::optional<std::string>& text) {
    return text && !text->empty() ? text : std::nullopt;
}

// The error, and in front of what it says these reasons: why a version wasn't taken explains why the submission that
// lacks it can't be sent, which by itself says only that.
ASCError withReasons(const std::vector<APIErrorItem>& reasons, const ASCError& error) {
    const auto* http = error.as<ASCError::HTTP>();
    if (!http) return error;
    auto explained = *http;
    explained.errors.insert(explained.errors.begin(), reasons.begin(), reasons.end());
    return ASCError(std::move(explained));
}

const RemoteVersion& versionIn(const RemoteIDs& ids, const StorePlatform& platform) {
    const auto* version = valueIn(ids.versions, platform);
    if (!version) throw ReleaseError(ReleaseError::NoVersion{platform});
    return *version;
}

}  // namespace

std::vector<ASCBuild> Releaser::candidateBuilds(const std::string& appID,
                                                const std::optional<std::string>& versionString,
                                                const StorePlatform& platform) {
    return ASC::builds(client_,
                       {.appID = appID, .versionString = versionString, .platform = platform.rawValue});
}

void Releaser::attach(const ASCBuild& build, const StorePlatform& platform, const Project& project,
                      std::optional<bool> usesNonExemptEncryption) {
    const auto version = knownVersion(platform, project);
    if (!build.usesNonExemptEncryption && usesNonExemptEncryption) {
        ASC::setUsesNonExemptEncryption(client_, *usesNonExemptEncryption, build.id);
    }
    ASC::attachBuild(client_, build.id, version.id);
}

ASCAppStoreVersion Releaser::createVersion(const Project& project, const StorePlatform& platform,
                                           const std::string& versionString) {
    const auto& content = project[platform].version;
    return ASC::createAppStoreVersion(client_, {.appID = connectedAppID(project),
                                                .platform = platform.rawValue,
                                                .versionString = versionString,
                                                .copyright = nonEmpty(content.copyright),
                                                .releaseType = nonEmpty(content.releaseType)});
}

void Releaser::setDemoAccountPassword(const std::string& password, const StorePlatform& platform,
                                      const Project& project) {
    const auto version = knownVersion(platform, project);
    const JSONObject attributes{{"demoAccountPassword", password}};
    if (version.reviewDetailID) {
        ASC::update(client_,
                    {.type = kReviewDetails, .id = *version.reviewDetailID, .attributes = attributes});
    } else {
        ASC::create(
            client_,
            {.type = kReviewDetails,
             .attributes = attributes,
             .relationships = {{"appStoreVersion", ASC::relationship("appStoreVersions", version.id)}}});
    }
}

Preflight Releaser::preflight(const Project& project, const StorePlatform& platform,
                              const MediaLocator& locate) {
    auto review = ProjectPusher(client_, stateStore_).review(project, locate);
    const auto* version = valueIn(review.remote.ids.versions, platform);
    const auto build = version && version->buildID ? ASC::build(client_, *version->buildID) : std::nullopt;
    auto items = SubmissionPreflight::check(project, platform, review, build);
    return {std::move(items), std::move(review)};
}

std::optional<ASCReviewSubmission> Releaser::submit(const Project& project, const StorePlatform& platform,
                                                    const PushReview& review,
                                                    const std::vector<PreflightItem>& items) {
    if (SubmissionPreflight::hasFailed(items)) throw ReleaseError(ReleaseError::PreflightFailed{});
    const auto& appID = connectedAppID(project);
    const auto& version = versionIn(review.remote.ids, platform);
    auto submission = ASC::openReviewSubmission(client_, appID, platform.rawValue);
    if (!submission) submission = ASC::createReviewSubmission(client_, appID, platform.rawValue);
    const auto refusal = addVersion(version.id, submission->id);
    try {
        return ASC::submitReviewSubmission(client_, submission->id);
    } catch (const ASCError& error) {
        throw withReasons(refusal, error);
    }
}

RemoteVersion Releaser::knownVersion(const StorePlatform& platform, const Project& project) const {
    return versionIn(stateStore_.remoteIDs(project.manifest.projectID).value_or(RemoteIDs{}), platform);
}

std::vector<APIErrorItem> Releaser::addVersion(const std::string& versionID,
                                               const std::string& submissionID) {
    try {
        ASC::addToReviewSubmission(client_, submissionID,
                                   {ReviewSubmissionItem::Kind::appStoreVersion, versionID});
        return {};
    } catch (const ASCError& error) {
        const auto* http = error.as<ASCError::HTTP>();
        if (!http || http->status != kConflict) throw;
        return http->errors;
    }
}

}  // namespace kestrin
