// Three sides of a sync, for properties.
#pragma once

#include <rapidcheck.h>

#include <optional>
#include <vector>

#include "SyncEngine/Content/ContentGraph.h"
#include "Tests/Support/Generators.h"

namespace kestrin {

struct Sides {
    Project local, remote;
    std::optional<FlatValues> base;
};

inline rc::Gen<Sides> anySides() {
    return rc::gen::exec([] {
        const auto projects = *rc::gen::container<std::vector<Project>>(3, arbitrary::project());
        Sides sides{projects[0], projects[1], std::nullopt};
        // Sides that share most of what they hold make all outcomes likely.
        for (const auto& [key, value] : ContentGraph::flatten(sides.local)) {
            if (*rc::gen::inRange(0, 2) == 0) ContentGraph::copy(key, sides.local, sides.remote);
        }
        if (*rc::gen::inRange(0, 4) == 0) return sides;
        auto base = projects[2];
        for (const auto* side : {&sides.local, &sides.remote}) {
            for (const auto& [key, value] : ContentGraph::flatten(*side)) {
                if (*rc::gen::inRange(0, 3) == 0) ContentGraph::copy(key, *side, base);
            }
        }
        sides.base = ContentGraph::flatten(base);
        return sides;
    });
}

}  // namespace kestrin
