#pragma once

#include <cstddef>
#include <dshow.h>
#include <dvdmedia.h>

namespace brindlecast {

// An AM_MEDIA_TYPE that owns its format block and its pUnk. Copies are deep; the block comes from
// CoTaskMemAlloc, so that it can be handed to COM callers. Throws std::bad_alloc when memory runs out. Not
// thread-safe by itself.
class MediaType {
public:
    MediaType() noexcept = default;
    explicit MediaType(const AM_MEDIA_TYPE& source);
    MediaType(const GUID& major, const GUID& sub);
    MediaType(const MediaType& other);
    MediaType(MediaType&& other) noexcept;
    MediaType& operator=(MediaType other) noexcept;
    ~MediaType();

    [[nodiscard]] const AM_MEDIA_TYPE& Get() const noexcept { return structure; }
    [[nodiscard]] const AM_MEDIA_TYPE* operator->() const noexcept { return &structure; }
    // For changing plain fields. Use SetFormat for the format block.
    [[nodiscard]] AM_MEDIA_TYPE& Edit() noexcept { return structure; }

    // Empties the value and hands out its address for an API that fills it in (its block then belongs to
    // this).
    [[nodiscard]] AM_MEDIA_TYPE* Put() noexcept;

    // Replaces the format block by `size` zero bytes and returns it.
    BYTE* AllocateFormat(const GUID& formatType, std::size_t size);
    void SetFormat(const GUID& formatType, const void* data, std::size_t size);

    // The format block as T when the format type fits and the block is large enough, else null.
    template <class T>
    [[nodiscard]] const T* Format(const GUID& formatType) const noexcept {
        return FormatOf<T>(structure, formatType);
    }
    template <class T>
    [[nodiscard]] T* Format(const GUID& formatType) noexcept {
        return const_cast<T*>(FormatOf<T>(structure, formatType));
    }
    template <class T>
    [[nodiscard]] static const T* FormatOf(const AM_MEDIA_TYPE& type, const GUID& formatType) noexcept {
        const bool fits =
            type.formattype == formatType && type.cbFormat >= sizeof(T) && type.pbFormat != nullptr;
        return fits ? reinterpret_cast<const T*>(type.pbFormat) : nullptr;
    }

    // Equal in every field that describes the format, byte by byte in the format block.
    [[nodiscard]] bool operator==(const MediaType& other) const noexcept;

    // True when each of major type, subtype and format that `pattern` states (not GUID_NULL) is the same
    // here.
    [[nodiscard]] bool Matches(const AM_MEDIA_TYPE& pattern) const noexcept;
    // A type with a wild card: GUID_NULL as major type, subtype or format type.
    [[nodiscard]] static bool IsPartial(const AM_MEDIA_TYPE& type) noexcept;

    // A copy for a COM caller, who frees it with DeleteMediaType of his own; null when memory runs out.
    [[nodiscard]] AM_MEDIA_TYPE* NewTaskMemCopy() const noexcept;
    // Copies into caller-owned memory whose old content is ignored. E_OUTOFMEMORY or S_OK.
    [[nodiscard]] HRESULT CopyTo(AM_MEDIA_TYPE& target) const noexcept;
    // Frees the block and pUnk of a structure, not the structure.
    static void FreeContent(AM_MEDIA_TYPE& type) noexcept;
    // Frees a structure from CoTaskMemAlloc with its content. Null is allowed.
    static void FreeTaskMem(AM_MEDIA_TYPE* type) noexcept;

private:
    static HRESULT Copy(AM_MEDIA_TYPE& target, const AM_MEDIA_TYPE& source) noexcept;

    AM_MEDIA_TYPE structure{};
};

} // namespace brindlecast
