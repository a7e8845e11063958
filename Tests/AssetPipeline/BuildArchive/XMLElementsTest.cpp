#include "AssetPipeline/BuildArchive/XMLElements.h"

#include <gtest/gtest.h>

#include "Tests/AssetPipeline/BuildArchive/ArchiveErrors.h"
#include "Tests/Support/PeakMemory.h"
#include "Tests/Support/Repeated.h"

namespace kestrin {
namespace {

using Kind = BuildArchiveError::Kind;

// "(a x=1 text(b))" of <a x="1">text<b/></a>.
std::string outline(std::string_view document) {
    std::string line;
    XMLElements::forEach(document, {.start =
                                        [&](const auto& name, const auto& attributes) {
                                            line += "(" + name;
                                            for (const auto& [key, value] : attributes)
                                                line.append(" ").append(key).append("=").append(value);
                                        },
                                    .end = [&] { line += ")"; },
                                    .text = [&](std::string_view text) { line.append(" ").append(text); }});
    return line;
}

std::optional<Kind> errorOfXML(std::string_view document) {
    return archiveErrorOf([&] { outline(document); });
}

TEST(XMLElements, AreGoneThroughInOrder) {
    EXPECT_EQ(outline("<a><b/>text<c>more</c></a>"), "(a(b) text(c more))");
    EXPECT_EQ(outline("<?xml version='1.0'?><!-- c --><p:a z='1' y='&lt;&#252;'/>"), "(p:a y=<ü z=1)");
    EXPECT_EQ(outline("<!DOCTYPE a PUBLIC 'p' 'http://example.test/a.dtd'><a><![CDATA[<x>]]></a>"),
              "(a <x>)");
    EXPECT_EQ(outline("<?xml version='1.0' encoding='ISO-8859-1'?><a x='\xFC'/>"), "(a x=ü)");
    EXPECT_EQ(outline(std::string("\xFE\xFF\0<\0a\0/\0>", 10)), "(a)");
}

TEST(XMLElements, OfWhatIsNotWellFormedAreMalformed) {
    for (const char* document :
         {"", " ", "<a>", "<a></b>", "<a/><b/>", "text", "<a x='1' x='2'/>", "<a>&none;</a>", "<a>\xFF</a>",
          "<a", "<?xml version='1.0' encoding='no-such'?><a/>"}) {
        SCOPED_TRACE(document);
        EXPECT_EQ(errorOfXML(document), Kind::malformed);
    }
}

TEST(XMLElements, BehindTheLastThatIsWantedAreLeftAlone) {
    int seen = 0;
    XMLElements::forEach("<a><b/><c/></broken", {.start = [&](const auto&, const auto&) { ++seen; },
                                                 .isDone = [&] { return seen == 2; }});
    EXPECT_EQ(seen, 2);
}

TEST(XMLElements, PassOnWhatTheirUserThrows) {
    EXPECT_THROW(XMLElements::forEach("<a><b/></a>", {.start = [](const auto&, const auto&) { throw 7; }}),
                 int);
}

TEST(XMLElements, OfADocumentThatDeclaresEntitiesAreMalformed) {
    EXPECT_EQ(errorOfXML("<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;</a>"), Kind::malformed);
    EXPECT_EQ(errorOfXML("<!DOCTYPE a [<!ENTITY e SYSTEM 'file:///etc/passwd'>]><a>&e;</a>"),
              Kind::malformed);
    EXPECT_EQ(errorOfXML("<!DOCTYPE a [<!ENTITY % e SYSTEM 'file:///etc/passwd'> %e;]><a/>"),
              Kind::malformed);
    std::string laughs = "<!DOCTYPE a [<!ENTITY e0 'lol'>";
    for (int i = 1; i < 40; ++i) {
        laughs +=
            "<!ENTITY e" + std::to_string(i) + " '" + repeated(10, "&e" + std::to_string(i - 1) + ";") + "'>";
    }
    EXPECT_EQ(errorOfXML(laughs + "]><a>&e39;</a>"), Kind::malformed);
}

TEST(XMLElements, ReadNothingOutsideOfTheDocument) {
    EXPECT_EQ(outline("<!DOCTYPE a SYSTEM 'file:///etc/passwd'><a/>"), "(a)");
}

TEST(XMLElements, HaveADeepestLevel) {
    const auto nested = [](std::size_t depth) { return repeated(depth, "<a>") + repeated(depth, "</a>"); };
    EXPECT_EQ(errorOfXML(nested(XMLElements::mostDepth)), std::nullopt);
    EXPECT_EQ(errorOfXML(nested(XMLElements::mostDepth + 1)), Kind::malformed);
}

TEST(XMLElements, OfADocumentThatIsTooLargeAreMalformed) {
    const auto ofSize = [](std::size_t size) { return "<a>" + std::string(size - 7, 'x') + "</a>"; };
    EXPECT_EQ(errorOfXML(ofSize(XMLElements::mostBytes)), std::nullopt);
    EXPECT_EQ(errorOfXML(ofSize(XMLElements::mostBytes + 1)), Kind::malformed);
}

// As many pieces of a document as fit, each of which costs a parser memory of its own.
std::string filledWith(const std::function<std::string(int)>& piece) {
    std::string pieces;
    for (int i = 0; pieces.size() + 30 < XMLElements::mostBytes; ++i) pieces += piece(i);
    return pieces;
}

TEST(XMLElements, TakeLittleMemoryWhateverTheDocumentIs) {
    const std::map<std::string, std::string> documents = {
        {"attributes", "<a" + filledWith([](int i) { return " a" + std::to_string(i) + "=''"; }) + "/>"},
        {"names of elements",
         "<a>" + filledWith([](int i) { return "<a" + std::to_string(i) + "/>"; }) + "</a>"},
        {"open elements", filledWith([](int) { return "<a>"; })},
        {"one text", "<a>" + filledWith([](int) { return "x"; }) + "</a>"},
        {"one attribute", "<a b='" + filledWith([](int) { return "x"; }) + "'/>"},
        {"one name", "<" + filledWith([](int) { return "x"; }) + "/>"},
        {"declared attributes", "<!DOCTYPE a [" + filledWith([](int i) {
                                    return "<!ATTLIST a b" + std::to_string(i) + " CDATA 'x'>";
                                }) + "]><a/>"},
    };
    for (const auto& [what, document] : documents) {
        SCOPED_TRACE(what);
        EXPECT_LE(document.size(), XMLElements::mostBytes);
        EXPECT_LT(peakMemoryOf([&hostile = document] { errorOfXML(hostile); }),
                  (std::size_t{50} << 20) * memoryFactor);
    }
}

}  // namespace
}  // namespace kestrin
