// The short name under which an asset is stored in the asset library. It carries the digest of the file, which is
// how any machine finds an asset that was uploaded before without downloading it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kestrin::ReferenceName {

// "mq-{stem}-{hash}": the file name without its extension, every character that is neither a letter nor a number
// nor "-" nor "_" as "-", at most 40 characters of it, and the first 12 characters of the digest.
std::string make(std::string_view fileName, std::string_view md5);

// The digest's first 12 digits, in lower case; nothing for a name that this tool didn't make, that is, whose text
// behind the last "-" isn't exactly 12 hexadecimal digits.
std::optional<std::string> hashSuffix(std::string_view referenceName);

}  // namespace kestrin::ReferenceName
