// "experiment.json": a product page optimization test without its treatments.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "KestrinCore/JSONDecoding.h"
#include "KestrinModel/Experiment.h"

namespace kestrin {

struct ExperimentFile {
    std::string name;                               // absent reads as ""; always written
    StorePlatform platform = StorePlatform::iOS;    // absent reads as iOS; always written
    std::optional<std::int64_t> trafficProportion;  // in percent; written when present
    UnknownFields unknownFields;

    static ExperimentFile of(const Experiment& experiment);
    Experiment experiment() const;  // without treatments

    JSONValue toJSON() const;
    static ExperimentFile fromJSON(const JSONValue& value);

    bool operator==(const ExperimentFile&) const = default;
};

}  // namespace kestrin
