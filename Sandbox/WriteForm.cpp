#include "Sandbox/WriteForm.h"

#include <fmt/format.h>

#include <algorithm>

#include "KestrinCore/UnicodeText.h"
#include "Sandbox/Refusal.h"
#include "Sandbox/TextRules.h"

namespace kestrin::sandbox {
namespace {

bool isTemporary(std::string_view id) {
    return id.size() > 3 && id.starts_with("${") && id.ends_with('}');
}

// Why the value isn't one of the rule; "" when it is.
std::string textProblem(const AttributeRule& rule, const std::string& value) {
    if (rule.kind == Kind::uri && !isURI(value)) return "The value is not a URI";
    if (rule.kind == Kind::date && !isDate(value)) return "The value is not a date and time";
    if (rule.kind == Kind::locale && !isLocale(value)) return "The value is not a locale";
    if (!rule.values.empty() &&
        std::find(rule.values.begin(), rule.values.end(), value) == rule.values.end()) {
        return fmt::format("'{}' is not a valid value; it is one of {}", value, fmt::join(rule.values, ", "));
    }
    if (rule.need == Need::required && value.empty()) return "The value must not be empty";
    if (rule.limit != 0 && text::graphemeCount(value) > rule.limit) {
        return fmt::format("The value is longer than {} characters", rule.limit);
    }
    return {};
}

std::string valueProblem(const AttributeRule& rule, const Json& value) {
    switch (rule.kind) {
        case Kind::truth:
            return value.is_boolean() ? "" : "The value must be true or false";
        case Kind::integer:
            return value.is_number_integer() ? "" : "The value must be a whole number";
        case Kind::object:
            return value.is_object() ? "" : "The value must be an object";
        case Kind::text:
        case Kind::uri:
        case Kind::date:
        case Kind::locale:
            break;
    }
    return value.is_string() ? textProblem(rule, value.get<std::string>()) : "The value must be a text";
}

// Reads one resource of a body by its form; what the form doesn't allow is collected.
class ResourceReader {
 public:
    ResourceReader(const WriteForm& form, std::string pointer, std::vector<ErrorItem>& problems)
        : form_(form), pointer_(std::move(pointer)), problems_(problems) {}

    void checkShape(const Json& resource) const {
        if (!resource.is_object()) unprocessable("", "A resource must be an object");
        for (const auto& [name, value] : resource.items()) {
            const bool known =
                name == "type" || name == "id" || name == "attributes" || name == "relationships";
            if (!known) unprocessable(name, fmt::format("Unexpected member '{}'", name));
        }
        if (!resource.contains("type") || !resource["type"].is_string())
            unprocessable("type", "'type' is missing");
        if (resource.contains("id") && !resource["id"].is_string())
            unprocessable("id", "'id' must be a text");
        for (const char* name : {"attributes", "relationships"}) {
            if (resource.contains(name) && !resource[name].is_object())
                unprocessable(name, "It must be an object");
        }
    }

    // `partial`: what isn't given stays as it is.
    Json attributes(const Json& resource, bool partial) {
        const auto given = resource.value("attributes", Json::object());
        for (const auto& [name, value] : given.items()) {
            if (!hasRule(form_.attributes, name)) {
                add("ATTRIBUTE.UNKNOWN", "attributes/" + name,
                    fmt::format("'{}' is not an attribute of '{}' in this request", name, form_.type));
            }
        }
        for (const auto& rule : form_.attributes) checkAttribute(rule, given, partial);
        return given;
    }

    void relationships(const Json& resource, bool partial, std::map<std::string, std::optional<Ref>>& one,
                       std::map<std::string, std::vector<Ref>>& many) {
        const auto given = resource.value("relationships", Json::object());
        for (const auto& [name, value] : given.items()) {
            if (!hasRule(form_.relationships, name)) {
                add("RELATIONSHIP.UNKNOWN", "relationships/" + name,
                    fmt::format("'{}' is not a relationship of '{}' in this request", name, form_.type));
            }
        }
        for (const auto& rule : form_.relationships) {
            const auto found = given.find(rule.name);
            if (found != given.end()) {
                readRelationship(rule, dataOf(rule.name, *found), one, many);
            } else if (rule.need == Need::required && !partial) {
                add("RELATIONSHIP.REQUIRED", "relationships/" + rule.name,
                    fmt::format("You must provide a value for the relationship '{}'", rule.name));
            }
        }
    }

    void add(std::string_view code, std::string_view place, std::string detail) {
        problems_.push_back({409, fmt::format("ENTITY_ERROR.{}", code), std::move(detail),
                             fmt::format("{}/{}", pointer_, place)});
    }

 private:
    template <class Rule>
    static bool hasRule(const std::vector<Rule>& rules, const std::string& name) {
        return std::any_of(rules.begin(), rules.end(), [&](const Rule& rule) { return rule.name == name; });
    }

    [[noreturn]] void unprocessable(std::string_view place, std::string detail) const {
        throw Refusal(refusals::unprocessable(fmt::format("{}/{}", pointer_, place), std::move(detail)));
    }

    void checkAttribute(const AttributeRule& rule, const Json& given, bool partial) {
        const auto found = given.find(rule.name);
        const bool isAbsent = found == given.end() || (found->is_null() && !partial);
        if (isAbsent) {
            if (rule.need == Need::required && !partial) {
                add("ATTRIBUTE.REQUIRED", "attributes/" + rule.name,
                    fmt::format("You must provide a value for the attribute '{}'", rule.name));
            }
            return;
        }
        if (found->is_null()) {
            if (rule.need == Need::required) {
                add("ATTRIBUTE.REQUIRED", "attributes/" + rule.name,
                    fmt::format("The attribute '{}' can't be emptied", rule.name));
            }
            return;
        }
        const auto problem = valueProblem(rule, *found);
        if (!problem.empty()) add("ATTRIBUTE.INVALID", "attributes/" + rule.name, problem);
    }

    const Json& dataOf(const std::string& name, const Json& relationship) const {
        if (!relationship.is_object() || relationship.size() != 1 || !relationship.contains("data")) {
            unprocessable("relationships/" + name, "A relationship holds 'data' and nothing else");
        }
        return relationship["data"];
    }

    Ref identifier(const std::string& name, const std::string& type, const Json& data) {
        const bool isIdentifier = data.is_object() && data.size() == 2 && data.contains("type") &&
                                  data.contains("id") && data["type"].is_string() && data["id"].is_string();
        if (!isIdentifier)
            unprocessable("relationships/" + name, "It must be an identifier of 'type' and 'id'");
        Ref ref{data["type"].get<std::string>(), data["id"].get<std::string>()};
        if (ref.type != type) {
            add("RELATIONSHIP.INVALID", "relationships/" + name,
                fmt::format("'{}' is not a valid type here; it must be '{}'", ref.type, type));
        }
        return ref;
    }

    void readRelationship(const RelationshipRule& rule, const Json& data,
                          std::map<std::string, std::optional<Ref>>& one,
                          std::map<std::string, std::vector<Ref>>& many) {
        if (rule.many) {
            if (!data.is_array()) unprocessable("relationships/" + rule.name, "'data' must be a list");
            auto& list = many[rule.name];
            for (const auto& each : data) list.push_back(identifier(rule.name, rule.type, each));
        } else if (!data.is_null()) {
            one[rule.name] = identifier(rule.name, rule.type, data);
        } else if (rule.clearable) {
            one[rule.name] = std::nullopt;
        } else {
            add("RELATIONSHIP.INVALID", "relationships/" + rule.name, "The relationship can't be null");
        }
    }

    const WriteForm& form_;
    std::string pointer_;
    std::vector<ErrorItem>& problems_;
};

Json parsedBody(const std::string& body, bool mayInclude) {
    auto parsed = parsedJSON(body);
    if (!parsed) throw Refusal(ErrorItem{400, "ENTITY_INVALID", "The request body is not valid JSON"});
    auto& document = *parsed;
    if (!document.is_object() || !document.contains("data")) {
        throw Refusal(refusals::unprocessable("/data", "The document has no member 'data'"));
    }
    for (const auto& [name, value] : document.items()) {
        if (name == "data" || (name == "included" && mayInclude)) continue;
        throw Refusal(refusals::unprocessable("/" + name, fmt::format("Unexpected member '{}'", name)));
    }
    return std::move(document);
}

const WriteForm* formOf(const std::vector<WriteForm>& forms, const std::string& type) {
    const auto found =
        std::find_if(forms.begin(), forms.end(), [&](const auto& form) { return form.type == type; });
    return found == forms.end() ? nullptr : &*found;
}

Inclusion readInclusion(const WriteForm& form, const Json& resource, const std::string& pointer,
                        std::vector<ErrorItem>& problems) {
    Inclusion inclusion{form.type, resource.value("id", ""), {}, {}};
    ResourceReader reader(form, pointer, problems);
    if (!isTemporary(inclusion.id)) {
        reader.add("INCLUDED.INVALID_ID", "id", "The id of an included resource has the form '${…}'");
    }
    inclusion.attributes = reader.attributes(resource, false);
    std::map<std::string, std::optional<Ref>> ones;
    reader.relationships(resource, false, ones, inclusion.many);
    return inclusion;
}

std::vector<Inclusion> readInclusions(const WriteForm& form, const Json& document,
                                      std::vector<ErrorItem>& problems) {
    std::vector<Inclusion> inclusions;
    if (!document.contains("included")) return inclusions;
    const auto& list = document["included"];
    if (!list.is_array()) throw Refusal(refusals::unprocessable("/included", "It must be a list"));
    for (std::size_t i = 0; i < list.size(); ++i) {
        const auto pointer = fmt::format("/included/{}", i);
        ResourceReader(form, pointer, problems).checkShape(list[i]);
        const auto type = list[i]["type"].get<std::string>();
        const auto* included = formOf(form.inclusions, type);
        if (included == nullptr) {
            problems.push_back({409, "ENTITY_ERROR.INCLUDED.INVALID_TYPE",
                                fmt::format("'{}' can't be created with this request", type),
                                pointer + "/type"});
            continue;
        }
        inclusions.push_back(readInclusion(*included, list[i], pointer, problems));
    }
    return inclusions;
}

// Each identifier names a resource of the store or, when it is temporary, exactly one inclusion, and each inclusion
// is named somewhere.
void checkTargets(const Write& write, const Store& store, std::vector<ErrorItem>& problems) {
    std::map<Ref, int> uses;
    for (const auto& inclusion : write.included) {
        if (!uses.emplace(Ref{inclusion.type, inclusion.id}, 0).second) {
            problems.push_back({409, "ENTITY_ERROR.INCLUDED.DUPLICATE",
                                fmt::format("'{}' is included twice", inclusion.id), "/included"});
        }
    }
    const auto check = [&](const std::string& name, const Ref& ref) {
        if (const auto use = uses.find(ref); use != uses.end()) {
            ++use->second;
        } else if (store.find(ref) == nullptr) {
            problems.push_back(refusals::relationship(
                "INVALID", name,
                fmt::format("There is no resource of type '{}' with id '{}'", ref.type, ref.id)));
        }
    };
    for (const auto& [name, ref] : write.one) {
        if (ref) check(name, *ref);
    }
    for (const auto& [name, refs] : write.many) {
        for (const auto& ref : refs) check(name, ref);
    }
    for (const auto& inclusion : write.included) {
        for (const auto& [name, refs] : inclusion.many) {
            for (const auto& ref : refs) check(name, ref);
        }
    }
    for (const auto& [ref, count] : uses) {
        if (count == 1) continue;
        problems.push_back({409, "ENTITY_ERROR.INCLUDED.UNUSED",
                            fmt::format("'{}' must be named by exactly one relationship", ref.id),
                            "/included"});
    }
}

// `pathID`: nullptr for a create.
Write readWrite(const std::string& body, const WriteForm& form, const Store& store,
                const std::string* pathID) {
    const auto document = parsedBody(body, !form.inclusions.empty());
    const auto& data = document["data"];
    std::vector<ErrorItem> problems;
    ResourceReader reader(form, "/data", problems);
    reader.checkShape(data);
    if (data["type"] != form.type) {
        reader.add("TYPE.INVALID", "type", fmt::format("The type must be '{}'", form.type));
    }
    if (pathID == nullptr && data.contains("id")) reader.add("ID.INVALID", "id", "The server gives the id");
    if (pathID != nullptr && data.value("id", "") != *pathID) {
        reader.add("ID.INVALID", "id", "The id must be the one of the path");
    }
    Write write;
    write.attributes = reader.attributes(data, pathID != nullptr);
    reader.relationships(data, pathID != nullptr, write.one, write.many);
    write.included = readInclusions(form, document, problems);
    if (problems.empty()) checkTargets(write, store, problems);
    if (!problems.empty()) throw Refusal(std::move(problems));
    return write;
}

}  // namespace

const Ref& Write::ref(const std::string& relationship) const {
    return one.at(relationship).value();
}

const Ref* Write::optionalRef(const std::string& relationship) const {
    const auto found = one.find(relationship);
    return found == one.end() || !found->second ? nullptr : &*found->second;
}

const Ref& Write::onlyRef(const std::vector<std::string>& relationships) const {
    const Ref* given = nullptr;
    for (const auto& relationship : relationships) {
        const auto* other = optionalRef(relationship);
        if (other == nullptr) continue;
        if (given != nullptr) {
            throw Refusal(refusals::relationship(
                "INVALID", relationship,
                fmt::format("Only one of {} can be given", fmt::join(relationships, ", "))));
        }
        given = other;
    }
    if (given != nullptr) return *given;
    throw Refusal(
        refusals::relationship("REQUIRED", relationships.front(),
                               fmt::format("One of {} is required", fmt::join(relationships, ", "))));
}

std::string Write::text(const std::string& attribute) const {
    const auto found = attributes.find(attribute);
    return found != attributes.end() && found->is_string() ? found->get<std::string>() : std::string();
}

Write readCreate(const std::string& body, const WriteForm& form, const Store& store) {
    return readWrite(body, form, store, nullptr);
}

Write readUpdate(const std::string& body, const WriteForm& form, const Store& store, const std::string& id) {
    return readWrite(body, form, store, &id);
}

Ref readLinkage(const std::string& body, const std::string& type, const Store& store) {
    const auto document = parsedBody(body, false);
    const auto& data = document["data"];
    const bool isIdentifier = data.is_object() && data.size() == 2 && data.contains("type") &&
                              data.contains("id") && data["type"].is_string() && data["id"].is_string();
    if (!isIdentifier)
        throw Refusal(refusals::unprocessable("/data", "It must be an identifier of 'type' and 'id'"));
    Ref ref{data["type"].get<std::string>(), data["id"].get<std::string>()};
    if (ref.type != type || store.find(ref) == nullptr) {
        throw Refusal(ErrorItem{409, "ENTITY_ERROR.RELATIONSHIP.INVALID",
                                fmt::format("There is no resource of type '{}' with id '{}'", type, ref.id),
                                "/data"});
    }
    return ref;
}

}  // namespace kestrin::sandbox
