#include "filters/base/unique_handle.h"

#include <new>

namespace brindlecast {

Event::Event(Reset reset, bool signalled)
    : handle(
          CreateEventW(nullptr, reset == Reset::Manual ? TRUE : FALSE, signalled ? TRUE : FALSE, nullptr)) {
    if (!handle) {
        throw std::bad_alloc();
    }
}

} // namespace brindlecast
