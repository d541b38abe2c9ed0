#pragma once

#include <utility>
#include <windows.h>

namespace brindlecast {

// Owns a kernel handle and closes it. Null means empty; INVALID_HANDLE_VALUE is not used by the calls meant
// here.
class UniqueHandle {
public:
    UniqueHandle() noexcept = default;
    explicit UniqueHandle(HANDLE handle) noexcept : handle_(handle) {}
    UniqueHandle(UniqueHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    UniqueHandle& operator=(UniqueHandle&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~UniqueHandle() {
        if (handle_ != nullptr)
            CloseHandle(handle_);
    }

    [[nodiscard]] HANDLE Get() const noexcept { return handle_; }
    explicit operator bool() const noexcept { return handle_ != nullptr; }

private:
    HANDLE handle_ = nullptr;
};

// A Win32 event. Creation failure throws std::bad_alloc: the kernel has no memory then.
class Event {
public:
    enum class Reset { Manual, Automatic };

    explicit Event(Reset reset, bool signalled = false);

    void Set() const noexcept { SetEvent(handle_.Get()); }
    void Clear() const noexcept { ResetEvent(handle_.Get()); }
    // True when signalled within the time.
    [[nodiscard]] bool Wait(DWORD milliseconds = INFINITE) const noexcept {
        return WaitForSingleObject(handle_.Get(), milliseconds) == WAIT_OBJECT_0;
    }
    [[nodiscard]] HANDLE Get() const noexcept { return handle_.Get(); }

private:
    UniqueHandle handle_;
};

} // namespace brindlecast
