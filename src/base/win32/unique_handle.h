#pragma once

#include <windows.h>

#include <utility>

namespace brindlecast {

// Sole owner of one platform handle. Traits name the handle's type, the value that means "none" and how to
// give it back.
template <class Traits>
class UniqueResource {
public:
    using Handle = typename Traits::Handle;

    UniqueResource() = default;
    explicit UniqueResource(Handle newHandle) : handle(newHandle) {}
    UniqueResource(UniqueResource&& other) noexcept : handle(other.Release()) {}
    UniqueResource& operator=(UniqueResource&& other) noexcept {
        if (this != &other) {
            Reset(other.Release());
        }
        return *this;
    }
    UniqueResource(const UniqueResource&) = delete;
    UniqueResource& operator=(const UniqueResource&) = delete;
    ~UniqueResource() { Reset(); }

    [[nodiscard]] Handle Get() const { return handle; }
    explicit operator bool() const { return handle != Traits::None(); }

    // Gives up ownership without giving the handle back.
    [[nodiscard]] Handle Release() { return std::exchange(handle, Traits::None()); }
    void Reset(Handle replacement = Traits::None()) {
        const Handle old = std::exchange(handle, replacement);
        if (old != Traits::None()) {
            Traits::Close(old);
        }
    }

private:
    Handle handle = Traits::None();
};

template <class HandleType, auto CloseFunction>
struct HandleTraits {
    using Handle = HandleType;
    static Handle None() { return nullptr; }
    static void Close(Handle handle) { CloseFunction(handle); }
};

// An open file; unlike other kernel objects its absence is INVALID_HANDLE_VALUE.
struct FileTraits {
    using Handle = HANDLE;
    static Handle None() { return INVALID_HANDLE_VALUE; }
    static void Close(Handle handle) { CloseHandle(handle); }
};
using UniqueFile = UniqueResource<FileTraits>;
// A kernel object.
using UniqueHandle = UniqueResource<HandleTraits<HANDLE, CloseHandle>>;
// A loaded library.
using UniqueModule = UniqueResource<HandleTraits<HMODULE, FreeLibrary>>;
using UniqueKey = UniqueResource<HandleTraits<HKEY, RegCloseKey>>;
using UniqueHwnd = UniqueResource<HandleTraits<HWND, DestroyWindow>>;
using UniqueHook = UniqueResource<HandleTraits<HHOOK, UnhookWindowsHookEx>>;
using UniqueAccelerators = UniqueResource<HandleTraits<HACCEL, DestroyAcceleratorTable>>;
using UniqueBrush = UniqueResource<HandleTraits<HBRUSH, DeleteObject>>;
using UniquePen = UniqueResource<HandleTraits<HPEN, DeleteObject>>;
using UniqueFont = UniqueResource<HandleTraits<HFONT, DeleteObject>>;
using UniqueBitmap = UniqueResource<HandleTraits<HBITMAP, DeleteObject>>;
using UniqueMemoryDc = UniqueResource<HandleTraits<HDC, DeleteDC>>;

// Selects an object into a device context and puts the old one back.
class SelectGuard {
public:
    SelectGuard(HDC target, HGDIOBJ object) : context(target), old(SelectObject(target, object)) {}
    SelectGuard(const SelectGuard&) = delete;
    SelectGuard& operator=(const SelectGuard&) = delete;
    ~SelectGuard() { SelectObject(context, old); }

private:
    HDC context;
    HGDIOBJ old;
};

// The address of an exported function, cast to its type; null when the module lacks it.
template <class Function>
[[nodiscard]] Function FindFunction(HMODULE module, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

} // namespace brindlecast
