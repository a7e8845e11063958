#include "Sandbox/Store.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <ctime>
#include <stdexcept>

#include "Sandbox/Schema.h"

namespace kestrin::sandbox {
namespace {

constexpr std::int64_t kPacificOffset = 8 * 3600;

std::string linkOf(std::string_view type, std::string_view relationship, std::string_view id) {
    return fmt::format("{}\n{}\n{}", type, relationship, id);
}

std::string isoDate(std::int64_t seconds) {
    return fmt::format("{:%Y-%m-%dT%H:%M:%S}", fmt::gmtime(static_cast<std::time_t>(seconds)));
}

// Tells the identifiers of one kind from those of another at a glance.
std::uint32_t kindNumber(std::string_view kind) {
    std::uint32_t hash = 2166136261u;  // FNV-1a
    for (const char c : kind) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
    return hash;
}

std::optional<std::string> textOf(const Json& value) {
    if (value.is_string()) return value.get<std::string>();
    if (value.is_boolean()) return value.get<bool>() ? "true" : "false";
    if (value.is_number_integer()) return std::to_string(value.get<std::int64_t>());
    return std::nullopt;
}

template <class Pointer>
void sortByCreation(std::vector<Pointer>& list) {
    std::sort(list.begin(), list.end(), [](Pointer a, Pointer b) { return a->serial < b->serial; });
}

}  // namespace

std::string Resource::text(std::string_view attribute) const {
    const auto found = attributes.find(attribute);
    return found != attributes.end() && found->is_string() ? found->get<std::string>() : std::string();
}

bool Resource::isTrue(std::string_view attribute) const {
    const auto found = attributes.find(attribute);
    return found != attributes.end() && found->is_boolean() && found->get<bool>();
}

std::string Resource::relatedID(std::string_view relationship) const {
    const auto found = related.find(std::string(relationship));
    return found == related.end() ? std::string() : found->second.id;
}

Resource& Store::add(std::string type, Json attributes, Relations related, std::string id) {
    for (const auto& name : resourceType(type).attributes) {
        if (!attributes.contains(name)) attributes[name] = nullptr;
    }
    // A state that was printed and read again holds identifiers that the store makes too.
    if (id.empty()) {
        do id = makeID(type);
        while (find(type, id) != nullptr);
    }
    auto& slot = resources_[type][id];
    if (slot) throw std::logic_error("a resource " + type + " " + id + " exists already");
    slot = std::make_unique<Resource>(
        Resource{{std::move(type), std::move(id)}, std::move(attributes), {}, ++serial_});
    for (auto& [relationship, other] : related) relate(*slot, relationship, other);
    return *slot;
}

const Resource* Store::find(std::string_view type, std::string_view id) const {
    const auto table = resources_.find(type);
    if (table == resources_.end()) return nullptr;
    const auto found = table->second.find(std::string(id));
    return found == table->second.end() ? nullptr : found->second.get();
}

Resource* Store::find(std::string_view type, std::string_view id) {
    return const_cast<Resource*>(std::as_const(*this).find(type, id));
}

Resource& Store::at(std::string_view type, std::string_view id) {
    if (auto* resource = find(type, id)) return *resource;
    throw std::logic_error(fmt::format("no resource {} {}", type, id));
}

std::vector<const Resource*> Store::all(std::string_view type) const {
    std::vector<const Resource*> list;
    const auto table = resources_.find(type);
    if (table == resources_.end()) return list;
    for (const auto& [id, resource] : table->second) list.push_back(resource.get());
    sortByCreation(list);
    return list;
}

std::vector<Resource*> Store::all(std::string_view type) {
    std::vector<Resource*> list;
    for (const auto* resource : std::as_const(*this).all(type))
        list.push_back(const_cast<Resource*>(resource));
    return list;
}

std::vector<const Resource*> Store::all() const {
    std::vector<const Resource*> list;
    for (const auto& [type, table] : resources_) {
        for (const auto& [id, resource] : table) list.push_back(resource.get());
    }
    sortByCreation(list);
    return list;
}

std::vector<Resource*> Store::pointing(std::string_view type, std::string_view relationship,
                                       std::string_view id) {
    const auto found = pointing_.find(linkOf(type, relationship, id));
    return found == pointing_.end() ? std::vector<Resource*>() : found->second;
}

std::vector<const Resource*> Store::pointing(std::string_view type, std::string_view relationship,
                                             std::string_view id) const {
    const auto found = pointing_.find(linkOf(type, relationship, id));
    if (found == pointing_.end()) return {};
    return {found->second.begin(), found->second.end()};
}

void Store::unlink(const Resource& resource, const std::string& relationship) {
    const auto old = resource.related.find(relationship);
    if (old == resource.related.end()) return;
    const auto list = pointing_.find(linkOf(resource.type(), relationship, old->second.id));
    if (list == pointing_.end()) return;
    std::erase(list->second, &resource);
    if (list->second.empty()) pointing_.erase(list);
}

void Store::relate(Resource& resource, const std::string& relationship, const std::optional<Ref>& other) {
    unlink(resource, relationship);
    resource.related.erase(relationship);
    if (!other) return;
    resource.related.emplace(relationship, *other);
    auto& list = pointing_[linkOf(resource.type(), relationship, other->id)];
    list.push_back(&resource);
    if (list.size() > 1 && list[list.size() - 2]->serial > resource.serial) sortByCreation(list);
}

void Store::remove(const Ref& ref) {
    auto* resource = find(ref);
    if (resource == nullptr) return;
    std::vector<Ref> owned;
    for (const auto& [typeName, table] : resources_) {
        for (const auto& relationship : resourceType(typeName).relationships) {
            if (relationship.reach != Relationship::Reach::one || relationship.type != ref.type) continue;
            for (auto* other : pointing(typeName, relationship.name, ref.id)) {
                if (relationship.owner) {
                    owned.push_back(other->ref);
                } else {
                    relate(*other, relationship.name, std::nullopt);
                }
            }
        }
    }
    for (const auto& other : owned) remove(other);
    for (const auto& [relationship, other] : resource->related) unlink(*resource, relationship);
    const Ref gone = ref;  // `ref` may be the resource's own
    resources_[gone.type].erase(gone.id);
}

std::vector<const Resource*> Store::across(const Resource& resource, std::string_view relationship) const {
    const auto* rule = resourceType(resource.type()).relationship(relationship);
    if (rule == nullptr || rule->reach == Relationship::Reach::absent) return {};
    if (rule->reach != Relationship::Reach::one) return pointing(rule->type, rule->inverse, resource.id());
    const auto other = resource.related.find(rule->name);
    const auto* found = other == resource.related.end() ? nullptr : find(other->second);
    return found == nullptr ? std::vector<const Resource*>() : std::vector<const Resource*>{found};
}

std::vector<std::string> Store::valuesAt(const Resource& resource, std::string_view path) const {
    if (path == "id") return {resource.id()};
    const auto dot = path.find('.');
    const auto head = path.substr(0, dot);
    const auto attribute = resource.attributes.find(head);
    if (attribute != resource.attributes.end()) {
        const auto text = textOf(*attribute);
        return text ? std::vector<std::string>{*text} : std::vector<std::string>();
    }
    std::vector<std::string> values;
    for (const auto* other : across(resource, head)) {
        const auto rest = dot == std::string_view::npos ? "id" : path.substr(dot + 1);
        for (auto& value : valuesAt(*other, rest)) values.push_back(std::move(value));
    }
    return values;
}

Resource* Store::first(std::string_view type,
                       const std::vector<std::pair<std::string, std::string>>& conditions) {
    for (auto* resource : all(type)) {
        const auto holds = [&](const auto& condition) {
            const auto values = valuesAt(*resource, condition.first);
            return std::find(values.begin(), values.end(), condition.second) != values.end();
        };
        if (std::all_of(conditions.begin(), conditions.end(), holds)) return resource;
    }
    return nullptr;
}

std::string Store::date() {
    return isoDate(seconds_++) + "Z";
}

std::string Store::pacificDate() {
    return isoDate(seconds_++ - kPacificOffset) + "-08:00";
}

std::string Store::makeID(std::string_view kind) {
    return fmt::format("{:08x}-0000-4000-8000-{:012x}", kindNumber(kind), ++ids_);
}

}  // namespace kestrin::sandbox
