#include "Tests/Support/Generators.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "KestrinCore/UnicodeText.h"
#include "KestrinModel/PlainName.h"

namespace kestrin {
namespace {

RC_GTEST_PROP(Generators, TextIsValidUTF8, ()) {
    const auto text = *arbitrary::text();
    RC_CLASSIFY(!text::isASCII(text));
    RC_CLASSIFY(text::toNFC(text) != text);
    RC_ASSERT(text::isValidUTF8(text));
}

RC_GTEST_PROP(Generators, NamesArePlain, ()) {
    RC_ASSERT(isPlainPathComponent(*arbitrary::plainName()));
    RC_ASSERT(isPlainPathComponent((*arbitrary::slug()).rawValue));
    RC_ASSERT(isPlainPathComponent((*arbitrary::locale()).rawValue));
    RC_ASSERT(isPlainPathComponent((*arbitrary::platform()).folderName()));
}

RC_GTEST_PROP(Generators, ProjectsHaveContentOfEveryKind, ()) {
    const auto project = *arbitrary::project();
    RC_CLASSIFY(!project.platforms.empty());
    RC_CLASSIFY(!project.pages.empty());
    RC_CLASSIFY(!project.experiments.empty());
    RC_CLASSIFY(!project.app.locales.empty());
    RC_CLASSIFY(!project.manifest.unknownFields.empty());
    for (const auto& [locale, fields] : project.app.locales) RC_ASSERT(!fields.isEmpty());
}

}  // namespace
}  // namespace kestrin
