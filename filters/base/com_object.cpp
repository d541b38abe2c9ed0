#include "filters/base/com_object.h"

namespace brindlecast {
namespace {

std::atomic<long> liveObjects{0};

} // namespace

long ModuleObjectCount() noexcept {
    return liveObjects.load();
}

void AddModuleObject() noexcept {
    liveObjects.fetch_add(1);
}

void RemoveModuleObject() noexcept {
    liveObjects.fetch_sub(1);
}

ULONG RefCounted::ReleaseReference() noexcept {
    const ULONG left = references.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (left == 0) {
        OnLastRelease();
    }
    return left;
}

} // namespace brindlecast
