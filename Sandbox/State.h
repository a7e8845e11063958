// Everything that one sandbox knows. Whoever holds it holds the service's lock.
#pragma once

#include <map>
#include <string>

#include "Sandbox/Settings.h"
#include "Sandbox/Store.h"
#include "Sandbox/Uploads.h"

namespace kestrin::sandbox {

struct State {
    Settings settings;
    Store store;
    Uploads uploads;
    std::map<std::string, std::string> media;  // the bytes of committed assets, by the asset's id
    std::string root;                          // "http://127.0.0.1:4711"; what links and addresses start with
};

}  // namespace kestrin::sandbox
