#include "KestrinModel/Experiment.h"

#include <algorithm>

namespace kestrin {

Treatment Treatment::made(Treatment treatment) {
    std::sort(treatment.locales.begin(), treatment.locales.end());
    return treatment;
}

}  // namespace kestrin
