#include "AssetPipeline/BuildArchive/BinaryPropertyListCost.h"

#include <limits>
#include <vector>

#include "AssetPipeline/BuildArchive/BuildArchiveError.h"
#include "AssetPipeline/BuildArchive/IntegerReading.h"

namespace kestrin::BinaryPropertyListCost {
namespace {

constexpr std::uint64_t kInfinite = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t kUnknown = 0;
constexpr std::uint64_t kPerObject = 160;  // of a reader's own, whatever the object is
constexpr int kMostDepth = 512;

std::uint64_t sum(std::uint64_t a, std::uint64_t b) {
    return a > kInfinite - b ? kInfinite : a + b;
}

// The layout: a head of eight bytes, objects, a table of their offsets, and a trailer of 32 bytes that says where the
// table is, how long its numbers and those of references are, and which object is the top.
class Outline {
 public:
    explicit Outline(std::string_view bytes) : bytes_(bytes) {
        constexpr std::size_t kTrailer = 32;
        if (bytes.size() < kTrailer) fail();
        const auto trailer = bytes.size() - kTrailer;
        offsetSize_ = number(trailer + 6, 1);
        referenceSize_ = number(trailer + 7, 1);
        const auto objects = number(trailer + 8, 8);
        top_ = number(trailer + 16, 8);
        table_ = number(trailer + 24, 8);
        const bool sizesAreSound =
            offsetSize_ >= 1 && offsetSize_ <= 8 && referenceSize_ >= 1 && referenceSize_ <= 8;
        if (!sizesAreSound || table_ > trailer || objects > (trailer - table_) / offsetSize_) fail();
        costs_.resize(static_cast<std::size_t>(objects), kUnknown);
    }

    std::uint64_t cost() { return costOf(top_, 0); }

 private:
    enum Type : std::uint64_t {
        integer = 1,
        data = 4,
        ascii = 5,
        utf16 = 6,
        uid = 8,
        array = 10,
        set = 12,
        dictionary = 13
    };

    [[noreturn]] static void fail() { throw BuildArchiveError(BuildArchiveError::Kind::malformed); }

    std::uint64_t number(std::uint64_t offset, std::uint64_t size) const {
        if (offset > bytes_.size() || size > bytes_.size() - offset || size > 8) fail();
        return integerOf(bytes_.substr(static_cast<std::size_t>(offset), static_cast<std::size_t>(size)),
                         ByteOrder::bigEndian);
    }

    std::uint64_t costOf(std::uint64_t object, int depth) {
        if (object >= costs_.size()) fail();
        if (depth > kMostDepth) return kInfinite;
        auto& cost = costs_[static_cast<std::size_t>(object)];
        if (cost != kUnknown) return cost;
        cost = kInfinite;  // what is found again below itself never ends
        cost = freshCostOf(number(table_ + object * offsetSize_, offsetSize_), depth);
        return cost;
    }

    std::uint64_t freshCostOf(std::uint64_t offset, int depth) {
        const auto type = number(offset, 1) >> 4;
        auto count = number(offset, 1) & 0xF;
        ++offset;
        const bool isCounted = type == data || type == ascii || type == utf16 || type >= array;
        if (isCounted && count == 0xF) {  // the count is an integer of its own
            const auto size = std::uint64_t{1} << (number(offset, 1) & 0xF);
            count = number(offset + 1, size);
            offset += 1 + size;
        }
        if (!isCounted) return kPerObject;
        if (count > bytes_.size()) fail();
        if (type < array) return kPerObject + 3 * count;  // at most three bytes of UTF-8 for each
        auto total = kPerObject;
        for (auto left = type == dictionary ? 2 * count : count; left > 0 && total != kInfinite; --left) {
            total = sum(total, costOf(number(offset, referenceSize_), depth + 1));
            offset += referenceSize_;
        }
        return total;
    }

    std::string_view bytes_;
    std::uint64_t offsetSize_ = 0, referenceSize_ = 0, top_ = 0, table_ = 0;
    std::vector<std::uint64_t> costs_;  // by object
};

}  // namespace

std::uint64_t of(std::string_view bytes) {
    return Outline(bytes).cost();
}

}  // namespace kestrin::BinaryPropertyListCost
