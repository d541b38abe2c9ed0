#pragma once

#include <utility>
#include <windows.h>

namespace brindlecast {

// Owns a kernel handle and closes it. Null means empty; INVALID_HANDLE_VALUE is not used by the calls meant
// here.
class UniqueHandle {
public:
    UniqueHandle() noexcept = default;
    explicit UniqueHandle(HANDLE theHandle) noexcept : handle(theHandle) {}
    UniqueHandle(UniqueHandle&& other) noexcept : handle(std::exchange(other.handle, nullptr)) {}
    UniqueHandle& operator=(UniqueHandle&& other) noexcept {
        std::swap(handle, other.handle);
        return *this;
    }
    ~UniqueHandle() {
        if (handle != nullptr) {
            CloseHandle(handle);
        }
    }

    [[nodiscard]] HANDLE Get() const noexcept { return handle; }
    explicit operator bool() const noexcept { return handle != nullptr; }

private:
    HANDLE handle = nullptr;
};

// A Win32 event. Creation failure throws std::bad_alloc: the kernel has no memory then.
class Event {
public:
    enum class Reset { Manual, Automatic };

    explicit Event(Reset reset, bool signalled = false);

    void Set() const noexcept { SetEvent(handle.Get()); }
    void Clear() const noexcept { ResetEvent(handle.Get()); }
    // True when signalled within the time.
    [[nodiscard]] bool Wait(DWORD milliseconds = INFINITE) const noexcept {
        return WaitForSingleObject(handle.Get(), milliseconds) == WAIT_OBJECT_0;
    }
    [[nodiscard]] HANDLE Get() const noexcept { return handle.Get(); }

private:
    UniqueHandle handle;
};

} // namespace brindlecast
