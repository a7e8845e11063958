// The shortest way from one sequence to another by removing and inserting elements.
#pragma once

#include <cstdint>
#include <vector>

namespace kestrin {

// Which elements of the old sequence go, and which of the new one come; the others are the same in both, in order.
struct EditScript {
    std::vector<bool> removed;   // by offset in the old sequence
    std::vector<bool> inserted;  // by offset in the new one

    // The script of Myers' greedy algorithm (An O(ND) Difference Algorithm and Its Variations, 1986), where of two
    // ways to a diagonal the one counts that is further along the old sequence, and of two that are equally far the one
    // that removes. That makes it the one and only shortest script which, read from the end, inserts wherever a
    // shortest script can insert, and else removes wherever one can remove.
    //
    // Elements are any numbers that aren't negative. With n and m elements of which few differ, say d, it takes n + m +
    // d² steps and d² bits. However many differ, it takes no more than n · m / 25 steps, n · m / 256 bits, and the
    // square root of n times m / 4 bytes.
    static EditScript shortest(const std::vector<std::int32_t>& from, const std::vector<std::int32_t>& to);

    bool operator==(const EditScript&) const = default;
};

}  // namespace kestrin
