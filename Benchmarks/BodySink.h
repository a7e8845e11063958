// The far end of an upload, for measuring: takes requests over HTTP/1.1 and throws their bodies away.
#pragma once

#include <sys/types.h>

#include <string>

namespace kestrin {

// A process of its own, so that neither its time nor its memory is counted among those of the sender. Ends with it.
class BodySink {
 public:
    BodySink();
    ~BodySink();
    BodySink(const BodySink&) = delete;
    BodySink& operator=(const BodySink&) = delete;

    std::string address() const;  // "http://127.0.0.1:{port}/"

 private:
    pid_t process_ = -1;
    int port_ = 0;
};

}  // namespace kestrin
