// Objects of C libraries, let go by the library's own function when their owner goes:
//
//   Handle<BIO, BIO_free> bytes(BIO_new(BIO_s_mem()));
#pragma once

#include <memory>

namespace kestrin {

template <auto Free>
struct Freer {
    template <class T>
    void operator()(T* object) const {
        Free(object);
    }
};

template <class T, auto Free>
using Handle = std::unique_ptr<T, Freer<Free>>;

}  // namespace kestrin
