#include "AssetPipeline/BuildArchive/PropertyList.h"

#include <gtest/gtest.h>

#include "Tests/AssetPipeline/BuildArchive/ArchiveErrors.h"
#include "Tests/Support/ArchiveBytes.h"
#include "Tests/Support/PeakMemory.h"
#include "Tests/Support/Repeated.h"

namespace kestrin {
namespace {

using Kind = BuildArchiveError::Kind;
using binaryPropertyList::array;
using binaryPropertyList::ascii;
using binaryPropertyList::dictionary;

std::optional<Kind> errorOfList(const std::string& bytes) {
    return archiveErrorOf([&] { PropertyList::parse(bytes); });
}

const std::string kTrue = "\x09", kFalse = "\x08";

TEST(PropertyList, ReadsXML) {
    const auto list = PropertyList::parse(xmlPropertyList(
        "<key>text</key><string>a &amp; ü</string><key>yes</key><true/><key>no</key><false/>"
        "<key>texts</key><array><string>a</string><integer>1</integer><string>b</string></array>"));
    EXPECT_EQ(list.text("text"), "a & ü");
    EXPECT_EQ(list.truth("yes"), true);
    EXPECT_EQ(list.truth("no"), false);
    EXPECT_EQ(list.texts("texts"), (std::vector<std::string>{"a", "b"}));
}

TEST(PropertyList, ReadsTextAsXMLMayWriteIt) {
    const auto list = PropertyList::parse(xmlPropertyList(
        "<!-- who? --><key>a</key><string>&#252;&#x1F319;&lt;&gt;&quot;&apos;</string>"
        "<key>b</key><string><![CDATA[<x>]]></string><key>c</key><string></string><key>d</key><string/>"));
    EXPECT_EQ(list.text("a"), "ü🌙<>\"'");
    EXPECT_EQ(list.text("b"), "<x>");
    EXPECT_EQ(list.text("c"), "");
    EXPECT_EQ(list.text("d"), "");
}

TEST(PropertyList, ReadsBinary) {
    const auto list = PropertyList::parse(
        binaryPropertyList::of({dictionary({1, 2, 3, 4}, {5, 6, 7, 8}), ascii("text"), ascii("yes"),
                                ascii("no"), ascii("texts"), ascii("a text of more than fifteen bytes"),
                                kTrue, kFalse, array({9, 6, 10}), ascii("a"), std::string("\x61\0\xFC", 3)}));
    EXPECT_EQ(list.text("text"), "a text of more than fifteen bytes");
    EXPECT_EQ(list.truth("yes"), true);
    EXPECT_EQ(list.truth("no"), false);
    EXPECT_EQ(list.texts("texts"), (std::vector<std::string>{"a", "ü"}));
}

TEST(PropertyList, WhatIsNotThereOrOfAnotherTypeIsAbsent) {
    const auto list = PropertyList::parse(xmlPropertyList("<key>number</key><integer>1</integer>"));
    for (const char* key : {"number", "none"}) {
        EXPECT_EQ(list.text(key), std::nullopt);
        EXPECT_EQ(list.truth(key), std::nullopt);
        EXPECT_TRUE(list.texts(key).empty());
    }
}

TEST(PropertyList, AnythingElseIsMalformed) {
    for (const std::string& bytes :
         {std::string(), std::string("text"), std::string("bplist00"), std::string("<plist/>"),
          std::string("<plist><array/></plist>"), xmlPropertyList("<key>a"), std::string("{ a = b; }"),
          std::string("<html><dict/></html>"), binaryPropertyList::of({}),
          binaryPropertyList::of({array({})})}) {
        SCOPED_TRACE(bytes);
        EXPECT_EQ(errorOfList(bytes), Kind::malformed);
    }
}

TEST(PropertyList, ATooLargeOneIsMalformed) {
    const auto list =
        xmlPropertyList("<key>a</key><string>" + std::string(PropertyList::mostBytes, 'a') + "</string>");
    EXPECT_EQ(errorOfList(list), Kind::malformed);

    std::vector<std::string> objects = {dictionary({1}, {2}), ascii("a"), array({})};
    objects.resize(20, ascii(std::string(65'000, 'x')));  // that nothing refers to
    EXPECT_GT(binaryPropertyList::of(objects).size(), PropertyList::mostBytes);
    EXPECT_EQ(errorOfList(binaryPropertyList::of(objects)), Kind::malformed);
}

TEST(PropertyList, AnEntityBombIsMalformed) {
    EXPECT_EQ(
        errorOfList(
            "<!DOCTYPE plist [<!ENTITY a 'b'>]><plist><dict><key>a</key><string>&a;</string></dict></plist>"),
        Kind::malformed);
}

TEST(PropertyList, NestingWithoutEndIsMalformed) {
    EXPECT_EQ(errorOfList(repeated(100'000, "<array>")), Kind::malformed);
    EXPECT_EQ(
        errorOfList(xmlPropertyList("<key>a</key>" + repeated(600, "<array>") + repeated(600, "</array>"))),
        Kind::malformed);
    std::vector<std::string> objects = {dictionary({1}, {2}), ascii("a")};
    EXPECT_EQ(errorOfList(binaryPropertyList::of({dictionary({1}, {0}), ascii("a")})),
              Kind::malformed);  // itself
    EXPECT_EQ(errorOfList(binaryPropertyList::of({dictionary({1}, {2}), ascii("a"), array({3}), array({2})})),
              Kind::malformed);
}

// Arrays in arrays, with references of four bytes.
std::string nestedBinaryList(std::uint64_t arrays) {
    const auto reference = [](std::uint64_t object) { return bigEndian(object, 4); };
    std::string bytes = "bplist00", offsets;
    const auto add = [&](const std::string& object) {
        offsets += bigEndian(bytes.size(), 4);
        bytes += object;
    };
    add("\xD1" + reference(1) + reference(2));
    add(ascii("a"));
    for (std::uint64_t i = 0; i < arrays; ++i) add("\xA1" + reference(3 + i));
    add(array({}));
    return bytes + offsets + bigEndian(0, 6) + bigEndian(4, 1) + bigEndian(4, 1) + bigEndian(arrays + 3, 8) +
           bigEndian(0, 8) + bigEndian(bytes.size(), 8);
}

TEST(PropertyList, OfABinaryOneTheDepthIsLimitedToo) {
    EXPECT_EQ(errorOfList(nestedBinaryList(500)), std::nullopt);
    EXPECT_EQ(errorOfList(nestedBinaryList(512)), Kind::malformed);
    EXPECT_EQ(errorOfList(nestedBinaryList(100'000)), Kind::malformed);
}

TEST(PropertyList, ATableOfOffsetsBehindTheEndIsMalformed) {
    const auto list = binaryPropertyList::of({dictionary({}, {})});
    for (const std::uint64_t place : {list.size() - 31, list.size(), std::size_t{1} << 40, ~std::size_t{0}}) {
        SCOPED_TRACE(place);
        auto bytes = list;
        bytes.replace(bytes.size() - 8, 8, bigEndian(place, 8));
        EXPECT_EQ(errorOfList(bytes), Kind::malformed);
        bytes.replace(bytes.size() - 24, 8, bigEndian(std::uint64_t{1} << 60, 8));  // of so many objects
        EXPECT_EQ(errorOfList(bytes), Kind::malformed);
    }
}

TEST(PropertyList, ArraysThatMultiplyEachOtherAreMalformed) {
    std::vector<std::string> objects = {dictionary({1}, {2}), ascii("a")};
    for (int i = 3; i < 60; ++i) objects.push_back(array({i, i}));
    objects.push_back(array({}));
    EXPECT_EQ(errorOfList(binaryPropertyList::of(objects)), Kind::malformed);
}

TEST(PropertyList, ATextThatStandsInManyPlacesIsMalformedOnceItTakesTooMuch) {
    const auto listOf = [](int places) {
        return binaryPropertyList::of({dictionary({1}, {2}), ascii("a"),
                                       array(std::vector<int>(static_cast<std::size_t>(places), 3)),
                                       ascii(std::string(50'000, 'x'))});
    };
    EXPECT_EQ(errorOfList(listOf(100)), std::nullopt);
    EXPECT_EQ(errorOfList(listOf(120)), Kind::malformed);
    EXPECT_EQ(errorOfList(listOf(10'000)), Kind::malformed);
}

TEST(PropertyList, TakesLittleMemoryWhateverItHolds) {
    const auto most = PropertyList::mostBytes - 300;
    const std::map<std::string, std::string> lists = {
        {"many values",
         xmlPropertyList("<key>a</key><array>" + repeated((most - 30) / 7, "<true/>") + "</array>")},
        {"many keys", xmlPropertyList(repeated(most / 22, "<key>a</key><string/>"))},
        {"one text", xmlPropertyList("<key>a</key><string>" + std::string(most - 100, 'a') + "</string>")},
        {"a text in many places", binaryPropertyList::of({dictionary({1}, {2}), ascii("a"),
                                                          array(std::vector<int>(60'000, 3)), ascii("x")})},
    };
    for (const auto& [what, bytes] : lists) {
        SCOPED_TRACE(what);
        EXPECT_LT(peakMemoryOf([&list = bytes] { EXPECT_EQ(errorOfList(list), std::nullopt); }),
                  (std::size_t{50} << 20) * memoryFactor);
    }
}

}  // namespace
}  // namespace kestrin
