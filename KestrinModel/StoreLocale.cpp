#include "KestrinModel/StoreLocale.h"

namespace kestrin {

const StoreLocale StoreLocale::englishUS{"en-US"};

}  // namespace kestrin
