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
// that can't be read, isn't a regular file, or has more than a mebibyte, which no key comes near. A key put in the
// place of its path is such a file too, and isn't repeated in the error: it would end up in the log of a build.
inline constexpr std::string_view keyInsteadOfItsPath =
    "ASC_PRIVATE_KEY, which holds the key itself instead of its path";

APIKeyCredential load(const std::map<std::string, std::string>& environment);

}  // namespace kestrin::EnvironmentCredentials
