// From the reservation of an upload to the build that comes of it.
#include "Tests/Sandbox/SandboxFixture.h"

namespace kestrin::sandbox {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string kPackage = "PK\x03\x04" + std::string(2496, 'x');
// Of kPackage, by md5sum and sha256sum.
constexpr const char* kMD5 = "de61923751e9f6c286bde05ba98635c4";
constexpr const char* kSHA256 = "8ec1f012f65cea1a725cec5b5dfa0ab7f3a560821f43e492d811904e1a6c07e2";

class BuildUploads : public SandboxFixture {
 protected:
    BuildUploads() : SandboxFixture(smallParts()) {}

    Received create(const Json& attributes) {
        return post("/v1/buildUploads", createBody("buildUploads", attributes, {{"app", {"apps", kApp}}}));
    }
    std::string made(const std::string& version = "2.4", const std::string& number = "250") {
        return create({{"cfBundleShortVersionString", version},
                       {"cfBundleVersion", number},
                       {"platform", "IOS"}})
            .json["data"]["id"];
    }
    Received reserve(const std::string& upload, const Json& changes = Json::object()) {
        Json attributes{{"assetType", "ASSET"},
                        {"fileName", "Tide.ipa"},
                        {"fileSize", kPackage.size()},
                        {"uti", "com.apple.ipa"}};
        attributes.update(changes);
        return post("/v1/buildUploadFiles",
                    createBody("buildUploadFiles", attributes, {{"buildUpload", {"buildUploads", upload}}}));
    }
    Received commit(const Received& reserved,
                    const Json& checksums = {{"file", {{"algorithm", "MD5"}, {"hash", kMD5}}}}) {
        const auto id = reserved.json["data"]["id"].get<std::string>();
        return patch(
            "/v1/buildUploadFiles/" + id,
            updateBody("buildUploadFiles", id, {{"uploaded", true}, {"sourceFileChecksums", checksums}}));
    }
    // {"state", "errors", …}
    Json read(const std::string& upload) {
        return get("/v1/buildUploads/" + upload + "?include=build").attributes()["state"];
    }
    // The state once it is neither waiting nor under way.
    Json outcome(const std::string& upload) {
        for (int i = 0; i < 10; ++i) {
            const auto state = read(upload);
            if (state["state"] != "PROCESSING") return state;
        }
        ADD_FAILURE() << "still processing";
        return nullptr;
    }
    Json sent(const std::string& upload, const Json& changes = Json::object(),
              const std::string& bytes = kPackage) {
        const auto reserved = reserve(upload, changes);
        sendAll(reserved, bytes);
        EXPECT_EQ(commit(reserved, nullptr).status, 200);
        return outcome(upload);
    }
    std::vector<std::string> codes(const Json& messages) {
        std::vector<std::string> list;
        for (const auto& message : messages) list.push_back(message["code"]);
        return list;
    }
};

TEST_F(BuildUploads, BecomeABuildAfterAFewReadings) {
    const auto upload = made();
    EXPECT_EQ(read(upload)["state"], "AWAITING_UPLOAD");
    const auto reserved = reserve(upload);
    ASSERT_EQ(reserved.status, 201);
    sendAll(reserved, kPackage);
    EXPECT_EQ(read(upload)["state"], "AWAITING_UPLOAD") << "until the file is committed";
    EXPECT_EQ(commit(reserved).attributes()["assetDeliveryState"]["state"], "COMPLETE");

    EXPECT_EQ(read(upload)["state"], "PROCESSING");
    EXPECT_EQ(read(upload)["state"], "PROCESSING");
    const auto done = get("/v1/buildUploads/" + upload + "?include=build");

    const auto& state = done.attributes()["state"];
    EXPECT_EQ(state["state"], "COMPLETE");
    EXPECT_THAT(state["errors"], IsEmpty());
    EXPECT_THAT(state["warnings"], IsEmpty());
    const auto& build = done.json["included"][0];
    EXPECT_EQ(done.json["data"]["relationships"]["build"]["data"]["id"], build["id"]);
    EXPECT_EQ(build["attributes"]["version"], "250");
    EXPECT_EQ(build["attributes"]["processingState"], "PROCESSING");
    EXPECT_TRUE(build["attributes"]["usesNonExemptEncryption"].is_null());
}

TEST_F(BuildUploads, GiveABuildThatIsListedAndInTimeValid) {
    sent(made());
    const auto list = [&] {
        return get(
            "/v1/builds?filter%5Bapp%5D=1234567890&sort=-uploadedDate&include=preReleaseVersion&limit=50");
    };
    EXPECT_EQ(list().attributes()["processingState"], "PROCESSING");
    EXPECT_EQ(get("/v1/builds/" + list().ids().front()).attributes()["processingState"], "VALID");
    const auto newest = list();
    EXPECT_EQ(newest.attributes()["version"], "250");
    const auto train = newest.json["data"][0]["relationships"]["preReleaseVersion"]["data"]["id"];
    EXPECT_EQ(train, idOf("preReleaseVersions", {{"version", "2.4"}, {"platform", "IOS"}}));
}

TEST_F(BuildUploads, OpenATrainForAVersionOfWhichThereIsNoBuild) {
    EXPECT_EQ(sent(made("3.0", "300"))["state"], "COMPLETE");
    EXPECT_EQ(idOf("builds", {{"preReleaseVersion.version", "3.0"}, {"version", "300"}}).empty(), false);
}

TEST_F(BuildUploads, GiveOperationsWithPartNumbersThatCoverTheFile) {
    const auto operations = reserve(made()).attributes()["uploadOperations"];
    ASSERT_EQ(operations.size(), 3u);
    std::uint64_t end = 0;
    for (std::size_t i = 0; i < operations.size(); ++i) {
        EXPECT_EQ(operations[i]["partNumber"], i + 1);
        EXPECT_EQ(operations[i]["offset"], end);
        EXPECT_TRUE(operations[i]["expiration"].is_string());
        end += operations[i]["length"].get<std::uint64_t>();
    }
    EXPECT_EQ(end, kPackage.size());
}

struct BadAttributes {
    const char* when;
    const char* name;
    Json value;
};

TEST_F(BuildUploads, RefuseAnUploadThatLacksSomething) {
    const Json good{{"cfBundleShortVersionString", "2.4"}, {"cfBundleVersion", "250"}, {"platform", "IOS"}};
    for (const auto& row : {BadAttributes{"no version", "cfBundleShortVersionString", nullptr},
                            BadAttributes{"an empty number", "cfBundleVersion", ""},
                            BadAttributes{"no platform of theirs", "platform", "ANDROID"}}) {
        SCOPED_TRACE(row.when);
        auto attributes = good;
        attributes[row.name] = row.value;
        const auto reply = create(attributes);
        EXPECT_EQ(reply.status, 409);
        EXPECT_EQ(reply.place(), std::string("/data/attributes/") + row.name);
    }
}

TEST_F(BuildUploads, RefuseAWrongFile) {
    const auto upload = made();
    const BadAttributes rows[] = {
        {"an empty file", "fileSize", 0},       {"a size that is a text", "fileSize", "2500"},
        {"no name", "fileName", nullptr},       {"another kind of file", "uti", "public.zip-archive"},
        {"another role", "assetType", "IMAGE"}, {"an unknown attribute", "checksum", "x"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        const auto reply = reserve(upload, {{row.name, row.value}});
        EXPECT_EQ(reply.status, 409);
        EXPECT_EQ(reply.place(), std::string("/data/attributes/") + row.name);
    }
    EXPECT_EQ(reserve("none").place(), "/data/relationships/buildUpload");
}

TEST_F(BuildUploads, TakeOneFileOfEachKindAndNoneOnceTheyAreUnderWay) {
    const auto upload = made();
    const auto reserved = reserve(upload);
    EXPECT_EQ(reserve(upload).code(), "ENTITY_ERROR.ATTRIBUTE.INVALID.DUPLICATE");
    EXPECT_EQ(reserve(upload, {{"assetType", "ASSET_SPI"}}).status, 201);
    sendAll(reserved, kPackage);
    commit(reserved);
    EXPECT_EQ(reserve(upload, {{"assetType", "ASSET_DESCRIPTION"}}).code(),
              "STATE_ERROR.ENTITY_STATE_INVALID");
}

TEST_F(BuildUploads, AreNotCommittedBeforeEveryPartIsThereNorTwice) {
    const auto reserved = reserve(made());
    const auto operations = reserved.attributes()["uploadOperations"];
    put(operations[0], kPackage.substr(0, 1000));
    EXPECT_EQ(commit(reserved).place(), "/data/attributes/uploaded");
    sendAll(reserved, kPackage);
    EXPECT_EQ(commit(reserved).status, 200);
    EXPECT_EQ(commit(reserved).code(), "STATE_ERROR.ENTITY_STATE_INVALID");
}

TEST_F(BuildUploads, CompareTheChecksumOfTheWholeFile) {
    struct Row {
        const char* algorithm;
        const char* hash;
        const char* state;
    };
    int number = 300;
    for (const auto& row :
         {Row{"MD5", kMD5, "COMPLETE"}, Row{"SHA_256", kSHA256, "COMPLETE"},
          Row{"MD5", "d41d8cd98f00b204e9800998ecf8427e", "FAILED"}, Row{"SHA_256", kMD5, "FAILED"}}) {
        SCOPED_TRACE(row.hash);
        const auto upload = made("2.4", std::to_string(++number));
        const auto reserved = reserve(upload);
        sendAll(reserved, kPackage);
        commit(reserved, {{"file", {{"algorithm", row.algorithm}, {"hash", row.hash}}}});
        EXPECT_EQ(outcome(upload)["state"], row.state);
    }
}

TEST_F(BuildUploads, RefuseAChecksumOfAnotherForm) {
    const Json rows[] = {
        {{"file", "x"}},
        {{"file", {{"hash", kMD5}}}},
        {{"file", {{"hash", kMD5}, {"algorithm", "SHA_1"}}}},
        {{"file", {{"hash", ""}, {"algorithm", "MD5"}}}},
        {{"file", {{"hash", kMD5}, {"algorithm", "MD5"}, {"size", 1}}}},
        {{"composite", {{"hash", kMD5}, {"algorithm", "SHA_256"}}}},
        {{"parts", {{"hash", kMD5}, {"algorithm", "MD5"}}}},
    };
    const auto reserved = reserve(made());
    sendAll(reserved, kPackage);
    for (const auto& row : rows) {
        SCOPED_TRACE(dumped(row));
        const auto reply = commit(reserved, row);
        EXPECT_EQ(reply.status, 409);
        EXPECT_THAT(reply.place(), testing::StartsWith("/data/attributes/sourceFileChecksums/"));
    }
    EXPECT_EQ(commit(reserved).status, 200);
}

TEST_F(BuildUploads, FailForWhatTheyAre) {
    EXPECT_THAT(codes(sent(made("2.4", "241"))["errors"]), ElementsAre("90189")) << "a number in use";
    EXPECT_THAT(codes(sent(made("2.3", "250"))["errors"]), ElementsAre("90186")) << "a version on sale";
    EXPECT_THAT(codes(sent(made(), {{"fileName", "unprocessable.ipa"}})["errors"]), ElementsAre("90085"));
    EXPECT_THAT(codes(sent(made(), {{"uti", "com.apple.pkg"}})["errors"]), ElementsAre("90034"))
        << "an archive that calls itself an installer";
    EXPECT_THAT(codes(sent(made(), Json::object(), std::string(2500, 'x'))["errors"]), ElementsAre("90034"));
    const auto xar = "xar!" + std::string(2496, 'x');
    EXPECT_EQ(sent(made(), {{"uti", "com.apple.pkg"}, {"fileName", "Tide.pkg"}}, xar)["state"], "COMPLETE");
}

TEST_F(BuildUploads, MayBeTakenWithAWarning) {
    const auto state = sent(made(), {{"fileName", "questionable.ipa"}});
    EXPECT_EQ(state["state"], "COMPLETE");
    EXPECT_THAT(codes(state["warnings"]), ElementsAre("90725"));
}

TEST_F(BuildUploads, KeepTheFirstOfTwoBuildsWithTheSameNumber) {
    const auto first = made(), second = made();
    EXPECT_EQ(sent(first)["state"], "COMPLETE");
    EXPECT_EQ(sent(second)["state"], "FAILED");
}

TEST_F(BuildUploads, CanBeAttachedOnceTheBuildIsProcessed) {
    sent(made());
    const auto build = idOf("builds", {{"version", "250"}});
    const auto version = idOf("appStoreVersions", {{"versionString", "2.4"}});
    const auto attach = [&] {
        return patch("/v1/appStoreVersions/" + version + "/relationships/build",
                     {{"data", {{"type", "builds"}, {"id", build}}}});
    };
    EXPECT_EQ(attach().status, 409);
    for (int i = 0; i < 3; ++i) get("/v1/builds/" + build);
    EXPECT_EQ(attach().status, 204);
}

}  // namespace
}  // namespace kestrin::sandbox
