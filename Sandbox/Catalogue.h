// What slots there are for media and what they take: the reference data of the asset library.
//
// Groups, display classes and sizes follow Apple's public screenshot and preview specifications; names of groups
// that Apple's documents don't give are formed like those that they do. Whether an upload or a placement is right is
// judged by the same tables that are published.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "Sandbox/JSON.h"

namespace kestrin::sandbox::Catalogue {

// The attributes of the one resource of type appAssetLibraryRefData.
const Json& attributes();

bool hasGroup(std::string_view group);

// Whether a placement type takes assets of that category.
bool takesCategory(std::string_view placementType, std::string_view category);

// Whether the type has that group at all, and whether it takes that specification there.
bool takesGroup(std::string_view placementType, std::string_view group);
bool takesSpec(std::string_view placementType, std::string_view group, std::string_view specID);

// How many assets a slot holds on surfaces of that feature; nullopt when the feature has no such slot.
std::optional<std::size_t> maxCount(std::string_view feature, std::string_view placementType,
                                    std::string_view group);

// What the bytes of a file were found to be.
struct Picture {
    int width = 0, height = 0;
    bool hasAlpha = false;
};
struct Film {
    int width = 0, height = 0;
    double seconds = 0, framesPerSecond = 0;
    bool hasAudio = false;
};

// The id of the specification that the file meets; "" when there is none. `why` then says what is wrong with it.
std::string specFor(const Picture& picture, std::string_view category, std::string& why);
std::string specFor(const Film& film, std::string_view category, std::string& why);

}  // namespace kestrin::sandbox::Catalogue
