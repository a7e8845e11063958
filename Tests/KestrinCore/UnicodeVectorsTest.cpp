// Unicode's own test files against our text operations. A file that is missing fails the test: without it nothing is
// known.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <memory>
#include <set>
#include <sstream>
#include <vector>

#include "KestrinCore/UnicodeText.h"
#include "Tests/Support/Scalars.h"

namespace kestrin {
namespace {

const std::string kUnicodeData = KESTRIN_UNICODE_DATA;

std::string withoutComment(const std::string& line) {
    return line.substr(0, line.find('#'));
}

// "0061 0301" as UTF-8.
std::string fromHex(const std::string& scalars) {
    std::istringstream words(scalars);
    std::string word, text;
    while (words >> word) text += utf8(static_cast<char32_t>(std::stoul(word, nullptr, 16)));
    return text;
}

// GraphemeBreakTest.txt: "÷ 0061 × 0301 ÷", where ÷ is a boundary. Whether one stands before a scalar depends only
// on what comes up to it, so the counts of all beginnings of a line give each of its boundaries.
TEST(UnicodeVectors, GraphemesBreakWhereUnicodeSaysTheyDo) {
    std::ifstream file(kUnicodeData + "/auxiliary/GraphemeBreakTest.txt");
    ASSERT_TRUE(file) << "install Debian's package unicode-data";
    std::size_t lines = 0;
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(withoutComment(line));
        std::string beginning, word;
        std::size_t boundaries = 0;
        while (words >> word) {
            if (word == "÷") {
                ++boundaries;
            } else if (word != "×") {
                beginning += fromHex(word);
                ASSERT_EQ(text::graphemeCount(beginning), boundaries) << line;
            }
        }
        if (!beginning.empty()) ++lines;
    }
    EXPECT_GT(lines, 600u);
}

// The lines of NormalizationTest.txt, which Debian packs.
std::vector<std::string> normalizationLines() {
    const auto command = "bzip2 -dc " + kUnicodeData + "/NormalizationTest.txt.bz2";
    const auto close = [](std::FILE* pipe) {
        EXPECT_EQ(pclose(pipe), 0) << "install unicode-data and bzip2";
    };
    const std::unique_ptr<std::FILE, decltype(close)> pipe(popen(command.c_str(), "r"), close);
    std::string content;
    char buffer[1 << 16];
    while (const auto got = std::fread(buffer, 1, sizeof buffer, pipe.get())) content.append(buffer, got);
    std::istringstream stream(content);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

// The columns source; NFC; NFD; NFKC; NFKD of a line.
std::vector<std::string> columns(const std::string& line) {
    std::istringstream stream(withoutComment(line));
    std::vector<std::string> result;
    for (std::string column; result.size() < 5 && std::getline(stream, column, ';');) {
        result.push_back(fromHex(column));
    }
    return result;
}

TEST(UnicodeVectors, NFCIsWhatUnicodeSaysItIs) {
    std::size_t lines = 0;
    std::set<std::string> listed;  // the single scalars of the file's first part
    bool isFirstPart = false;
    for (const auto& line : normalizationLines()) {
        if (line.starts_with("@Part")) isFirstPart = line.starts_with("@Part1");
        if (line.starts_with("@") || withoutComment(line).empty()) continue;
        const auto column = columns(line);
        ASSERT_EQ(column.size(), 5u) << line;
        ++lines;
        if (isFirstPart) listed.insert(column[0]);
        for (std::size_t i = 0; i < 3; ++i) {
            ASSERT_EQ(text::toNFC(column[i]), column[1]) << line;
            ASSERT_TRUE(text::equal(column[i], column[1])) << line;
            ASSERT_EQ(text::compare(column[i], column[1]), std::weak_ordering::equivalent) << line;
        }
        for (std::size_t i = 3; i < 5; ++i) {
            ASSERT_EQ(text::toNFC(column[i]), column[3]) << line;
            ASSERT_TRUE(text::equal(column[i], column[3])) << line;
        }
        ASSERT_EQ(text::equal(column[0], column[4]), text::toNFC(column[0]) == text::toNFC(column[4]))
            << line;
    }
    EXPECT_GT(lines, 18'000u);

    for (char32_t scalar = 0; scalar < 0x110000; ++scalar) {
        if (scalar == 0xD800) scalar = 0xE000;  // surrogates are no scalars
        const auto text = utf8(scalar);
        if (listed.contains(text)) continue;
        ASSERT_EQ(text::toNFC(text), text) << std::hex << std::uint32_t{scalar};
    }
}

}  // namespace
}  // namespace kestrin
