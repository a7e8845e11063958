#include "Sandbox/Reads.h"

#include <algorithm>

#include "Sandbox/Document.h"
#include "Sandbox/Refusal.h"
#include "Sandbox/Resources/Views.h"

namespace kestrin::sandbox {
namespace {

// What a filter or a sort compares; an attribute as it is shown, not as it is kept.
std::vector<std::string> valuesOf(const State& state, const Resource& resource, const std::string& path) {
    if (path != "state") return state.store.valuesAt(resource, path);
    return {shownAttributes(state, resource).value(path, "")};
}

bool passes(const State& state, const Resource& resource, const ReadOptions& options) {
    const auto exists = [&](const auto& wanted) {
        return valuesOf(state, resource, wanted.first).empty() != wanted.second;
    };
    if (!std::all_of(options.exists.begin(), options.exists.end(), exists)) return false;
    return std::all_of(options.filters.begin(), options.filters.end(), [&](const auto& filter) {
        const auto values = valuesOf(state, resource, filter.first);
        return std::any_of(values.begin(), values.end(), [&](const std::string& value) {
            return std::find(filter.second.begin(), filter.second.end(), value) != filter.second.end();
        });
    });
}

std::string sortValue(const Store& store, const Resource& resource, const std::string& name) {
    const auto values = store.valuesAt(resource, name);
    return values.empty() ? std::string() : values.front();
}

void sortBy(const State& state, const Listing& listing, const std::string& field,
            std::vector<const Resource*>& list) {
    const bool descending = field.starts_with('-');
    const auto name = field.substr(descending ? 1 : 0);
    const auto less = [&](const Resource* a, const Resource* b) {
        if (name == listing.specialSort) return listing.specialLess(state, *a, *b);
        return sortValue(state.store, *a, name) < sortValue(state.store, *b, name);
    };
    std::stable_sort(list.begin(), list.end(), [&](const Resource* a, const Resource* b) {
        return descending ? less(b, a) : less(a, b);
    });
}

std::vector<const Resource*> candidates(const State& state, const Listing& listing, const Call& call) {
    if (listing.parent.empty()) return state.store.all(listing.type);
    if (state.store.find(listing.parent, call.id) == nullptr) {
        throw Refusal(refusals::notFound(listing.parent, call.id));
    }
    return state.store.pointing(listing.type, listing.via, call.id);
}

}  // namespace

Endpoint listEndpoint(std::string path, QueryRules rules, Listing listing) {
    rules.paged = true;
    return {"GET", std::move(path), std::move(rules), [listing](State& state, const Call& call) {
                auto list = candidates(state, listing, call);
                if (listing.newestFirst) std::reverse(list.begin(), list.end());
                std::erase_if(list,
                              [&](const Resource* each) { return !passes(state, *each, call.options); });
                // The last name first, so that the first one has the last word.
                for (auto field = call.options.sort.rbegin(); field != call.options.sort.rend(); ++field) {
                    sortBy(state, listing, *field, list);
                }
                return listReply(state, call, list);
            }};
}

Endpoint readEndpoint(std::string path, QueryRules rules, std::string type) {
    return {"GET", std::move(path), std::move(rules), [type](State& state, const Call& call) {
                return singleReply(state, call, named(state, type, call));
            }};
}

Endpoint afterwards(std::function<void(State&, const Call&)> first, Endpoint endpoint) {
    endpoint.handler = [first = std::move(first), then = std::move(endpoint.handler)](State& state,
                                                                                      const Call& call) {
        first(state, call);
        return then(state, call);
    };
    return endpoint;
}

Resource& named(State& state, const std::string& type, const Call& call) {
    if (auto* resource = state.store.find(type, call.id)) return *resource;
    throw Refusal(refusals::notFound(type, call.id));
}

}  // namespace kestrin::sandbox
