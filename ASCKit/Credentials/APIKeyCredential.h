// What the user holds: an App Store Connect API key.
#pragma once

#include <string>
#include <variant>

#include "KestrinCore/JSONDecoding.h"

namespace kestrin {

// Whose key it is. As JSON one member names the case: {"team": {"issuerID": "…"}} or {"individual": {}}.
struct APIKeyKind {
    struct Team {  // tokens name the issuer
        std::string issuerID;
        static Team fromJSON(const JSONValue& value);
        bool operator==(const Team&) const = default;
    };
    struct Individual {  // tokens speak for the user whose key it is
        static Individual fromJSON(const JSONValue& value);
        bool operator==(const Individual&) const = default;
    };
    std::variant<Team, Individual> kind = Individual{};

    static APIKeyKind team(std::string issuerID) { return {Team{std::move(issuerID)}}; }
    static APIKeyKind individual() { return {Individual{}}; }

    // DecodingError "Invalid number of keys found, expected one." unless exactly one case is named.
    static APIKeyKind fromJSON(const JSONValue& value);
    JSONValue toJSON() const;

    bool operator==(const APIKeyKind&) const = default;
};

struct APIKeyCredential {
    std::string keyID;
    APIKeyKind kind;
    std::string privateKeyPEM;  // the whole content of the .p8 file, not yet looked at

    bool operator==(const APIKeyCredential&) const = default;
};

}  // namespace kestrin
