#include "ASCKit/Credentials/APIKeyCredential.h"

namespace kestrin {
namespace {

constexpr const char* kTeam = "team";
constexpr const char* kIndividual = "individual";
constexpr const char* kIssuerID = "issuerID";

}  // namespace

APIKeyKind::Team APIKeyKind::Team::fromJSON(const JSONValue& value) {
    return {ObjectDecoder(value).string(kIssuerID)};
}

APIKeyKind::Individual APIKeyKind::Individual::fromJSON(const JSONValue& value) {
    ObjectDecoder{value};
    return {};
}

APIKeyKind APIKeyKind::fromJSON(const JSONValue& value) {
    const ObjectDecoder members(value);
    if (value.objectValue()->size() == 1) {
        if (auto team = members.optionalRecord<Team>(kTeam)) return {*std::move(team)};
        if (auto individual = members.optionalRecord<Individual>(kIndividual)) return {*individual};
    }
    throw DecodingError({}, "Invalid number of keys found, expected one.");
}

JSONValue APIKeyKind::toJSON() const {
    return std::visit(Overloaded{
                          [](const Team& team) {
                              return JSONObject{{kTeam, JSONObject{{kIssuerID, team.issuerID}}}};
                          },
                          [](const Individual&) {
                              return JSONObject{{kIndividual, JSONObject{}}};
                          },
                      },
                      kind);
}

}  // namespace kestrin
