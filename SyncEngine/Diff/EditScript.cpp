#include "SyncEngine/Diff/EditScript.h"

#include <cmath>
#include <limits>
#include <optional>
#include <stdexcept>
#include <unordered_map>

namespace kestrin {
namespace {

using Offset = std::int32_t;
using Sequence = std::vector<Offset>;

std::size_t at(Offset offset) {
    return static_cast<std::size_t>(offset);
}

EditScript nothingYet(const Sequence& from, const Sequence& to) {
    return {std::vector<bool>(from.size()), std::vector<bool>(to.size())};
}

// Whether the furthest point of each diagonal of a round was reached by an insertion. That alone leads back from the
// end to the start, so the points themselves needn't be kept for every round.
class Round {
 public:
    // In one round only every second diagonal is reached.
    Round(Offset lowest, Offset highest) : lowest_(lowest), inserted_(at((highest - lowest) / 2 + 1)) {}

    void setInserted(Offset diagonal, bool inserted) { inserted_[at((diagonal - lowest_) / 2)] = inserted; }
    bool isInserted(Offset diagonal) const { return inserted_[at((diagonal - lowest_) / 2)]; }

 private:
    Offset lowest_;
    std::vector<bool> inserted_;
};

// Myers' search, quick as long as little differs. A point is an offset x in the old sequence and y in the new one; its
// diagonal is x - y.
class GreedySearch {
 public:
    GreedySearch(const Sequence& from, const Sequence& to)
        : from_(from),
          to_(to),
          oldSize_(static_cast<Offset>(from.size())),
          newSize_(static_cast<Offset>(to.size())),
          furthest_(from.size() + to.size() + 3, kUnreached) {}

    // Absent when it takes more than so many steps over diagonals.
    std::optional<EditScript> script(std::uint64_t mostSteps) {
        if (!findEnd(mostSteps)) return std::nullopt;
        return replay(movesFromStart());
    }

 private:
    static constexpr Offset kUnreached = -1;

    Offset& furthest(Offset diagonal) { return furthest_[at(diagonal + newSize_ + 1)]; }
    Offset afterMatches(Offset x, Offset y) const {
        while (x < oldSize_ && y < newSize_ && from_[at(x)] == to_[at(y)]) ++x, ++y;
        return x;
    }

    // Round by round, one edit more each, to the furthest point of every diagonal, until the ends of both are reached.
    bool findEnd(std::uint64_t mostSteps) {
        furthest(0) = afterMatches(0, 0);
        if (oldSize_ == newSize_ && furthest(0) == oldSize_) return true;
        Offset lowest = furthest(0) == newSize_ ? 1 : -1;
        Offset highest = furthest(0) == oldSize_ ? -1 : 1;
        for (std::uint64_t steps = 0; steps <= mostSteps;) {
            steps += static_cast<std::uint64_t>(highest - lowest) / 2 + 1;
            if (advance(lowest, highest)) return true;
        }
        return false;
    }

    // One round over the diagonals between those two, which are then those of the next round. Behind the end of a
    // sequence nothing leads to the end of both by fewer edits, so the diagonals there are left out.
    bool advance(Offset& lowest, Offset& highest) {
        auto& round = rounds_.emplace_back(lowest, highest);
        Offset nextLowest = lowest - 1, nextHighest = highest + 1;
        for (Offset diagonal = lowest; diagonal <= highest; diagonal += 2) {
            const auto below = furthest(diagonal - 1), above = furthest(diagonal + 1);
            const bool inserts = below < above;
            round.setInserted(diagonal, inserts);
            const auto start = inserts ? above : below + 1;
            const auto x = afterMatches(start, start - diagonal);
            furthest(diagonal) = x;
            if (x - diagonal == newSize_) nextLowest = diagonal + 1;
            if (x < oldSize_) continue;
            if (x - diagonal == newSize_) return true;
            nextHighest = diagonal - 1;
            break;
        }
        lowest = nextLowest, highest = nextHighest;
        return false;
    }

    // Whether each edit, in order, is an insertion.
    std::vector<bool> movesFromStart() const {
        std::vector<bool> moves(rounds_.size());
        auto diagonal = oldSize_ - newSize_;
        for (std::size_t i = rounds_.size(); i-- > 0;) {
            moves[i] = rounds_[i].isInserted(diagonal);
            diagonal += moves[i] ? 1 : -1;
        }
        return moves;
    }

    EditScript replay(const std::vector<bool>& moves) const {
        auto script = nothingYet(from_, to_);
        auto x = afterMatches(0, 0), y = x;
        for (const bool inserts : moves) {
            if (inserts) {
                script.inserted[at(y++)] = true;
            } else {
                script.removed[at(x++)] = true;
            }
            const auto end = afterMatches(x, y);
            y += end - x;
            x = end;
        }
        return script;
    }

    const Sequence& from_;
    const Sequence& to_;
    Offset oldSize_, newSize_;
    std::vector<Offset> furthest_;  // x, by diagonal
    std::vector<Round> rounds_;     // from the first edit on
};

// The table of the lengths of the longest common subsequences of all beginnings of both sequences, for sequences that
// differ a lot. Its rows, one for each beginning of the old sequence, are bits: whether the length stays the same
// when the beginning of the new sequence grows by the element of that offset. 64 of them take one step (H. Hyyrö,
// Bit-Parallel LCS-length Computation Revisited, 2004).
//
// Only some of the rows are kept. The way back through the table makes the others again, a block at a time.
class SubsequenceTable {
 public:
    SubsequenceTable(const Sequence& from, const Sequence& to)
        : from_(from), to_(to), words_(to.size() / kBits + 1), matches_(words_) {
        for (std::size_t i = 0; i < to.size(); ++i) occurrences_[to[i]].push_back(i);
    }

    EditScript script() {
        const auto blockSize = static_cast<std::size_t>(std::sqrt(from_.size())) + 1;
        std::vector<Row> blockStarts;
        Row row(words_, ~std::uint64_t{0});
        for (std::size_t i = 0; i < from_.size(); ++i) {
            if (i % blockSize == 0) blockStarts.push_back(row);
            row = next(row, from_[i]);
        }

        auto script = nothingYet(from_, to_);
        std::size_t x = from_.size(), y = to_.size();
        for (; !blockStarts.empty(); blockStarts.pop_back()) {
            const auto start = (blockStarts.size() - 1) * blockSize;
            goBack(start, rowsBetween(start, x, blockStarts.back()), x, y, script);
        }
        while (y > 0) script.inserted[--y] = true;
        return script;
    }

 private:
    using Row = std::vector<std::uint64_t>;
    static constexpr std::size_t kBits = 64;

    static bool isFlat(const Row& row, std::size_t offset) {
        return (row[offset / kBits] >> offset % kBits & 1) != 0;
    }

    // The row after `row`, whose beginning has `element` in addition: in each stretch that ends where the length grows,
    // it now grows at the first match instead. As numbers, that is an addition with its carries.
    Row next(const Row& row, Offset element) {
        const auto places = occurrences_.find(element);
        if (places == occurrences_.end()) return row;
        for (const auto place : places->second) matches_[place / kBits] |= std::uint64_t{1} << place % kBits;
        Row result(words_);
        std::uint64_t carry = 0;
        for (std::size_t i = 0; i < words_; ++i) {
            const auto matching = row[i] & matches_[i];
            const auto sum = row[i] + matching, withCarry = sum + carry;
            carry = sum < matching || withCarry < sum ? 1 : 0;
            result[i] = withCarry | (row[i] & ~matches_[i]);
        }
        for (const auto place : places->second) matches_[place / kBits] = 0;
        return result;
    }

    std::vector<Row> rowsBetween(std::size_t start, std::size_t end, const Row& first) {
        std::vector<Row> rows{first};
        for (auto i = start; i < end; ++i) rows.push_back(next(rows.back(), from_[i]));
        return rows;
    }

    // From the point (x, y) back to the row `start`, which is the first of `rows`.
    static void goBack(std::size_t start, const std::vector<Row>& rows, std::size_t& x, std::size_t& y,
                       EditScript& script) {
        while (x > start) {
            if (y > 0 && isFlat(rows[x - start], y - 1)) {
                script.inserted[--y] = true;
            } else if (y == 0 || !isFlat(rows[x - start - 1], y - 1)) {
                script.removed[--x] = true;
            } else {
                --x, --y;
            }
        }
    }

    const Sequence& from_;
    const Sequence& to_;
    std::size_t words_;                                                 // in a row
    Row matches_;                                                       // all zero between two uses
    std::unordered_map<Offset, std::vector<std::size_t>> occurrences_;  // in the new sequence
};

}  // namespace

EditScript EditScript::shortest(const Sequence& from, const Sequence& to) {
    constexpr auto kMost = static_cast<std::size_t>(std::numeric_limits<Offset>::max() / 4);
    if (from.size() > kMost || to.size() > kMost) throw std::length_error("a sequence of too many elements");
    // A fraction of what the table takes, so that a search given up in vain costs little.
    const auto mostSteps = std::uint64_t{from.size()} * to.size() / 256;
    if (auto script = GreedySearch(from, to).script(mostSteps)) return *std::move(script);
    return SubsequenceTable(from, to).script();
}

}  // namespace kestrin
