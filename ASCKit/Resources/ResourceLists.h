// Lists of typed records, for the files that read them.
#pragma once

#include <string>
#include <vector>

#include "ASCKit/Resources/ResourceRequests.h"

namespace kestrin::ASC {

inline constexpr std::int64_t kPageSize = 200;  // the most that the API gives in one page

// All pages of a GET as records made from their resources.
template <class Record>
std::vector<Record> listOf(ASCClient& client, std::string path,
                           std::vector<QueryParameter> query = {QueryParameter::limit(kPageSize)}) {
    ASCRequest request;
    request.path = std::move(path);
    request.query = std::move(query);
    std::vector<Record> records;
    for (const auto& resource : client.all(request)) records.emplace_back(resource);
    return records;
}

}  // namespace kestrin::ASC
