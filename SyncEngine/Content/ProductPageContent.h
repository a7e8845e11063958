// The half of ContentGraph that is about custom product pages and product page optimization tests; ContentGraph.h
// says what reading, writing and copying mean.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "SyncEngine/Content/Flattening.h"

namespace kestrin::ContentGraph {

// Adds the values of all pages and tests.
void flattenProductPages(const std::map<Slug, CustomProductPage>& pages,
                         const std::map<Slug, Experiment>& experiments, Flattening& values);

// Nothing for a key of the default product page; for any other its value, "" when there is none.
std::optional<std::string> productPageValue(const ContentKey& key, const Project& project);

// Whether the key was one of a page or test, and so is settled.
bool setProductPageValue(const std::string& value, const ContentKey& key, Project& project);

// Whether the key was one of a page's or a treatment's media, and so is settled. A page, test or treatment that the
// destination lacks comes into being only when there are items.
bool copyProductPageMedia(const ContentKey& key, const Project& source, Project& destination);

// The items of a media value, in the order of its lines. An asset that is among `known` keeps the file name it has
// there (the first, if there are several), any other has none. Lines that are no tokens are dropped.
MediaItems mediaItems(std::string_view value, const MediaItems& known);

// The list as it is when the locale is in it; otherwise with the locale, sorted.
std::vector<StoreLocale> adding(const StoreLocale& locale, std::vector<StoreLocale> locales);

// "true" or "false"; "" when absent.
std::string flagValue(std::optional<bool> flag);

}  // namespace kestrin::ContentGraph
