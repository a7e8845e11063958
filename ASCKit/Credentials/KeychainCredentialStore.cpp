#include "ASCKit/Credentials/KeychainCredentialStore.h"

// clang-format off: the second header needs the first
#define SECRET_API_SUBJECT_TO_CHANGE
#include <libsecret/secret.h>
// clang-format on

#include <memory>
#include <utility>

#include "ASCKit/ASCError.h"
#include "KestrinCore/UnicodeText.h"

namespace kestrin {
namespace {

enum Status : std::int32_t {
    success = 0,
    userCanceled = -128,
    internalComponent = -2070,
    notAvailable = -25291,
    duplicateItem = -25299,
    itemNotFound = -25300,
    interactionNotAllowed = -25308,
};

SecretSchema makeSchema() {
    SecretSchema schema{};
    schema.name = KeychainCredentialStore::kDefaultService;
    schema.flags = SECRET_SCHEMA_NONE;
    schema.attributes[0] = {"service", SECRET_SCHEMA_ATTRIBUTE_STRING};
    schema.attributes[1] = {"account", SECRET_SCHEMA_ATTRIBUTE_STRING};
    return schema;
}

const SecretSchema kSchema = makeSchema();

struct Unref {
    void operator()(void* object) const { g_object_unref(object); }
    void operator()(GHashTable* table) const { g_hash_table_unref(table); }
    void operator()(GList* objects) const { g_list_free_full(objects, g_object_unref); }
    void operator()(SecretValue* value) const { secret_value_unref(value); }
};
using Service = std::unique_ptr<SecretService, Unref>;
using Attributes = std::unique_ptr<GHashTable, Unref>;
using Items = std::unique_ptr<GList, Unref>;
using Value = std::unique_ptr<SecretValue, Unref>;

[[noreturn]] void fail(Status status) {
    throw ASCError(ASCError::Keychain{status});
}

Status statusOf(const GError& error) {
    if (error.domain == SECRET_ERROR) {
        switch (error.code) {
            case SECRET_ERROR_IS_LOCKED:
                return interactionNotAllowed;
            case SECRET_ERROR_NO_SUCH_OBJECT:
                return itemNotFound;
            case SECRET_ERROR_ALREADY_EXISTS:
                return duplicateItem;
            default:
                return internalComponent;
        }
    }
    if (g_error_matches(&error, G_IO_ERROR, G_IO_ERROR_CANCELLED)) return userCanceled;
    if (error.domain == G_DBUS_ERROR || error.domain == G_IO_ERROR) return notAvailable;
    return internalComponent;
}

// Where a call puts its error.
class Outcome {
 public:
    Outcome() = default;
    Outcome(const Outcome&) = delete;
    Outcome& operator=(const Outcome&) = delete;
    ~Outcome() { g_clear_error(&error_); }

    GError** slot() { return &error_; }
    Status status() const { return error_ ? statusOf(*error_) : success; }
    void check() const {
        if (error_) fail(status());
    }

 private:
    GError* error_ = nullptr;
};

Service connect() {
    Outcome outcome;
    Service service(secret_service_get_sync(SECRET_SERVICE_OPEN_SESSION, nullptr, outcome.slot()));
    outcome.check();
    return service;
}

Attributes attributesOf(const std::string& service, const std::string& keyID) {
    return Attributes(
        secret_attributes_build(&kSchema, "service", service.c_str(), "account", keyID.c_str(), nullptr));
}

Items search(const Service& service, const Attributes& attributes, int flags) {
    Outcome outcome;
    Items items(secret_service_search_sync(service.get(), &kSchema, attributes.get(),
                                           static_cast<SecretSearchFlags>(flags | SECRET_SEARCH_UNLOCK),
                                           nullptr, outcome.slot()));
    outcome.check();
    for (auto* item = items.get(); item; item = item->next) {
        // Still locked after the search was told to unlock: the user didn't give the password.
        if (secret_item_get_locked(SECRET_ITEM(item->data))) fail(userCanceled);
    }
    return items;
}

Value secretOf(std::string_view pem) {
    return Value(secret_value_new(pem.data(), static_cast<gssize>(pem.size()), "text/plain"));
}

}  // namespace

std::optional<std::string> KeychainCredentialStore::privateKeyPEM(std::string_view keyID) const {
    const auto attributes = attributesOf(service_, std::string(keyID));
    const auto items = search(connect(), attributes, SECRET_SEARCH_LOAD_SECRETS);
    if (!items) return std::nullopt;

    const Value value(secret_item_get_secret(SECRET_ITEM(items->data)));
    if (!value) fail(success);
    gsize length = 0;
    const char* bytes = secret_value_get(value.get(), &length);
    return text::repaired({bytes, length});
}

void KeychainCredentialStore::savePrivateKeyPEM(std::string_view pem, std::string_view keyID) {
    const auto attributes = attributesOf(service_, std::string(keyID));
    const auto service = connect();
    const auto value = secretOf(pem);
    Outcome outcome;
    if (const auto items = search(service, attributes, SECRET_SEARCH_NONE)) {
        secret_item_set_secret_sync(SECRET_ITEM(items->data), value.get(), nullptr, outcome.slot());
        if (outcome.status() != itemNotFound) return outcome.check();
    }
    Outcome added;
    const auto label = "App Store Connect API key " + std::string(keyID);
    secret_service_store_sync(service.get(), &kSchema, attributes.get(), SECRET_COLLECTION_DEFAULT,
                              label.c_str(), value.get(), nullptr, added.slot());
    added.check();
}

void KeychainCredentialStore::deletePrivateKey(std::string_view keyID) {
    const auto attributes = attributesOf(service_, std::string(keyID));
    const auto items = search(connect(), attributes, SECRET_SEARCH_ALL);
    for (auto* item = items.get(); item; item = item->next) {
        Outcome outcome;
        secret_item_delete_sync(SECRET_ITEM(item->data), nullptr, outcome.slot());
        if (outcome.status() != itemNotFound) outcome.check();
    }
}

}  // namespace kestrin
