// The JSON files that hold texts of one locale: "App/Locales/{locale}.json" and a platform's "listing.json".
//
// One flat object with a string member per text, named by the field's raw value. Each kind of file has its allowed
// fields; every other member, one whose value isn't a string included, is unknown and kept as it is.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "KestrinModel/ListingField.h"
#include "KestrinModel/LocalizedFields.h"

namespace kestrin::LocaleFile {

// Empty texts are dropped. Throws DecodingError unless the bytes are a JSON object.
LocalizedFields decode(std::string_view bytes, std::span<const ListingField> allowed);

// The allowed fields' texts and the unknown members; a text wins over an unknown member of its name. Texts of other
// fields aren't written.
std::string encode(const LocalizedFields& fields, std::span<const ListingField> allowed);

// Whether there is any text of an allowed field or any unknown member.
bool hasContent(const LocalizedFields& fields, std::span<const ListingField> allowed);

}  // namespace kestrin::LocaleFile
