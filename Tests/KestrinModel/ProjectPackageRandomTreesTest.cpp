// What a load and a save leave of packages that people, other programs and older versions have put things into: the
// files that are nobody's and those of the project, and nothing else.
//
// The rules of survival (see ProjectPackageSurvivalTest) stand here a second time, as a predicate over paths, so that
// the writer is held against them on trees that nobody thought of.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <set>

#include "KestrinModel/ProjectPackageCodec.h"
#include "KestrinModel/ProjectPackageFile.h"
#include "Tests/Support/DiskSnapshot.h"
#include "Tests/Support/PackageTrees.h"
#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

namespace fs = std::filesystem;

using Pieces = std::vector<std::string>;

// A tree as paths and contents; a folder's path ends in "/".
class RandomTree {
 public:
    static Listing make() {
        RandomTree tree;
        tree.root();
        return tree.listing_;
    }

 private:
    static bool oneIn(int count) { return *rc::gen::inRange(0, count) == 0; }
    static std::string oneOf(std::vector<std::string> texts) { return *rc::gen::elementOf(std::move(texts)); }

    void root() {
        listing_["Kestrin.json"] = manifestText(oneIn(2) ? ",\n  \"later\" : 1" : "");
        perhaps("Marquel.json", {manifestText(), "not read"});
        perhaps(".gitattributes", {"mine\n", ""});
        perhaps("readme.md", {"hello\n"});
        perhaps("Locales", {"a file"});
        if (oneIn(2)) app();
        for (const char* name : {"iOS", "IOS", "macOS", "Watch", "Notes"}) {
            if (oneIn(2)) platform(std::string(name) + "/");
        }
        if (oneIn(2)) items("Pages/", "page.json", [&](const std::string& page) { locales(page); });
        if (oneIn(2))
            items("Experiments/", "experiment.json", [&](const std::string& test) {
                if (oneIn(2))
                    items(test + "Treatments/", "treatment.json", [&](const std::string& t) { locales(t); });
            });
    }

    void app() {
        listing_["App/"] = "";
        perhaps("App/info.json", {"{}", "{\"primaryCategory\":\"GAMES\",\"x\":[]}"});
        strangers("App/");
        if (oneIn(3)) return;
        listing_["App/Locales/"] = "";
        for (const char* locale : {"en-US", "e\u0301", "de"}) {
            perhaps("App/Locales/" + std::string(locale) + ".json",
                    {"{}", "{\"name\":\"N\",\"name2\":\"\"}", "{\"name\":\"\"}",
                     "{\"keywords\":\"k\",\"name\":7}"});
        }
        strangers("App/Locales/");
    }

    void platform(const std::string& path) {
        listing_[path] = "";
        perhaps(path + "version.json",
                {"{}", "{\"versionString\":\"1.0\",\"copyright\":null}", "{\"v\":{}}"});
        perhaps(path + "review.json", {"{}", "{\"notes\":\"\"}", "{\"notes\":\"n\",\"x\":1}"});
        strangers(path);
        locales(path);
    }

    template <class Fill>
    void items(const std::string& path, const std::string& file, Fill fill) {
        listing_[path] = "";
        for (const char* slug : {"one", "two", "\u00E9"}) {
            if (oneIn(2)) continue;
            const auto item = path + slug + "/";
            listing_[item] = "";
            if (!oneIn(3))
                listing_[item + file] = oneOf({"{}", "{\"name\":\"N\",\"locales\":[\"de\"]}", "{\"x\":1}"});
            strangers(item);
            fill(item);
        }
        strangers(path);
    }

    void locales(const std::string& path) {
        if (oneIn(4)) perhaps(path + "Locales", {"a file in its place"});
        if (oneIn(3) || listing_.contains(path + "Locales")) return;
        listing_[path + "Locales/"] = "";
        for (const char* locale : {"en-US", "e\u0301", "de"}) {
            if (oneIn(2)) continue;
            const auto folder = path + "Locales/" + locale + "/";
            listing_[folder] = "";
            perhaps(folder + "listing.json", {"{}", "{\"keywords\":\"a\",\"description\":\"x\"}",
                                              "{\"supportUrl\":\"\"}", "{\"name\":\"x\"}"});
            for (const char* text : {"description.txt", "promotional-text.txt", "whats-new.txt"}) {
                perhaps(folder + text, {"", "\n", "text", "two\r\nlines\r\n", "more\n\n\n", "\xFF"});
            }
            perhaps(folder + "placements.json",
                    {"{}", "{\"G\":{\"T\":[]}}", "{\"G\":{\"T\":[{\"file\":\"a.png\"}],\"U\":[]}}",
                     "{\"G\":{\"T\":[{\"asset\":\"1\",\"name\":\"n\"}]},\"H\":{}}"});
            strangers(folder);
        }
        strangers(path + "Locales/");
    }

    // Files and folders that are nobody's.
    void strangers(const std::string& path) {
        perhaps(path + "notes.md", {"mine"});
        perhaps(path + ".DS_Store", {std::string("\0\1", 2)});
        if (oneIn(4) && !path.ends_with("Locales/")) listing_[path + "Media/deep/a.png"] = "png";
    }

    void perhaps(const std::string& path, std::vector<std::string> contents) {
        if (oneIn(3)) listing_[path] = oneOf(std::move(contents));
    }

    Listing listing_;
};

void putOnDisk(const Listing& listing, const TemporaryFolder& folder, const fs::path& package) {
    for (const auto& [path, bytes] : listing) {
        if (path.ends_with('/')) {
            fs::create_directories(folder / package / path);
        } else {
            folder.write(package / path, bytes);
        }
    }
}

Pieces piecesOf(const std::string& path) {
    Pieces pieces;
    for (const auto& piece : fs::path(path)) {
        if (!piece.empty()) pieces.push_back(piece.string());
    }
    return pieces;
}

class Survival {
 public:
    Survival(const Listing& before, const Project& project) : before_(before), project_(project) {}

    // Whether the file is none of the project's.
    bool isCertain(const std::string& path) const {
        const auto pieces = piecesOf(path);
        const auto& first = pieces.front();
        if (pieces.size() == 1) return first != "Kestrin.json" && first != "Marquel.json";
        if (first == "App") return inApp(pieces);
        if (first == "Pages") return inItems(pieces, 1, "Pages/", "page.json", {});
        if (first == "Experiments")
            return inItems(pieces, 1, "Experiments/", "experiment.json", "treatment.json");
        return inOther(pieces);
    }

 private:
    static bool inApp(const Pieces& pieces) {
        if (pieces.size() == 2) return pieces[1] != "info.json" && pieces[1] != "Locales";
        return pieces[1] != "Locales" || !pieces[2].ends_with(".json");
    }

    bool inOther(const Pieces& pieces) const {
        const auto folder = pieces.front() + "/";
        const auto platform = StorePlatform::fromFolderName(pieces.front());
        if (platform.folderName() != pieces.front() || !project_.platforms.contains(platform)) {
            // Such as "IOS", whose folder is "iOS" from now on.
            return !before_.contains(folder + "version.json") && !before_.contains(folder + "Locales/");
        }
        const auto& listing = project_[platform];
        std::set<StoreLocale> locales;
        for (const auto& entry : listing.locales) locales.insert(entry.first);
        for (const auto& entry : listing.media) locales.insert(entry.first);
        if (pieces.size() == 2) {
            return pieces[1] != "version.json" && pieces[1] != "review.json" && pieces[1] != "Locales";
        }
        return inLocales(
            pieces, 1, locales,
            {"listing.json", "description.txt", "promotional-text.txt", "whats-new.txt", "placements.json"});
    }

    // From pieces[at], which may be "Locales". `own` are the files of a locale.
    static bool inLocales(const Pieces& pieces, std::size_t at, const std::set<StoreLocale>& locales,
                          const std::set<std::string>& own) {
        if (pieces[at] != "Locales") return true;
        if (pieces.size() == at + 1) return false;  // a file where a folder may have to be
        if (pieces.size() == at + 2) return true;   // a plain file among the locales
        return locales.contains(StoreLocale{pieces[at + 1]}) &&
               !(pieces.size() == at + 3 && own.contains(pieces[at + 2]));
    }

    bool inItems(const Pieces& pieces, std::size_t at, const std::string& path, const std::string& file,
                 const std::string& inner) const {
        if (pieces.size() == at + 1) return true;  // a plain file among the items
        const auto item = path + pieces[at] + "/";
        if (!before_.contains(item + file)) return true;
        if (pieces.size() == at + 2 && pieces[at + 1] == file) return false;
        if (!inner.empty()) {
            if (pieces[at + 1] != "Treatments" || pieces.size() == at + 2) return true;
            return inItems(pieces, at + 2, item + "Treatments/", inner, {});
        }
        const std::set<std::string> ofPage = {"promotional-text.txt", "placements.json"};
        const std::set<std::string> ofTreatment = {"placements.json"};
        return inLocales(pieces, at + 1, localesOf(pieces, at), at == 1 ? ofPage : ofTreatment);
    }

    std::set<StoreLocale> localesOf(const Pieces& pieces, std::size_t at) const {
        std::set<StoreLocale> locales;
        const auto add = [&](const auto& item) {
            locales.insert(item.locales.begin(), item.locales.end());
            for (const auto& entry : item.media) locales.insert(entry.first);
        };
        if (at == 1) {
            const auto& page = project_.pages.at({pieces[at]});
            add(page);
            for (const auto& entry : page.promotionalText) locales.insert(entry.first);
        } else {
            add(project_.experiments.at({pieces[1]}).treatments.at({pieces[at]}));
        }
        return locales;
    }

    const Listing& before_;
    const Project& project_;
};

// The files that a save has to leave.
std::map<std::string, std::string> filesToBe(const Listing& before, const Project& project) {
    std::map<std::string, std::string> files;
    const Survival survival(before, project);
    for (const auto& [path, bytes] : before) {
        if (!path.ends_with('/') && survival.isCertain(path)) files.emplace(path, bytes);
    }
    for (const auto& [path, bytes] : listingOf(ProjectPackageCodec::write(project))) {
        if (!path.ends_with('/')) files.emplace(path, bytes);  // a .gitattributes that was there stays
    }
    return files;
}

RC_GTEST_PROP(ProjectPackageRandomTrees, ASaveLeavesWhatIsNobodysAndTheProjectAndNothingElse, ()) {
    const auto before = RandomTree::make();
    const TemporaryFolder folder(TemporaryFolder::quickPlace());
    putOnDisk(before, folder, "P.kestrin");
    const auto package = folder / "P.kestrin";

    const auto project = ProjectPackageFile::load(package);
    ProjectPackageFile::save(project, package);

    const auto found = filesOf(package);
    const auto wanted = filesToBe(before, project);
    for (const auto& [path, bytes] : wanted) {
        if (!found.contains(path)) RC_LOG() << path << " is gone\n";
    }
    for (const auto& [path, bytes] : found) {
        if (!wanted.contains(path)) RC_LOG() << path << " should be gone\n";
    }
    RC_ASSERT(found == wanted);
    RC_ASSERT(ProjectPackageFile::load(package) == project);
    const auto once = snapshotOf(folder.path());
    ProjectPackageFile::save(project, package);
    RC_ASSERT(snapshotOf(folder.path()) == once);
}

}  // namespace
}  // namespace kestrin
