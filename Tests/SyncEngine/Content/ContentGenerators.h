// Random keys, texts and projects, from pools so small that they often meet.
#pragma once

#include <rapidcheck.h>

#include <string>

#include "KestrinModel/Project.h"
#include "SyncEngine/Content/ContentKey.h"

namespace kestrin::generated {

// Pieces of many scripts, both normal forms, clusters of several scalars, white space and all line endings.
rc::Gen<std::string> text();

// What may stand between two slashes of an id. The composed and the decomposed "é" are the same text.
rc::Gen<std::string> component();
rc::Gen<std::string> componentWithSlashes();

// Keys of every case whose free parts come from `part`.
rc::Gen<ContentKey> key(const rc::Gen<std::string>& part);

rc::Gen<Project> project();
// Keys that project() may have.
rc::Gen<ContentKey> projectKey();

}  // namespace kestrin::generated
