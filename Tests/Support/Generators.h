// RapidCheck generators for properties: text of many scripts, JSON values, and whole projects.
//
//     RC_GTEST_PROP(Suite, TheLaw, ()) {
//         const auto project = *arbitrary::project();
//
// Records and values print as JSON when a property fails.
#pragma once

#include <rapidcheck.h>

#include <iosfwd>
#include <string>

#include "KestrinCore/JSONValue.h"
#include "KestrinModel/Project.h"

namespace kestrin {

namespace arbitrary {

// Text

// Valid UTF-8 of any kind: many scripts, composed and decomposed, lone combining marks, joiners, emoji, flags, white
// space, control characters (NUL and CR included), unassigned scalars. May be empty.
rc::Gen<std::string> text();
rc::Gen<std::string> nonEmptyText();
// Without CR, which a text file doesn't keep.
rc::Gen<std::string> nonEmptyTextWithoutCR();

// Any bytes, mostly such that look like UTF-8 and aren't.
rc::Gen<std::string> bytes();

// A name for one file or folder, of several scripts, composed or decomposed: never empty, ".", "..", with "/" or a
// control character in it, or longer than 100 bytes.
rc::Gen<std::string> plainName();

// JSON

// Any value that a document can hold, in the form in which it comes out of one: a number is never whole.
rc::Gen<JSONValue> jsonValue();

// Members with names that no record of ours knows.
rc::Gen<UnknownFields> unknownFields();

// Records. Each one is such that a package holds it exactly: no empty texts, no locale without content, no field in
// a place that isn't its own, names that are plain.

rc::Gen<StoreLocale> locale();      // real ones and plain names
rc::Gen<Slug> slug();               // as Slug::make gives them, and plain names
rc::Gen<StorePlatform> platform();  // the four, and ones that this version doesn't know
rc::Gen<PlacementSlot> slot();      // without "/" in it
rc::Gen<MediaItem> mediaItem();
rc::Gen<LocalizedMedia> media();
rc::Gen<LocalizedTexts> appTexts();      // fields of the app info only
rc::Gen<LocalizedTexts> versionTexts();  // fields of the version only
rc::Gen<ProjectManifest> manifest();
rc::Gen<PlatformListing> platformListing();
rc::Gen<CustomProductPage> page();  // locales sorted
rc::Gen<Treatment> treatment();     // locales sorted
rc::Gen<Experiment> experiment();
rc::Gen<Project> project();

}  // namespace arbitrary

void showValue(const JSONValue& value, std::ostream& out);
void showValue(const Project& project, std::ostream& out);
void PrintTo(const JSONValue& value, std::ostream* out);
void PrintTo(const Project& project, std::ostream* out);

}  // namespace kestrin
