// libcurl's handles, and the loop that runs one request on them.
//
// One easy handle within one multi handle: an easy handle alone can be interrupted only once a second, and counts its
// idle time in whole seconds.
#pragma once

#include <curl/curl.h>

#include <chrono>
#include <new>
#include <set>
#include <stdexcept>
#include <stop_token>
#include <string>

#include "KestrinCore/Handle.h"

namespace kestrin {

// Sets one option. An option that this libcurl doesn't have would leave a promise unkept, so that is an error.
template <class Value>
void setCurlOption(CURL* handle, CURLoption option, Value value) {
    const auto result = curl_easy_setopt(handle, option, value);
    if (result == CURLE_OUT_OF_MEMORY) throw std::bad_alloc();
    if (result != CURLE_OK) throw std::runtime_error(std::string("libcurl: ") + curl_easy_strerror(result));
}

// The sockets that libcurl has open. It tells of the one in use only once a request is over.
class OpenSockets {
 public:
    void watch(CURL* handle);

    // Bytes that the system has taken from us and that the other side hasn't acknowledged yet. On a slow line a part
    // can take minutes to drain after libcurl has handed over its last byte. 0 where the system doesn't tell.
    long long unacknowledgedBytes() const;

 private:
    static int onOpen(void* data, curl_socket_t socket, curlsocktype purpose);
    static int onClose(void* data, curl_socket_t socket);

    std::set<curl_socket_t> sockets_;
};

class CurlConnection {
 public:
    CurlConnection();

    // The easy handle, without the options of the request before. What is connected stays so.
    CURL* fresh();

    // Runs the request that the handle was set up for, until its reply is whole, it fails, or nothing has moved for
    // `idleLimit`, which is CURLE_OPERATION_TIMEDOUT. The handle's callbacks put the time into `lastMove` whenever
    // something moves. Throws TransportError when a stop is requested.
    CURLcode run(std::chrono::steady_clock::time_point& lastMove, std::chrono::milliseconds idleLimit,
                 const std::stop_token& stop);

 private:
    CURLcode result();

    OpenSockets sockets_;  // told of sockets that are closed until both handles are gone
    // The multi handle owns the connection and goes after the easy one.
    Handle<CURLM, curl_multi_cleanup> multi_;
    Handle<CURL, curl_easy_cleanup> easy_;
};

}  // namespace kestrin
