#include "Sandbox/Document.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <set>

#include "Sandbox/Refusal.h"
#include "Sandbox/Resources/Views.h"
#include "Sandbox/Schema.h"

namespace kestrin::sandbox {
namespace {

using Reach = Relationship::Reach;
using Shows = Relationship::Shows;

constexpr std::size_t kDefaultRelationshipSize = 10;

Json identifier(const Ref& ref) {
    return {{"type", ref.type}, {"id", ref.id}};
}

bool wanted(const ReadOptions& options, const std::string& type, const std::string& field) {
    const auto fields = options.fields.find(type);
    return fields == options.fields.end() || fields->second.contains(field);
}

// The resources at the other end, at most `limit` of them; `total` counts them all.
struct OtherEnd {
    std::vector<const Resource*> resources;
    std::size_t total = 0;
    std::size_t limit = 0;
};

OtherEnd otherEnd(const State& state, const Resource& resource, const Relationship& relationship,
                  const ReadOptions& options) {
    OtherEnd end;
    if (relationship.reach == Reach::one) {
        const auto found = resource.related.find(relationship.name);
        const auto* other = found == resource.related.end() ? nullptr : state.store.find(found->second);
        if (other != nullptr) end.resources.push_back(other);
    } else if (relationship.reach != Reach::absent) {
        end.resources = state.store.pointing(relationship.type, relationship.inverse, resource.id());
    }
    const auto limit = options.relationshipLimits.find(relationship.name);
    end.limit = limit == options.relationshipLimits.end() ? kDefaultRelationshipSize : limit->second;
    end.total = end.resources.size();
    end.resources.resize(std::min(end.total, end.limit));
    return end;
}

class DocumentWriter {
 public:
    DocumentWriter(const State& state, const Call& call) : state_(state), call_(call) {}

    Json single(const Resource& resource) {
        Json document{{"data", primary(resource)}, {"links", {{"self", address(call_.request.target)}}}};
        addIncluded(document);
        return document;
    }

    Json page(const std::vector<const Resource*>& all) {
        const auto first = offset(), size = pageSize();
        Json data = Json::array();
        for (auto i = first; i < std::min(first + size, all.size()); ++i) data.push_back(primary(*all[i]));
        Json document{{"data", std::move(data)},
                      {"links", {{"self", address(call_.request.target)}}},
                      {"meta", {{"paging", {{"total", all.size()}, {"limit", size}}}}}};
        if (first + size < all.size()) {
            const auto next = cursor(first + size);
            document["meta"]["paging"]["nextCursor"] = next;
            document["links"]["next"] =
                address(fmt::format("{}?cursor={}{}", call_.request.path(), next, queryWithoutCursor("&")));
            document["links"]["first"] = address(call_.request.path() + queryWithoutCursor("?"));
        }
        addIncluded(document);
        return document;
    }

    std::string selfLink(const Resource& resource) const {
        const auto& type = resourceType(resource.type());
        return address(fmt::format("/{}/{}/{}", type.apiVersion, type.name, percentEncoded(resource.id())));
    }

 private:
    std::string address(const std::string& target) const { return state_.root + target; }

    Json primary(const Resource& resource) {
        for (const auto& name : call_.options.include) {
            const auto* relationship = resourceType(resource.type()).relationship(name);
            if (relationship == nullptr) continue;
            for (const auto* other : otherEnd(state_, resource, *relationship, call_.options).resources) {
                if (known_.insert(other->ref).second) included_.push_back(other);
            }
        }
        return object(resource, true);
    }

    // Only a primary resource shows data for what `include` names.
    Json object(const Resource& resource, bool isPrimary) const {
        const auto& type = resourceType(resource.type());
        const auto self = selfLink(resource);
        Json object{{"type", type.name}, {"id", resource.id()}, {"links", {{"self", self}}}};
        auto attributes = shownAttributes(state_, resource);
        for (const auto& name : type.attributes) {
            if (!wanted(call_.options, type.name, name)) attributes.erase(name);
        }
        if (!attributes.empty()) object["attributes"] = std::move(attributes);
        Json relationships = Json::object();
        for (const auto& relationship : type.relationships) {
            if (!wanted(call_.options, type.name, relationship.name)) continue;
            auto shown = relationshipObject(resource, relationship, self, isPrimary);
            if (!shown.empty()) relationships[relationship.name] = std::move(shown);
        }
        if (!relationships.empty()) object["relationships"] = std::move(relationships);
        return object;
    }

    Json relationshipObject(const Resource& resource, const Relationship& relationship,
                            const std::string& self, bool isPrimary) const {
        Json object = Json::object();
        if (relationship.shows == Shows::links) {
            object["links"] = {{"self", fmt::format("{}/relationships/{}", self, relationship.name)},
                               {"related", fmt::format("{}/{}", self, relationship.name)}};
        }
        const bool named = isPrimary && call_.options.includes(relationship.name);
        if (!named && relationship.shows != Shows::data) return object;
        const auto end = otherEnd(state_, resource, relationship, call_.options);
        if (relationship.reach == Reach::many) {
            object["data"] = Json::array();
            for (const auto* other : end.resources) object["data"].push_back(identifier(other->ref));
            object["meta"] = {{"paging", {{"total", end.total}, {"limit", end.limit}}}};
        } else if (!end.resources.empty()) {
            object["data"] = identifier(end.resources.front()->ref);
        } else if (relationship.shows != Shows::data) {
            object["data"] = nullptr;
        }
        return object;
    }

    void addIncluded(Json& document) const {
        if (call_.options.include.empty()) return;
        auto& list = document["included"] = Json::array();
        for (const auto* resource : included_) list.push_back(object(*resource, false));
    }

    std::size_t pageSize() const {
        return std::min(call_.options.limit.value_or(state_.settings.defaultPageSize),
                        state_.settings.largestPage);
    }

    // "" or the query as it came, less the cursor, behind `separator`.
    std::string queryWithoutCursor(std::string_view separator) const {
        std::string kept, query = call_.request.query();
        for (std::size_t start = 0; start < query.size();) {
            const auto end = std::min(query.find('&', start), query.size());
            const auto piece = query.substr(start, end - start);
            if (!piece.starts_with("cursor=")) {
                if (!kept.empty()) kept += '&';
                kept += piece;
            }
            start = end + 1;
        }
        return kept.empty() ? kept : std::string(separator) + kept;
    }

    // The place in the list, and a check that it is this list's.
    std::string cursor(std::size_t place) const {
        std::uint32_t hash = 2166136261u;
        for (const char c : call_.request.path() + queryWithoutCursor("?")) {
            hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
        }
        return fmt::format("{:x}.{:08X}", place, hash);
    }

    std::size_t offset() const {
        const auto& text = call_.options.cursor;
        if (text.empty()) return 0;
        std::size_t place = 0;
        std::from_chars(text.data(), text.data() + text.size(), place, 16);
        if (cursor(place) != text) {
            throw Refusal(refusals::parameter("INVALID", "cursor", "The cursor is not of this list"));
        }
        return place;
    }

    const State& state_;
    const Call& call_;
    std::vector<const Resource*> included_;
    std::set<Ref> known_;
};

}  // namespace

HTTPReply jsonReply(int status, const Json& document) {
    return {status, {}, "application/json", dumped(document)};
}

HTTPReply noContent() {
    return {204, {}, {}, {}};
}

HTTPReply singleReply(const State& state, const Call& call, const Resource& resource) {
    return jsonReply(200, DocumentWriter(state, call).single(resource));
}

HTTPReply createdReply(const State& state, const Call& call, const Resource& resource) {
    DocumentWriter writer(state, call);
    auto reply = jsonReply(201, writer.single(resource));
    reply.headers.emplace_back("Location", writer.selfLink(resource));
    return reply;
}

HTTPReply listReply(const State& state, const Call& call, const std::vector<const Resource*>& all) {
    return jsonReply(200, DocumentWriter(state, call).page(all));
}

}  // namespace kestrin::sandbox
