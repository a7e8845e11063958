// The client's typed requests, every one of them, answered by the sandbox as the real service would: what one side
// learns to send, the other must learn to serve.
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include "ASCKit/Resources/AppStoreVersions.h"
#include "ASCKit/Resources/Apps.h"
#include "ASCKit/Resources/AssetLibraryRefData.h"
#include "ASCKit/Resources/BuildUploads.h"
#include "ASCKit/Resources/Builds.h"
#include "ASCKit/Resources/CustomProductPages.h"
#include "ASCKit/Resources/Experiments.h"
#include "ASCKit/Resources/LibraryAssets.h"
#include "ASCKit/Resources/Placements.h"
#include "ASCKit/Resources/ReviewDetails.h"
#include "ASCKit/Resources/ReviewSubmissions.h"
#include "Tests/Sandbox/SandboxFixture.h"

namespace kestrin::sandbox {
namespace {

using testing::IsEmpty;

// Hands the client's requests to a service without a socket.
class ServiceTransport final : public HTTPTransport {
 public:
    explicit ServiceTransport(Service& service) : service_(service) {}

    HTTPResponse send(const kestrin::HTTPRequest& request, const std::stop_token&) override {
        const auto* body = request.body ? std::get_if<std::string>(&*request.body) : nullptr;
        HTTPRequest taken{request.method, targetOf(request.url), {}, body ? *body : "", 1};
        for (const auto& [name, value] : request.headers) taken.headers.emplace_back(name, value);
        const auto answer = service_.answer(taken);
        return {answer.reply.status, {}, answer.reply.body};
    }

 private:
    static std::string targetOf(const URL& url) {
        const auto text = url.absoluteString();
        return text.substr(std::string(kRoot).size());
    }

    Service& service_;
};

// An everyday sandbox and a client of it, and the names of what is there.
class Exchange : public SandboxFixture {
 public:
    using SandboxFixture::sandbox;

    Exchange() : SandboxFixture(anyMedia()) {
        // The version is complete but for the answer about encryption, so that it can be submitted.
        sandbox.service().with([&](State& state) {
            auto& build = *state.store.first("builds", {{"version", "241"}});
            state.store.relate(state.store.at("appStoreVersions", version), "build", build.ref);
            for (auto* localization :
                 state.store.pointing("appStoreVersionLocalizations", "appStoreVersion", version)) {
                localization->attributes["whatsNew"] = "New.";
            }
        });
    }
    void TestBody() override {}

    std::string submission() { return ASC::createReviewSubmission(client, kApp, "IOS").id; }
    std::string upload() { return ASC::createBuildUpload(client, {kApp, "2.4", "250", "IOS"}).id; }
    ASC::ReservedBuildUploadFile file() {
        return ASC::reserveBuildUploadFile(client, {upload(), "Tide.ipa", 1500, "com.apple.ipa"});
    }
    ASC::ReservedAsset reserved(ASCLibraryAsset::Kind kind, std::int64_t size) {
        const auto* name = kind == ASCLibraryAsset::Kind::image ? "a.png" : "a.mp4";
        return ASC::reserveLibraryAsset(client,
                                        {kind, kApp, "APP_SCREENSHOTS_AND_PREVIEWS", name, size, "ref"});
    }
    std::vector<std::string> placementsHere() {
        std::vector<std::string> ids;
        for (const auto& each :
             ASC::placements(client, {PlacementParent::Kind::versionLocalization, text}).placements) {
            if (each.group == kPhone) ids.push_back(each.id);
        }
        return ids;
    }

    static constexpr const char* kPhone = "IPHONE_DYNAMIC_ISLAND_LARGE_PROFILE";

    std::string version = idOf("appStoreVersions", {{"versionString", "2.4"}});
    std::string text =
        idOf("appStoreVersionLocalizations", {{"appStoreVersion", version}, {"locale", "en-US"}});
    std::string infoID = idOf("appInfos", {{"state", "PREPARE_FOR_SUBMISSION"}});
    std::string infoText = idOf("appInfoLocalizations", {{"appInfo", infoID}, {"locale", "en-US"}});
    std::string detail = idOf("appStoreReviewDetails", {{"appStoreVersion", version}});
    std::string buildID = idOf("builds", {{"version", "241"}});
    std::string image = idOf("appAssetLibraryImages", {{"fileName", "moon.png"}});
    std::string video = idOf("appAssetLibraryVideos", {});
    std::string page = idOf("appCustomProductPages", {{"name", "Autumn"}});
    std::string pageVersion = idOf("appCustomProductPageVersions", {{"appCustomProductPage", page}});
    std::string pageText =
        idOf("appCustomProductPageLocalizations", {{"appCustomProductPageVersion", pageVersion}});
    std::string test = idOf("appStoreVersionExperiments", {{"name", "Moon icon"}});
    std::string treatment =
        idOf("appStoreVersionExperimentTreatments", {{"appStoreVersionExperimentV2", test}});
    std::string treatmentText = idOf("appStoreVersionExperimentTreatmentLocalizations",
                                     {{"appStoreVersionExperimentTreatment", treatment}});
    ASCClient client{TokenProvider(signer(), clock()), std::make_shared<ServiceTransport>(sandbox.service()),
                     options()};

 private:
    static Settings anyMedia() {
        auto settings = smallParts();
        settings.inspectsMedia = false;
        return settings;
    }
    static Clock clock() {
        return [] { return std::chrono::system_clock::time_point(std::chrono::seconds(kNow)); };
    }
    JWTSigner signer() const {
        const auto& [keyID, issuerID, privateKey, role] = sandbox.credential();
        return JWTSigner({keyID, APIKeyKind::team(issuerID), privateKey});
    }
    static ASCClient::Options options() {
        ASCClient::Options options;
        options.root = URL::parse(kRoot);
        options.now = clock();
        return options;
    }
};

struct RequestRow {
    const char* function;  // of ASCKit/Resources
    // Whether the client got what it asked for.
    std::function<bool(Exchange&)> call;
};

using Kind = ASCLibraryAsset::Kind;
using Parent = PlacementParent::Kind;
using Item = ReviewSubmissionItem::Kind;

// A write through the generic functions, of one type and its attributes.
bool updates(Exchange& x, const std::string& type, const std::string& id, const JSONObject& attributes) {
    const auto updated = ASC::update(x.client, {.type = type, .id = id, .attributes = attributes});
    return updated && updated->id == id;
}
bool creates(Exchange& x, const std::string& type, const JSONObject& attributes, const char* relationship,
             const Ref& other) {
    return !ASC::create(x.client,
                        {.type = type,
                         .attributes = attributes,
                         .relationships = {{relationship, ASC::relationship(other.type, other.id)}}})
                .id.empty();
}

const RequestRow kReads[] = {
    {"apps", [](auto& x) { return ASC::apps(x.client).size() == 2; }},
    {"appWithBundleID",
     [](auto& x) { return ASC::appWithBundleID(x.client, "com.example.tidenotes")->id == kApp; }},
    {"appWithID", [](auto& x) { return ASC::appWithID(x.client, kApp)->name == "Tide Notes"; }},
    {"validate",
     [](auto& x) {
         ASC::validate(x.client);
         return true;
     }},
    {"appInfos",
     [](auto& x) { return ASC::appInfos(x.client, kApp).back().primaryCategoryID == "PRODUCTIVITY"; }},
    {"appInfoLocalizations",
     [](auto& x) { return ASC::appInfoLocalizations(x.client, x.infoID).size() == 3; }},
    {"appStoreVersions", [](auto& x) { return ASC::appStoreVersions(x.client, kApp).size() == 3; }},
    {"appStoreVersionLocalizations",
     [](auto& x) { return ASC::appStoreVersionLocalizations(x.client, x.version).size() == 3; }},
    {"attachedBuildID", [](auto& x) { return ASC::attachedBuildID(x.client, x.version) == x.buildID; }},
    {"builds", [](auto& x) { return ASC::builds(x.client, {.appID = kApp}).size() == 5; }},
    {"builds",
     [](auto& x) {
         const auto list = ASC::builds(x.client, {kApp, "2.4", "IOS"});
         return list.size() == 3 && list[0].versionString == "2.4";
     }},
    {"build", [](auto& x) { return ASC::build(x.client, x.buildID)->buildNumber == "241"; }},
    {"customProductPages", [](auto& x) { return ASC::customProductPages(x.client, kApp).size() == 2; }},
    {"customProductPageVersions",
     [](auto& x) { return ASC::customProductPageVersions(x.client, x.page).size() == 1; }},
    {"customProductPageLocalizations",
     [](auto& x) { return ASC::customProductPageLocalizations(x.client, x.pageVersion).size() == 2; }},
    {"experiments", [](auto& x) { return ASC::experiments(x.client, kApp).size() == 2; }},
    {"treatments", [](auto& x) { return ASC::treatments(x.client, x.test).size() == 2; }},
    {"treatmentLocalizations",
     [](auto& x) { return ASC::treatmentLocalizations(x.client, x.treatment).size() == 1; }},
    {"libraryAssets", [](auto& x) { return ASC::libraryAssets(x.client, kApp, Kind::image).size() == 5; }},
    {"libraryAssets", [](auto& x) { return ASC::libraryAssets(x.client, kApp, Kind::video).size() == 1; }},
    {"libraryAsset",
     [](auto& x) { return ASC::libraryAsset(x.client, x.image, Kind::image)->thumbnail.has_value(); }},
    {"libraryAsset",
     [](auto& x) { return ASC::libraryAsset(x.client, x.video, Kind::video)->thumbnail.has_value(); }},
    {"placements",
     [](auto& x) {
         const auto list = ASC::placements(x.client, {Parent::versionLocalization, x.text});
         return list.placements.size() == 5 && list.assets.size() == 5;
     }},
    {"placements",
     [](auto& x) {
         return ASC::placements(x.client, {Parent::customPageLocalization, x.pageText}).placements.size() ==
                1;
     }},
    {"placements",
     [](auto& x) {
         return ASC::placements(x.client, {Parent::treatmentLocalization, x.treatmentText})
                    .placements.size() == 1;
     }},
    {"assetLibraryRefData", [](auto& x) { return ASC::assetLibraryRefData(x.client).groups.size() > 20; }},
    {"buildUpload",
     [](auto& x) { return ASC::buildUpload(x.client, x.upload())->state == "AWAITING_UPLOAD"; }},
    {"reviewDetail", [](auto& x) { return ASC::reviewDetail(x.client, x.version)->id == x.detail; }},
    {"openReviewSubmission", [](auto& x) { return !ASC::openReviewSubmission(x.client, kApp, "IOS"); }},
    {"openReviewSubmission",
     [](auto& x) {
         const auto id = x.submission();
         return ASC::openReviewSubmission(x.client, kApp, "IOS")->id == id;
     }},
    {"reviewSubmissionItemCount",
     [](auto& x) { return ASC::reviewSubmissionItemCount(x.client, x.submission()) == 0; }},
};

const RequestRow kWrites[] = {
    {"createAppStoreVersion",
     [](auto& x) {
         return ASC::createAppStoreVersion(x.client, {kApp, "MAC_OS", "2.4", "2027", "MANUAL"}).state ==
                "PREPARE_FOR_SUBMISSION";
     }},
    {"attachBuild",
     [](auto& x) {
         ASC::attachBuild(x.client, x.buildID, x.version);
         return ASC::attachedBuildID(x.client, x.version) == x.buildID;
     }},
    {"setUsesNonExemptEncryption",
     [](auto& x) {
         ASC::setUsesNonExemptEncryption(x.client, true, x.buildID);
         return ASC::build(x.client, x.buildID)->usesNonExemptEncryption == true;
     }},
    {"createCustomProductPage",
     [](auto& x) {
         const auto page = ASC::createCustomProductPage(
             x.client, {kApp, "Winter", "https://example.com/w", {{"en-US", "Snow"}, {"ja", {}}}});
         const auto versions = ASC::customProductPageVersions(x.client, page.id);
         return ASC::customProductPageLocalizations(x.client, versions.at(0).id).size() == 2;
     }},
    {"createCustomProductPageLocalization",
     [](auto& x) {
         return ASC::createCustomProductPageLocalization(x.client, x.pageVersion, {"ja", "秋"}).locale ==
                "ja";
     }},
    {"createExperiment",
     [](auto& x) {
         return ASC::createExperiment(x.client, {kApp, "Icons", "IOS", 30}).trafficProportion == 30;
     }},
    {"updateExperiment",
     [](auto& x) {
         ASC::updateExperiment(x.client, x.test, {.name = "Moons", .trafficProportion = 10});
         return ASC::experiments(x.client, kApp).at(0).name == "Moons";
     }},
    {"createTreatment",
     [](auto& x) {
         return ASC::createTreatment(x.client, {x.test, "New moon", "DarkIcon"}).name == "New moon";
     }},
    {"createTreatmentLocalization",
     [](auto& x) { return ASC::createTreatmentLocalization(x.client, x.treatment, "ja").locale == "ja"; }},
    {"reserveLibraryAsset", [](auto& x) { return x.reserved(Kind::image, 2500).operations.size() == 3; }},
    {"reserveLibraryAsset", [](auto& x) { return x.reserved(Kind::video, 2500).operations.size() == 3; }},
    {"upload",
     [](auto& x) {
         const auto asset = x.reserved(Kind::image, 2500);
         ASC::upload(x.client, asset.operations, UploadSource::data(std::string(2500, 'x')));
         ASC::commitLibraryAsset(x.client, asset.asset.id, Kind::image);
         return ASC::libraryAsset(x.client, asset.asset.id, Kind::image)->state == "UPLOAD_COMPLETE";
     }},
    {"commitLibraryAsset",
     [](auto& x) {
         const auto asset = x.reserved(Kind::video, 10);
         ASC::upload(x.client, asset.operations, UploadSource::data(std::string(10, 'x')));
         ASC::commitLibraryAsset(x.client, asset.asset.id, Kind::video);
         return ASC::libraryAsset(x.client, asset.asset.id, Kind::video)->state == "UPLOAD_COMPLETE";
     }},
    {"createPlacement",
     [](auto& x) {
         const PlacementParent parent{Parent::versionLocalization, x.text};
         return ASC::createPlacement(x.client,
                                     {"APP_PREVIEW", Exchange::kPhone, Kind::video, x.video, parent})
                    .assetID == x.video;
     }},
    {"createPlacement",
     [](auto& x) {
         const PlacementParent parent{Parent::customPageLocalization, x.pageText};
         return ASC::createPlacement(x.client,
                                     {"APP_SCREENSHOT", Exchange::kPhone, Kind::image, x.image, parent})
                    .assetID == x.image;
     }},
    {"createPlacement",
     [](auto& x) {
         const PlacementParent parent{Parent::treatmentLocalization, x.treatmentText};
         return ASC::createPlacement(x.client,
                                     {"APP_SCREENSHOT", Exchange::kPhone, Kind::image, x.image, parent})
                    .assetID == x.image;
     }},
    {"orderPlacements",
     [](auto& x) {
         auto ids = x.placementsHere();
         std::reverse(ids.begin(), ids.end());
         ASC::orderPlacements(x.client, ids, Exchange::kPhone, {Parent::versionLocalization, x.text});
         return x.placementsHere() == ids;
     }},
    {"deletePlacement",
     [](auto& x) {
         ASC::deletePlacement(x.client, x.placementsHere().front());
         return x.placementsHere().size() == 3;
     }},
    {"createBuildUpload", [](auto& x) { return !x.upload().empty(); }},
    {"reserveBuildUploadFile", [](auto& x) { return x.file().operations.size() == 2; }},
    {"commitBuildUploadFile",
     [](auto& x) {
         const auto file = x.file();
         ASC::upload(x.client, file.operations, UploadSource::data(std::string(1500, 'x')));
         ASC::commitBuildUploadFile(x.client, file.id, "88dcca3ba74ec0b2d60cd78db5c3cb66");
         return true;
     }},
    {"createReviewSubmission", [](auto& x) { return !x.submission().empty(); }},
    {"addToReviewSubmission",
     [](auto& x) {
         const auto id = x.submission();
         ASC::setUsesNonExemptEncryption(x.client, false, x.buildID);
         for (const auto& item : {ReviewSubmissionItem{Item::appStoreVersion, x.version},
                                  ReviewSubmissionItem{Item::customProductPageVersion, x.pageVersion},
                                  ReviewSubmissionItem{Item::experiment, x.test}}) {
             ASC::addToReviewSubmission(x.client, id, item);
         }
         return ASC::reviewSubmissionItemCount(x.client, id) == 3;
     }},
    {"submitReviewSubmission",
     [](auto& x) {
         const auto id = x.submission();
         ASC::addToReviewSubmission(x.client, id, {Item::customProductPageVersion, x.pageVersion});
         return ASC::submitReviewSubmission(x.client, id)->state == "WAITING_FOR_REVIEW";
     }},
};

// What the sync engine sends through the generic writers.
const RequestRow kGenericWrites[] = {
    {"update",
     [](auto& x) {
         return updates(x, "appInfoLocalizations", x.infoText,
                        {{"name", "Tides"},
                         {"subtitle", nullptr},
                         {"privacyPolicyUrl", "https://example.com/p"},
                         {"privacyChoicesUrl", "https://example.com/c"}});
     }},
    {"update",
     [](auto& x) {
         return updates(x, "appStoreVersionLocalizations", x.text,
                        {{"description", "D"},
                         {"keywords", "k"},
                         {"promotionalText", nullptr},
                         {"whatsNew", "N"},
                         {"supportUrl", "https://example.com/s"},
                         {"marketingUrl", nullptr}});
     }},
    {"update",
     [](auto& x) {
         return updates(x, "appStoreVersions", x.version,
                        {{"copyright", "2027"}, {"releaseType", "MANUAL"}, {"versionString", "2.4.1"}});
     }},
    {"update",
     [](auto& x) {
         return ASC::update(
                    x.client,
                    {.type = "appInfos",
                     .id = x.infoID,
                     .relationships = {{"primaryCategory", ASC::relationship("appCategories", "UTILITIES")},
                                       {"secondaryCategory",
                                        ASC::relationship("appCategories", std::optional<std::string>())}}})
             .has_value();
     }},
    {"update",
     [](auto& x) {
         return updates(x, "appStoreReviewDetails", x.detail,
                        {{"contactFirstName", "Bo"},
                         {"contactLastName", nullptr},
                         {"contactPhone", "1"},
                         {"contactEmail", "b@example.com"},
                         {"demoAccountName", "d"},
                         {"demoAccountPassword", "p"},
                         {"demoAccountRequired", false},
                         {"notes", "n"}});
     }},
    {"update",
     [](auto& x) {
         return updates(x, "appCustomProductPages", x.page, {{"name", "Fall"}, {"visible", true}});
     }},
    {"update",
     [](auto& x) {
         return updates(x, "appCustomProductPageVersions", x.pageVersion, {{"deepLink", nullptr}});
     }},
    {"update",
     [](auto& x) {
         return updates(x, "appCustomProductPageLocalizations", x.pageText, {{"promotionalText", nullptr}});
     }},
    {"update",
     [](auto& x) {
         return updates(x, "appStoreVersionExperimentTreatments", x.treatment,
                        {{"name", "Moon"}, {"appIconName", nullptr}});
     }},
    {"create",
     [](auto& x) {
         return creates(x, "appInfoLocalizations", {{"locale", "fr-FR"}, {"name", "Marées"}}, "appInfo",
                        {"appInfos", x.infoID});
     }},
    {"create",
     [](auto& x) {
         return creates(x, "appStoreVersionLocalizations", {{"locale", "fr-FR"}, {"description", "D"}},
                        "appStoreVersion", {"appStoreVersions", x.version});
     }},
    {"create",
     [](auto& x) {
         const auto version = ASC::createAppStoreVersion(x.client, {"1234567891", "IOS", "1.0"});
         return creates(x, "appStoreReviewDetails", {{"demoAccountPassword", "p"}}, "appStoreVersion",
                        {"appStoreVersions", version.id});
     }},
};

// The request lines of everything that went wrong, and the endpoints that were reached.
class EveryRequest : public testing::Test {
 protected:
    void run(const RequestRow& row) {
        SCOPED_TRACE(row.function);
        functions.insert(row.function);
        Exchange exchange;
        try {
            EXPECT_TRUE(row.call(exchange));
        } catch (const std::exception& error) {
            ADD_FAILURE() << error.what();
        }
        const auto& router = exchange.sandbox.service().router();
        const auto log = exchange.sandbox.service().log();
        for (const auto& entry : log.entries()) {
            EXPECT_LT(entry.status, 300) << entry.line();
            EXPECT_FALSE(entry.strayToken) << entry.line();
            const auto path = entry.target.substr(0, entry.target.find('?'));
            if (!path.starts_with("/v")) continue;  // an upload address
            const auto* endpoint = router.find(entry.method, path).endpoint;
            endpoints.insert(endpoint->method + " " + endpoint->path);
        }
    }
    void runAll() {
        for (const auto& row : kReads) run(row);
        for (const auto& row : kWrites) run(row);
        for (const auto& row : kGenericWrites) run(row);
    }

    std::set<std::string> functions, endpoints;
};

// The functions of ASCKit/Resources that take a client, read from its headers.
std::set<std::string> requestFunctions() {
    std::set<std::string> names;
    const std::regex function(R"(\b(\w+)\(ASCClient& client)");
    const std::filesystem::path folder = std::filesystem::path(KESTRIN_SOURCE_DIR) / "ASCKit/Resources";
    for (const auto& file : std::filesystem::directory_iterator(folder)) {
        if (file.path().extension() != ".h") continue;
        std::ifstream stream(file.path());
        std::ostringstream text;
        text << stream.rdbuf();
        const auto source = text.str();
        for (std::sregex_iterator match(source.begin(), source.end(), function), end; match != end; ++match) {
            names.insert((*match)[1]);
        }
    }
    return names;
}

TEST_F(EveryRequest, IsAnsweredAsTheClientExpects) {
    runAll();

    auto unasked = requestFunctions();
    EXPECT_GT(unasked.size(), 40u) << "read from the headers";
    for (const auto& function : functions) unasked.erase(function);
    for (const char* general : {"listOf", "one"})
        unasked.erase(general);  // all the lists and reads go through them
    EXPECT_THAT(unasked, IsEmpty()) << "a request that the table doesn't have";

    Exchange exchange;
    std::set<std::string> unreached;
    for (const auto& endpoint : exchange.sandbox.service().router().endpoints()) {
        unreached.insert(endpoint.method + " " + endpoint.path);
    }
    for (const auto& endpoint : endpoints) unreached.erase(endpoint);
    EXPECT_THAT(unreached, testing::ElementsAre("DELETE /v1/appAssetLibraryImages/{id}",
                                                "DELETE /v1/appAssetLibraryVideos/{id}"))
        << "served without being asked for by the client";
}

}  // namespace
}  // namespace kestrin::sandbox
