#include "ASCKit/Transport/BodyReader.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "Tests/Support/TemporaryFolder.h"

namespace kestrin {
namespace {

std::string allOf(BodyReader& reader, std::size_t piece) {
    std::string bytes, buffer(piece, '\0');
    while (const auto got = reader.read(buffer.data(), buffer.size())) bytes.append(buffer, 0, got);
    return bytes;
}

RC_GTEST_PROP(BodyReader, GivesTheSameBytesInPiecesOfAnySizeAsOftenAsItIsRewound,
              (const std::string& content)) {
    const TemporaryFolder folder;
    folder.write("file", content);
    const auto offset = *rc::gen::inRange<std::int64_t>(0, static_cast<std::int64_t>(content.size()) + 3);
    const auto length = *rc::gen::inRange<std::int64_t>(0, static_cast<std::int64_t>(content.size()) + 3);
    const auto start = std::min(content.size(), static_cast<std::size_t>(offset));
    const auto range = content.substr(start, static_cast<std::size_t>(length));
    const HTTPBody bodies[] = {range, FileRange{folder / "file", offset, length}};

    for (const auto& body : bodies) {
        BodyReader reader(body);
        RC_ASSERT(reader.length() == range.size());
        RC_ASSERT(allOf(reader, *rc::gen::inRange<std::size_t>(1, 10)) == range);
        RC_ASSERT(reader.isUntouched() == range.empty());
        reader.rewind();
        RC_ASSERT(reader.isUntouched());
        RC_ASSERT(allOf(reader, 1000) == range);
    }
}

TEST(BodyReader, ARangeAsLongAsCanBeSaidEndsWithTheFile) {
    const TemporaryFolder folder;
    folder.write("file", "0123456789");
    const HTTPBody body = FileRange{folder / "file", 4, INT64_MAX};
    BodyReader reader(body);
    EXPECT_EQ(reader.length(), 6u);

    const HTTPBody beyond = FileRange{folder / "file", INT64_MAX, INT64_MAX};
    EXPECT_EQ(BodyReader(beyond).length(), 0u);
}

TEST(BodyReader, AFileThatBecameShorterIsAnError) {
    const TemporaryFolder folder;
    folder.write("file", "0123456789");
    const HTTPBody body = FileRange{folder / "file", 0, 10};
    BodyReader reader(body);
    folder.write("file", "0123");

    char bytes[10];
    EXPECT_EQ(reader.read(bytes, 10), 4u);
    EXPECT_THROW(reader.read(bytes, 10), FileError);
}

}  // namespace
}  // namespace kestrin
