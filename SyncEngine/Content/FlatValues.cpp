#include "SyncEngine/Content/FlatValues.h"

namespace kestrin::FlatValue {
namespace {

class Walk {
 public:
    explicit Walk(const FlatValues& values) : next_(values.begin()), end_(values.end()) {}

    // The key that comes next; nullptr at the end.
    const ContentKey* key() const { return next_ == end_ ? nullptr : &next_->first; }

    // The value of the key, behind which the walk goes on; "" when another comes next.
    const std::string& take(const ContentKey& key) {
        static const std::string kNone;
        if (next_ == end_ || next_->first != key) return kNone;
        return (next_++)->second;
    }

 private:
    FlatValues::const_iterator next_, end_;
};

// nullptr counts as behind every key.
const ContentKey* smaller(const ContentKey* a, const ContentKey* b) {
    if (!a || !b) return a ? a : b;
    return *b < *a ? b : a;
}

}  // namespace

void forEach(const FlatValues& first, const FlatValues& second, const FlatValues& third, const Visit& visit) {
    Walk a(first), b(second), c(third);
    while (const auto* key = smaller(smaller(a.key(), b.key()), c.key())) {
        const auto& ofFirst = a.take(*key);
        const auto& ofSecond = b.take(*key);
        const auto& ofThird = c.take(*key);
        visit(*key, ofFirst, ofSecond, ofThird);
    }
}

}  // namespace kestrin::FlatValue
