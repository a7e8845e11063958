// What the steps of one push have made so far, for the steps after them.
//
// A plan is complete before its first request goes out, so a step below something new can't know its id. It finds it
// here. Dies with the run: the next one reads the ids from App Store Connect.
#pragma once

#include <map>
#include <string>

#include "ASCKit/Resources/LibraryAssets.h"
#include "KestrinCore/UnicodeText.h"
#include "KestrinModel/Slug.h"
#include "KestrinModel/StoreLocale.h"

namespace kestrin {

struct RunState {
    struct Asset {
        std::string id;
        ASCLibraryAsset::Kind kind = ASCLibraryAsset::Kind::image;
        bool operator==(const Asset&) const = default;
    };
    struct Page {
        std::string pageID;
        std::string versionID;
        bool operator==(const Page&) const = default;
    };

    text::TextMap<Asset> assets;                      // by content digest, as it stands in the step
    text::TextMap<std::string> versionLocalizations;  // by versionLocalizationKey
    std::map<Slug, Page> pages;
    text::TextMap<std::string> pageLocalizations;  // by pageLocalizationKey
    std::map<Slug, std::string> experiments;
    text::TextMap<std::string> treatments;              // by treatmentKey
    text::TextMap<std::string> treatmentLocalizations;  // by treatmentLocalizationKey

    // "{versionID}/{locale}"
    static std::string versionLocalizationKey(const std::string& versionID, const StoreLocale& locale) {
        return versionID + "/" + locale.rawValue;
    }
    // "{page}/{locale}"
    static std::string pageLocalizationKey(const Slug& page, const StoreLocale& locale) {
        return page.rawValue + "/" + locale.rawValue;
    }
    // "{experiment}/{treatment}"
    static std::string treatmentKey(const Slug& experiment, const Slug& treatment) {
        return experiment.rawValue + "/" + treatment.rawValue;
    }
    // "{experiment}/{treatment}/{locale}"
    static std::string treatmentLocalizationKey(const Slug& experiment, const Slug& treatment,
                                                const StoreLocale& locale) {
        return treatmentKey(experiment, treatment) + "/" + locale.rawValue;
    }

    bool operator==(const RunState&) const = default;
};

}  // namespace kestrin
