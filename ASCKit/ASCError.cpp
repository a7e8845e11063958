#include "ASCKit/ASCError.h"

#include "KestrinCore/JSONDecoding.h"
#include "KestrinCore/Message.h"
#include "KestrinCore/StableJSON.h"

namespace kestrin {
namespace {

APIErrorItem itemFromJSON(const JSONValue& value) {
    const ObjectDecoder members(value);
    APIErrorItem item;
    item.status = members.optionalString("status");
    item.code = members.optionalString("code");
    item.title = members.optionalString("title");
    item.detail = members.optionalString("detail");
    if (const auto* source = members.optionalValue("source")) item.source = *source;
    return item;
}

// What the items say, the more exact text of each.
std::string detailsOf(const std::vector<APIErrorItem>& errors) {
    std::string details;
    for (const auto& item : errors) {
        const auto& text = item.detail ? item.detail : item.title;
        if (!text) continue;
        if (!details.empty()) details += ' ';
        details += *text;
    }
    return details;
}

std::string httpDescription(const ASCError::HTTP& error) {
    const auto details = detailsOf(error.errors);
    if (error.status == 403) {
        return message::localized(
            "ascErrorForbidden",
            "This API key doesn’t have permission to do that. Writing a listing needs the App "
            "Manager or Admin role. {details}",
            {{"details", details}});
    }
    return message::localized("ascErrorHTTP", "App Store Connect returned an error ({status}). {details}",
                              {{"status", std::to_string(error.status)}, {"details", details}});
}

// A request that can't be made into an address tells the user no more than a bad reply does.
std::string unreadableDescription() {
    return message::localized("ascErrorInvalidResponse",
                              "App Store Connect sent a response Kestrin couldn’t read.");
}

}  // namespace

std::vector<APIErrorItem> APIErrorItem::decodeAll(std::string_view body) {
    try {
        const auto document = StableJSON::decode(body);
        std::vector<APIErrorItem> items;
        if (const auto* errors = ObjectDecoder(document).optionalArray("errors")) {
            for (const auto& error : *errors) items.push_back(itemFromJSON(error));
        }
        return items;
    } catch (const DecodingError&) {
        return {};
    }
}

std::string ASCError::errorDescription() const {
    using message::localized;
    return std::visit(
        Overloaded{
            [](const HTTP& error) { return httpDescription(error); },
            [](const Transport&) {
                return localized("ascErrorTransport",
                                 "Couldn’t reach App Store Connect. Check your internet connection.");
            },
            [](const InvalidResponse&) { return unreadableDescription(); },
            [](const InvalidRequest&) { return unreadableDescription(); },
            [](const UnreadablePrivateKey& error) {
                return localized("ascErrorUnreadablePrivateKey", "Couldn’t read the private key at {path}.",
                                 {{"path", error.path}});
            },
            [](const MissingEnvironment& error) {
                return localized("ascErrorMissingEnvironment",
                                 "Set {name} to use an App Store Connect API key.", {{"name", error.name}});
            },
            [](const Keychain& error) {
                return localized("ascErrorKeychain", "Couldn’t access the keychain (error {status}).",
                                 {{"status", std::to_string(error.status)}});
            },
            [](const Unauthorized&) {
                return localized(
                    "ascErrorUnauthorized",
                    "App Store Connect didn’t accept this API key. Check the key ID and issuer ID, and "
                    "that the key hasn’t been revoked.");
            },
            [](const RateLimited&) {
                return localized(
                    "ascErrorRateLimited",
                    "App Store Connect’s hourly request limit for this key was reached. Try again "
                    "later.");
            },
            [](const InvalidPrivateKey&) {
                return localized("ascErrorInvalidPrivateKey",
                                 "This file isn’t a valid App Store Connect API private key (.p8).");
            },
        },
        kind);
}

std::vector<std::string> ASCError::apiErrorCodes() const {
    std::vector<std::string> codes;
    if (const auto* http = as<HTTP>()) {
        for (const auto& item : http->errors) {
            if (item.code) codes.push_back(*item.code);
        }
    }
    return codes;
}

}  // namespace kestrin
