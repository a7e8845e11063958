// "treatment.json": of a treatment what isn't kept per locale.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "KestrinCore/JSONDecoding.h"
#include "KestrinModel/Experiment.h"

namespace kestrin {

struct TreatmentFile {
    std::string name;                        // absent reads as ""; always written
    std::optional<std::string> appIconName;  // written when present
    std::vector<StoreLocale> locales;  // in the order of the file; absent reads as empty; always written
    UnknownFields unknownFields;

    static TreatmentFile of(const Treatment& treatment);
    Treatment treatment() const;  // without media; its locales keep the file's order

    JSONValue toJSON() const;
    static TreatmentFile fromJSON(const JSONValue& value);

    bool operator==(const TreatmentFile&) const = default;
};

}  // namespace kestrin
