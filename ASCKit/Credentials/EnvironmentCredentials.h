// The API key that the environment names.
//
//   ASC_KEY_ID       the key's identifier; required
//   ASC_ISSUER_ID    the issuer of a team key; absent or empty: the key is an individual one
//   ASC_PRIVATE_KEY  path of the .p8 file, never its content; absent: ~/.appstoreconnect/AuthKey_{key ID}.p8
#pragma once

#include <map>
#include <string>

#include "ASCKit/Credentials/APIKeyCredential.h"

namespace kestrin::EnvironmentCredentials {

// A leading "~" is the home folder (HOME of `environment`; without it, the one of the user's account). The file may
// hold anything: a key that isn't one shows when a client is made of it.
//
// Throws ASCError: MissingEnvironment without ASC_KEY_ID; UnreadablePrivateKey, with the absolute path, for a file
// that can't be read, isn't a regular file, or has more than a mebibyte, which no key comes near.
APIKeyCredential load(const std::map<std::string, std::string>& environment);

}  // namespace kestrin::EnvironmentCredentials
