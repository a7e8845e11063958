// Reserving, sending, committing and processing assets.
#include "Sandbox/MediaFile.h"
#include "Sandbox/Uploads.h"
#include "Tests/Sandbox/SandboxFixture.h"
#include "Tests/Sandbox/TestFilm.h"

namespace kestrin::sandbox {
namespace {

using testing::ElementsAre;

class AssetLibrary : public SandboxFixture {
 protected:
    AssetLibrary() : SandboxFixture(smallParts()) {}

    Received reserve(const std::string& type, const Json& attributes) {
        return post("/v1/" + type,
                    createBody(type, attributes, {{"assetLibrary", {"appAssetLibraries", kApp}}}));
    }
    Received reserveImage(std::size_t size, const std::string& fileName = "tide.png") {
        return reserve(
            "appAssetLibraryImages",
            {{"category", kScreenshots}, {"fileName", fileName}, {"fileSize", size}, {"referenceName", "r"}});
    }
    Received commit(const Received& reserved) {
        const auto type = reserved.json["data"]["type"].get<std::string>(),
                   id = reserved.json["data"]["id"].get<std::string>();
        return patch("/v1/" + type + "/" + id, updateBody(type, id, {{"uploaded", true}}));
    }
    Received read(const Received& reserved) {
        return get("/v1/" + reserved.json["data"]["type"].get<std::string>() + "/" +
                   reserved.json["data"]["id"].get<std::string>());
    }
    // Reserve, send, commit, and read until it has left processing.
    Received upload(const std::string& type, const std::string& fileName, const std::string& bytes,
                    const std::string& category = kScreenshots) {
        const auto reserved =
            reserve(type, {{"category", category}, {"fileName", fileName}, {"fileSize", bytes.size()}});
        sendAll(reserved, bytes);
        EXPECT_EQ(commit(reserved).attributes()["state"], "UPLOAD_COMPLETE");
        for (int i = 0; i < 10; ++i) {
            auto reply = read(reserved);
            if (reply.attributes()["state"] != "UPLOAD_COMPLETE") return reply;
        }
        ADD_FAILURE() << "still processing";
        return reserved;
    }
};

TEST_F(AssetLibrary, ReservesWithOperationsThatCoverTheFile) {
    const auto reserved = reserveImage(2500);

    ASSERT_EQ(reserved.status, 201);
    const auto attributes = reserved.attributes();
    EXPECT_EQ(attributes["state"], "AWAITING_UPLOAD");
    EXPECT_TRUE(attributes["imageAsset"].is_null());
    EXPECT_TRUE(attributes["stateDetails"].is_null());
    ASSERT_EQ(attributes["uploadOperations"].size(), 3u);
    std::uint64_t end = 0;
    for (const auto& operation : attributes["uploadOperations"]) {
        EXPECT_EQ(operation["offset"], end);
        EXPECT_EQ(operation["method"], "PUT");
        end += operation["length"].get<std::uint64_t>();
    }
    EXPECT_EQ(end, 2500u);
}

struct BadReservation {
    const char* when;
    Json attributes;
    const char* pointer;
};

TEST_F(AssetLibrary, RefusesAWrongReservation) {
    const Json good{{"category", kScreenshots}, {"fileName", "a.png"}, {"fileSize", 10}};
    const auto with = [&](const char* name, const Json& value) {
        auto attributes = good;
        attributes[name] = value;
        return attributes;
    };
    const BadReservation rows[] = {
        {"an empty file", with("fileSize", 0), "fileSize"},
        {"a negative size", with("fileSize", -1), "fileSize"},
        {"more than 500 MB", with("fileSize", 524'288'001), "fileSize"},
        {"a size that is a text", with("fileSize", "10"), "fileSize"},
        {"no file name", with("fileName", nullptr), "fileName"},
        {"another category", with("category", "HOLIDAYS"), "category"},
        {"a time code for an image", with("previewFrameTimeCode", "00:00:03:00"), "previewFrameTimeCode"},
        {"a checksum", with("sourceFileChecksum", "x"), "sourceFileChecksum"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        const auto reply = reserve("appAssetLibraryImages", row.attributes);
        EXPECT_EQ(reply.status, 409);
        EXPECT_EQ(reply.place(), std::string("/data/attributes/") + row.pointer);
    }
    EXPECT_EQ(reserve("appAssetLibraryVideos", with("previewFrameTimeCode", "00:00:03:00")).status, 201);
}

TEST_F(AssetLibrary, ProcessesAnImageOverSeveralReadings) {
    const auto bytes = MediaFile::seascape(1290, 2796, "tide");
    const auto reserved = reserveImage(bytes.size());
    sendAll(reserved, bytes);

    EXPECT_EQ(commit(reserved).attributes()["state"], "UPLOAD_COMPLETE");
    EXPECT_EQ(read(reserved).attributes()["state"], "UPLOAD_COMPLETE");
    EXPECT_EQ(read(reserved).attributes()["state"], "UPLOAD_COMPLETE");
    const auto done = read(reserved).attributes();

    EXPECT_EQ(done["state"], "PREPARE_FOR_SUBMISSION");
    EXPECT_EQ(done["specId"], "f56c777c-99ea-5760-97ae-27c5f8cbb884");
    EXPECT_EQ(done["imageAsset"]["width"], 1290);
    EXPECT_EQ(done["imageAsset"]["height"], 2796);
    EXPECT_TRUE(done["imageAsset"]["templateUrl"].get<std::string>().ends_with("/{w}x{h}bb.{f}"));
    EXPECT_FALSE(done.contains("uploadOperations"));
}

TEST_F(AssetLibrary, TakesPartsInAnyOrderAndAgain) {
    const auto bytes = MediaFile::seascape(1290, 2796, "tide");
    const auto reserved = reserveImage(bytes.size());
    const auto operations = reserved.attributes()["uploadOperations"];
    ASSERT_GT(operations.size(), 1u);
    const auto part = [&](const Json& operation) {
        return bytes.substr(operation["offset"], operation["length"]);
    };
    EXPECT_EQ(put(operations[0], std::string(operations[0]["length"], 'x')).status, 200);
    for (auto operation = operations.rbegin(); operation != operations.rend(); ++operation) {
        EXPECT_EQ(put(*operation, part(*operation)).status, 200);
    }
    EXPECT_EQ(commit(reserved).status, 200);
    read(reserved), read(reserved);
    EXPECT_EQ(read(reserved).attributes()["state"], "PREPARE_FOR_SUBMISSION");
}

TEST_F(AssetLibrary, RefusesTheCommitOfAPartialUpload) {
    const auto reserved = reserveImage(2500);
    const auto operations = reserved.attributes()["uploadOperations"];
    put(operations[0], std::string(1000, 'x'));
    put(operations[2], std::string(500, 'x'));
    EXPECT_EQ(commit(reserved).code(), "ENTITY_ERROR.ATTRIBUTE.INVALID");
    EXPECT_EQ(read(reserved).attributes()["state"], "AWAITING_UPLOAD");
    put(operations[1], std::string(1000, 'x'));
    EXPECT_EQ(commit(reserved).status, 200);
    EXPECT_EQ(commit(reserved).code(), "STATE_ERROR.INVALID_ASSET_STATE");
}

TEST_F(AssetLibrary, StaysWaitingWhenAnUploadIsLeft) {
    const auto reserved = reserveImage(2500);
    for (int i = 0; i < 10; ++i) EXPECT_EQ(read(reserved).attributes()["state"], "AWAITING_UPLOAD");
    EXPECT_EQ(read(reserved).attributes()["uploadOperations"], reserved.attributes()["uploadOperations"]);
}

struct FailingUpload {
    const char* when;
    const char* type;
    const char* fileName;
    std::string bytes;
    const char* why;
};

TEST_F(AssetLibrary, FailsWhatItCannotProcess) {
    auto transparent = MediaFile::seascape(1290, 2796, "tide");
    transparent[25] = 6;
    const FailingUpload rows[] = {
        {"a text", "appAssetLibraryImages", "a.png", "not a picture", "The file is no PNG and no JPEG."},
        {"another size", "appAssetLibraryImages", "a.png", MediaFile::seascape(100, 100, "x"),
         "No specification takes 100×100."},
        {"alpha", "appAssetLibraryImages", "a.png", transparent, "The picture has an alpha channel."},
        {"a name that fails", "appAssetLibraryImages", "unprocessable.png",
         MediaFile::seascape(1290, 2796, "x"), "The file can't be processed."},
        {"a picture for a film", "appAssetLibraryVideos", "a.mp4", MediaFile::seascape(886, 1920, "x"),
         "The file is no film."},
        {"a short film", "appAssetLibraryVideos", "a.mp4", TestFilm{.seconds = 5}.bytes(),
         "The video is 5.0 seconds long."},
        {"a silent film", "appAssetLibraryVideos", "a.mp4", TestFilm{.hasAudio = false}.bytes(),
         "The video has no audio."},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        const auto done = upload(row.type, row.fileName, row.bytes).attributes();
        EXPECT_EQ(done["state"], "FAILED");
        EXPECT_EQ(done["stateDetails"][0]["description"], row.why);
        EXPECT_FALSE(done["stateDetails"][0]["code"].get<std::string>().empty());
    }
}

TEST_F(AssetLibrary, ProcessesAVideo) {
    const auto done = upload("appAssetLibraryVideos", "tide.mp4", TestFilm{}.bytes()).attributes();
    EXPECT_EQ(done["state"], "PREPARE_FOR_SUBMISSION");
    EXPECT_EQ(done["previewFrameImage"]["image"]["width"], 886);
    EXPECT_EQ(done["previewFrameImage"]["state"]["state"], "COMPLETE");
    EXPECT_TRUE(done["videoAsset"].get<std::string>().starts_with(kRoot));
}

TEST_F(AssetLibrary, ListsAndFilters) {
    const auto names = [&](const std::string& query) {
        std::vector<std::string> list;
        const auto reply = get("/v1/appAssetLibraries/1234567890/images?" + query);
        for (const auto& asset : reply.json["data"]) list.push_back(asset["attributes"]["fileName"]);
        return list;
    };
    EXPECT_EQ(names("limit=200").size(), 5u);
    EXPECT_THAT(names("filter%5Bstate%5D=PREPARE_FOR_SUBMISSION"), ElementsAre("moon.png"));
    EXPECT_THAT(names("sort=-referenceName&limit=1"), ElementsAre("tide-pad.png"));
    EXPECT_EQ(get("/v1/appAssetLibraries/1234567890/videos?limit=200").json["data"].size(), 1u);
    EXPECT_EQ(get("/v1/appAssetLibraries/1/videos").status, 404);
    EXPECT_EQ(get("/v1/appAssetLibraries/1234567890/videos?filter%5Bstate%5D=DONE").status, 400);
}

TEST_F(AssetLibrary, ArchivesOnlyWhatIsApproved) {
    const auto change = [&](const std::string& fileName) {
        const auto id = idOf("appAssetLibraryImages", {{"fileName", fileName}});
        return patch("/v1/appAssetLibraryImages/" + id,
                     updateBody("appAssetLibraryImages", id, {{"archived", true}}));
    };
    EXPECT_EQ(change("moon.png").code(), "STATE_ERROR.INVALID_ASSET_STATE");
    EXPECT_EQ(change("tide-1.png").attributes()["state"], "ARCHIVED");
}

TEST_F(AssetLibrary, DeletesOnlyWhatIsNotPlaced) {
    const auto placed = idOf("appAssetLibraryImages", {{"fileName", "tide-1.png"}});
    EXPECT_EQ(remove("/v1/appAssetLibraryImages/" + placed).code(), "STATE_ERROR.ASSET_HAS_PLACEMENTS");
    const auto reserved = reserveImage(10);
    const auto path = "/v1/appAssetLibraryImages/" + reserved.json["data"]["id"].get<std::string>();
    EXPECT_EQ(remove(path).status, 204);
    EXPECT_EQ(remove(path).status, 404);
}

struct BadPart {
    const char* when;
    std::string bytes;
    HTTPHeaders headers;
    int status;
};

TEST_F(AssetLibrary, RefusesAWrongPart) {
    const std::string whole(1000, 'x');
    const auto operation = reserveImage(1000).attributes()["uploadOperations"][0];
    const HTTPHeaders type{{"Content-Type", "image/png"}};
    const BadPart rows[] = {
        {"too short", std::string(999, 'x'), type, 400},
        {"too long", std::string(1001, 'x'), type, 400},
        {"another type than told", whole, {{"Content-Type", "text/plain"}}, 403},
        {"no type", whole, {{"X", "y"}}, 403},
        {"a token", whole, {{"Content-Type", "image/png"}, {"Authorization", authorization}}, 400},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(put(operation, row.bytes, row.headers).status, row.status);
    }
    EXPECT_TRUE(sandbox.service().log().entries().back().strayToken);
    EXPECT_EQ(sandbox.service().log().entries().back().body, "");
    EXPECT_EQ(sandbox.service().log().entries().back().bodySize, 1000u);
    auto elsewhere = operation;
    elsewhere["url"] = operation["url"].get<std::string>() + "0";
    EXPECT_EQ(put(elsewhere, whole).status, 404);
    elsewhere["url"] = operation["url"];
    elsewhere["method"] = "POST";
    EXPECT_EQ(put(elsewhere, whole).status, 405);
    EXPECT_EQ(put(operation, whole).status, 200);
}

TEST_F(AssetLibrary, TakesNoPartAfterTheCommit) {
    const auto reserved = reserveImage(1000);
    const auto operation = reserved.attributes()["uploadOperations"][0];
    sendAll(reserved, std::string(1000, 'x'));
    commit(reserved);
    EXPECT_EQ(put(operation, std::string(1000, 'x')).status, 404);
}

TEST(UploadAddresses, ExpireAfterAWeek) {
    constexpr std::int64_t kWeek = 7 * 24 * 3600;
    Uploads uploads;
    const Ref owner{"appAssetLibraryImages", "x"};
    uploads.open(owner, 3, 10, "image/png", kNow);
    const auto target = uploads.operations(owner, "", false)[0]["url"].get<std::string>();
    const HTTPRequest request{"PUT", target, {{"Content-Type", "image/png"}}, "abc", 1};
    EXPECT_EQ(uploads.receive(request, kNow + kWeek).status, 200);
    EXPECT_EQ(uploads.receive(request, kNow + kWeek + 1).status, 403);
}

TEST_F(AssetLibrary, ServesWhatWasUploadedAndPicturesForWhatWasSeeded) {
    const auto bytes = MediaFile::seascape(1290, 2796, "tide");
    const auto uploaded = upload("appAssetLibraryImages", "tide.png", bytes);
    const auto address = [&](const Received& asset, const char* size) {
        auto url = asset.attributes()["imageAsset"]["templateUrl"].get<std::string>();
        return url.substr(std::string(kRoot).size())
            .replace(url.find("{w}") - std::string(kRoot).size(), 14, size);
    };
    const auto fetch = [&](const std::string& target) { return sendBare({"GET", target, {}, {}, 1}); };
    const auto seeded =
        get("/v1/appAssetLibraryImages/" + idOf("appAssetLibraryImages", {{"fileName", "tide-1.png"}}));

    EXPECT_EQ(fetch(address(uploaded, "1290x2796bb.png")).body, bytes);
    const auto made = fetch(address(seeded, "129x280bb.jpg"));
    EXPECT_EQ(made.status, 200);
    EXPECT_EQ(MediaFile::picture(made.body)->width, 129);
    EXPECT_EQ(fetch(address(seeded, "0x280bb.jpg")).status, 400);
    EXPECT_EQ(fetch(address(seeded, "99999x2bb.jpg")).status, 400);
    EXPECT_EQ(fetch("/media/x/10x10bb.png").status, 404);
    EXPECT_EQ(fetch("/media/x").status, 404);
    EXPECT_EQ(get(address(seeded, "129x280bb.png")).status, 400) << "a token";
    EXPECT_TRUE(sandbox.service().log().entries().back().strayToken);
}

class Unchecked : public AssetLibrary {
 protected:
    Unchecked() {
        sandbox.service().with([](State& state) { state.settings.inspectsMedia = false; });
    }
};

TEST_F(Unchecked, TakesAnyBytesForMedia) {
    EXPECT_EQ(upload("appAssetLibraryImages", "a.png", "x").attributes()["state"], "PREPARE_FOR_SUBMISSION");
    EXPECT_EQ(upload("appAssetLibraryImages", "unprocessable.png", "x").attributes()["state"], "FAILED");
}

}  // namespace
}  // namespace kestrin::sandbox
