// A made-up listing as large as App Store Connect lets a busy team's grow, to measure with: 4 platforms with all texts in
// 40 locales, 70 custom product pages with two slots of ten screenshots in each locale, 3 product page optimization
// tests of 3 treatments each. As a package it is some 7,000 files.
//
// The same in every run and on every machine. Texts are as long as real ones and in the script of their locale,
// right-to-left and CJK included, and none is over its limit.
#pragma once

#include "KestrinModel/Project.h"

namespace kestrin::LargeListing {

// `times` as many locales, and so as many texts, media and files; those beyond the first 40 have invented codes.
Project make(int times = 1);

}  // namespace kestrin::LargeListing
