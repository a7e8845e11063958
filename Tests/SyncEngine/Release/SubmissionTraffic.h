// Replies and the last request of every submission to App Review.
#pragma once

#include <string>

namespace kestrin {

inline constexpr const char* kNone = R"({"data":[]})";
inline constexpr const char* kSent =
    R"({"data":{"type":"reviewSubmissions","id":"S","attributes":{"state":"WAITING_FOR_REVIEW"}}})";
inline constexpr const char* kItem = R"({"data":{"type":"reviewSubmissionItems","id":"I"}})";

inline const std::string kSend =
    R"(PATCH /v1/reviewSubmissions/S {"data":{"attributes":{"submitted":true},"id":"S","type":"reviewSubmissions"}})";

}  // namespace kestrin
