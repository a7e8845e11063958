// The key with which the programs of the benchmarks speak to a local App Store Connect.
#pragma once

#include <cstdlib>
#include <map>
#include <string>

#include "ASCKit/Credentials/EnvironmentCredentials.h"

namespace kestrin {

// The one that the environment of this process names, as for kestrin itself.
inline APIKeyCredential environmentCredential() {
    std::map<std::string, std::string> variables;
    for (const char* name : {"ASC_KEY_ID", "ASC_ISSUER_ID", "ASC_PRIVATE_KEY"}) {
        if (const char* value = std::getenv(name)) variables.emplace(name, value);
    }
    return EnvironmentCredentials::load(variables);
}

}  // namespace kestrin
