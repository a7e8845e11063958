// States of versions and app infos.
#pragma once

#include <set>
#include <string>

namespace kestrin::AppStoreState {

extern const std::set<std::string> editable;  // texts and media can be changed
extern const std::set<std::string> live;      // on sale

}  // namespace kestrin::AppStoreState
