#include "ASCKit/Transport/CurlConnection.h"

#include <sys/ioctl.h>
#include <unistd.h>

#ifdef __linux__
#include <linux/sockios.h>
#endif

#include <algorithm>

#include "ASCKit/Transport/HTTPTransport.h"

namespace kestrin {
namespace {

using std::chrono::milliseconds;

void initialiseLibcurl() {
    static const CURLcode result = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (result != CURLE_OK) throw std::runtime_error("libcurl could not be initialised");
}

void check(CURLMcode code) {
    if (code == CURLM_OUT_OF_MEMORY) throw std::bad_alloc();
    if (code != CURLM_OK) throw TransportError(TransportError::Code::unknown, curl_multi_strerror(code));
}

// An easy handle is part of the multi handle only as long as it runs.
class Attached {
 public:
    Attached(CURLM* multi, CURL* easy) : multi_(multi), easy_(easy) {
        check(curl_multi_add_handle(multi_, easy_));
    }
    ~Attached() { curl_multi_remove_handle(multi_, easy_); }
    Attached(const Attached&) = delete;
    Attached& operator=(const Attached&) = delete;

 private:
    CURLM* multi_;
    CURL* easy_;
};

}  // namespace

void OpenSockets::watch(CURL* handle) {
    setCurlOption(handle, CURLOPT_SOCKOPTFUNCTION, onOpen);
    setCurlOption(handle, CURLOPT_SOCKOPTDATA, this);
    setCurlOption(handle, CURLOPT_CLOSESOCKETFUNCTION, onClose);
    setCurlOption(handle, CURLOPT_CLOSESOCKETDATA, this);
}

long long OpenSockets::unacknowledgedBytes() const {
    long long sum = 0;
#ifdef SIOCOUTQ
    for (const auto socket : sockets_) {
        int bytes = 0;
        if (ioctl(socket, SIOCOUTQ, &bytes) == 0) sum += bytes;
    }
#endif
    return sum;
}

int OpenSockets::onOpen(void* data, curl_socket_t socket, curlsocktype) {
    try {
        static_cast<OpenSockets*>(data)->sockets_.insert(socket);
        return CURL_SOCKOPT_OK;
    } catch (const std::bad_alloc&) {
        return CURL_SOCKOPT_ERROR;
    }
}

int OpenSockets::onClose(void* data, curl_socket_t socket) {
    static_cast<OpenSockets*>(data)->sockets_.erase(socket);
    return close(socket);
}

CurlConnection::CurlConnection() {
    initialiseLibcurl();
    easy_.reset(curl_easy_init());
    multi_.reset(curl_multi_init());
    if (!easy_ || !multi_) throw std::bad_alloc();
}

CURL* CurlConnection::fresh() {
    curl_easy_reset(easy_.get());
    sockets_.watch(easy_.get());
    return easy_.get();
}

CURLcode CurlConnection::run(std::chrono::steady_clock::time_point& lastMove, milliseconds idleLimit,
                             const std::stop_token& stop) {
    const Attached attached(multi_.get(), easy_.get());
    const std::stop_callback wake(stop, [this] { curl_multi_wakeup(multi_.get()); });
    long long waitingToLeave = 0;
    for (;;) {
        int running = 0;
        check(curl_multi_perform(multi_.get(), &running));
        if (running == 0) return result();
        if (stop.stop_requested()) throw TransportError(TransportError::Code::cancelled, "cancelled");

        const auto now = std::chrono::steady_clock::now();
        if (const auto left = sockets_.unacknowledgedBytes(); left != waitingToLeave) {
            waitingToLeave = left;
            lastMove = now;
        }
        const auto patience = std::chrono::ceil<milliseconds>(idleLimit - (now - lastMove));
        if (patience <= milliseconds(0)) return CURLE_OPERATION_TIMEDOUT;
        // Once a second at least: what waits to leave is seen only by looking.
        const int atMost = static_cast<int>(std::min(patience, milliseconds(1000)).count());
        check(curl_multi_poll(multi_.get(), nullptr, 0, atMost, nullptr));
    }
}

CURLcode CurlConnection::result() {
    int left = 0;
    while (const auto* message = curl_multi_info_read(multi_.get(), &left)) {
        if (message->msg == CURLMSG_DONE) return message->data.result;
    }
    return CURLE_RECV_ERROR;
}

}  // namespace kestrin
