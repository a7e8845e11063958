// All resources of the sandbox and how they point at one another.
//
// A resource keeps its to-one relationships; the store knows from these who points at whom. Lists are in the order
// of creation. Identifiers and dates are counted up from a fixed beginning, so that the same requests give the
// same documents in every run.
#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Sandbox/JSON.h"

namespace kestrin::sandbox {

struct Ref {
    std::string type;
    std::string id;

    auto operator<=>(const Ref&) const = default;
};

struct Resource {
    Ref ref;
    Json attributes = Json::object();
    std::map<std::string, Ref> related =
        {};                    // the to-one relationships that are set; Store::relate changes them
    std::uint64_t serial = 0;  // counts up with creation

    const std::string& id() const { return ref.id; }
    const std::string& type() const { return ref.type; }

    // "" for an attribute that is absent or not a text.
    std::string text(std::string_view attribute) const;
    bool isTrue(std::string_view attribute) const;
    // "" for a relationship that isn't set.
    std::string relatedID(std::string_view relationship) const;
};

using Relations = std::map<std::string, Ref>;

class Store {
 public:
    Store() = default;
    Store(Store&&) = default;
    Store& operator=(Store&&) = default;

    // With an empty `id` the store makes one. References stay valid until the resource is removed.
    Resource& add(std::string type, Json attributes, Relations related = {}, std::string id = {});

    // nullptr when there is none.
    Resource* find(std::string_view type, std::string_view id);
    const Resource* find(std::string_view type, std::string_view id) const;
    Resource* find(const Ref& ref) { return find(ref.type, ref.id); }
    const Resource* find(const Ref& ref) const { return find(ref.type, ref.id); }

    // For what is known to exist.
    Resource& at(std::string_view type, std::string_view id);
    Resource& at(const Ref& ref) { return at(ref.type, ref.id); }

    std::vector<Resource*> all(std::string_view type);
    std::vector<const Resource*> all(std::string_view type) const;

    std::vector<const Resource*> all() const;  // of every type

    // The resources of `type` whose `relationship` is the resource with that id.
    std::vector<Resource*> pointing(std::string_view type, std::string_view relationship,
                                    std::string_view id);
    std::vector<const Resource*> pointing(std::string_view type, std::string_view relationship,
                                          std::string_view id) const;

    // nullopt takes the relationship away.
    void relate(Resource& resource, const std::string& relationship, const std::optional<Ref>& other);

    // Removes the resource and what it owns; whatever else pointed at it points nowhere.
    void remove(const Ref& ref);

    // The texts that `path` leads to from the resource: names of relationships, then that of an attribute, joined
    // by dots, or "id". A to-many relationship leads to each of its resources; a truth value is "true" or "false";
    // null and what doesn't exist lead nowhere.
    std::vector<std::string> valuesAt(const Resource& resource, std::string_view path) const;

    // The first resource for which each path leads to the text beside it; nullptr when there is none.
    // first("appStoreVersionLocalizations", {{"locale", "de-DE"}, {"appStoreVersion.platform", "IOS"}})
    Resource* first(std::string_view type,
                    const std::vector<std::pair<std::string, std::string>>& conditions);

    // One second later with each call: "2026-03-02T16:15:40Z".
    std::string date();
    // The same in the offset that versions and builds bear: "2026-03-02T08:15:40-08:00".
    std::string pacificDate();
    // `date` and `pacificDate` go on from here, in seconds since 1970.
    void setClock(std::int64_t seconds) { seconds_ = seconds; }
    std::int64_t clock() const { return seconds_; }

    // As the identifiers of new resources are made; for identifiers that aren't a resource's.
    std::string makeID(std::string_view kind);

 private:
    using Link = std::string;  // type, relationship and id of the other end, joined by line feeds

    std::vector<const Resource*> across(const Resource& resource, std::string_view relationship) const;
    void unlink(const Resource& resource, const std::string& relationship);

    std::map<std::string, std::map<std::string, std::unique_ptr<Resource>>, std::less<>> resources_;
    std::unordered_map<Link, std::vector<Resource*>> pointing_;
    std::uint64_t serial_ = 0;
    std::uint64_t ids_ = 0;
    std::int64_t seconds_ = 1'772'366'400;  // 2026-03-01T12:00:00Z
};

}  // namespace kestrin::sandbox
