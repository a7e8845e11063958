#include "Sandbox/TextRules.h"

#include <gtest/gtest.h>

namespace kestrin::sandbox {
namespace {

TEST(TextRules, KnowURIs) {
    for (const char* good :
         {"https://example.com", "mailto:a@b", "tidenotes://open?x=1#y", "urn:x", "a+b-c.d:%20"}) {
        EXPECT_TRUE(isURI(good)) << good;
    }
    for (const char* bad : {"", "example.com", ":", "https:", "1http:x", "ht tp:x", "https://a b",
                            "https://ä.de", "https://a\n", "https://<a>", "//example.com"}) {
        EXPECT_FALSE(isURI(bad)) << bad;
    }
}

TEST(TextRules, KnowDates) {
    for (const char* good : {"2026-08-11T22:44:12Z", "2026-08-11T22:44:12.019637Z",
                             "2026-03-02T08:15:40-08:00", "2026-03-02T08:15:40+01:00"}) {
        EXPECT_TRUE(isDate(good)) << good;
    }
    for (const char* bad :
         {"", "2026-08-11", "2026-08-11T22:44:12", "2026-08-11 22:44:12Z", "2026-08-11T22:44:12.Z",
          "2026-08-11T22:44:12+0100", "2026-08-11T22:44:12Zx", "x026-08-11T22:44:12Z"}) {
        EXPECT_FALSE(isDate(bad)) << bad;
    }
}

TEST(TextRules, KnowLocales) {
    for (const char* good : {"en", "en-US", "zh-Hans", "zh-Hant-TW", "ar-SA", "fil", "es-419"}) {
        EXPECT_TRUE(isLocale(good)) << good;
    }
    for (const char* bad : {"", "e", "EN", "en_US", "en-us", "en-", "zh-hans", "english", "en-USA", "en-US-",
                            "../x", "en-US/../x", "zh-Hans-"}) {
        EXPECT_FALSE(isLocale(bad)) << bad;
    }
}

}  // namespace
}  // namespace kestrin::sandbox
