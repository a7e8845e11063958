#include "KestrinModel/ExperimentFile.h"

#include "KestrinCore/JSONRecords.h"

namespace kestrin {

ExperimentFile ExperimentFile::of(const Experiment& experiment) {
    return {experiment.name, experiment.platform, experiment.trafficProportion, experiment.unknownFields};
}

Experiment ExperimentFile::experiment() const {
    return {.name = name,
            .platform = platform,
            .trafficProportion = trafficProportion,
            .treatments = {},
            .unknownFields = unknownFields};
}

JSONValue ExperimentFile::toJSON() const {
    auto members = unknownFields;
    members.insert_or_assign("name", name);
    members.insert_or_assign("platform", platform.rawValue);
    JSONRecords::setOptional(members, "trafficProportion", trafficProportion);
    return members;
}

ExperimentFile ExperimentFile::fromJSON(const JSONValue& value) {
    const ObjectDecoder members(value);
    return {
        .name = members.optionalString("name").value_or(""),
        .platform = {members.optionalString("platform").value_or(StorePlatform::iOS.rawValue)},
        .trafficProportion = members.optionalInteger("trafficProportion"),
        .unknownFields = members.unknownFields({"name", "platform", "trafficProportion"}),
    };
}

}  // namespace kestrin
