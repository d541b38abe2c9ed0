#include "filters/renderer/renderer_options.h"

#include "filters/renderer/dib.h"

#include <algorithm>
#include <string_view>

namespace brindlecast {

namespace {

template <class Options>
auto* Find(Options& options, std::string_view name) {
    const auto found = std::find_if(options.begin(), options.end(),
                                    [name](const auto& option) { return name == option.name; });
    return found == options.end() ? nullptr : &*found;
}

} // namespace

STDMETHODIMP RendererOptions::Flt_GetBool(LPCSTR field, bool* value) {
    if (field == nullptr || value == nullptr) {
        return E_POINTER;
    }
    const std::string_view name(field);
    if (name == "flip") {
        *value = core.TheLook().Get().orientation.flip;
        return S_OK;
    }
    if (name == "cmd_redraw") {
        return E_ABORT; // a command has no value
    }
    const std::lock_guard lock(mutex);
    const BoolOption* const option = Find(bools, name);
    if (option == nullptr) {
        return E_INVALIDARG;
    }
    *value = option->value;
    return S_OK;
}

STDMETHODIMP RendererOptions::Flt_GetInt(LPCSTR field, int* value) {
    if (field == nullptr || value == nullptr) {
        return E_POINTER;
    }
    const std::string_view name(field);
    if (name == "rotation") {
        *value = core.TheLook().Get().orientation.rotation;
        return S_OK;
    }
    const std::lock_guard lock(mutex);
    const IntOption* const option = Find(ints, name);
    if (option == nullptr) {
        return E_INVALIDARG;
    }
    *value = option->value;
    return S_OK;
}

STDMETHODIMP RendererOptions::Flt_GetBin(LPCSTR field, LPVOID* value, unsigned* size) {
    if (field == nullptr || value == nullptr || size == nullptr) {
        return E_POINTER;
    }
    if (std::string_view(field) != "displayedImage") {
        return E_INVALIDARG;
    }
    return Guarded([&] {
        CapturedImage image;
        const HRESULT result = core.Drawing().Capture(FramePainter::CaptureKind::kWindow, &image);
        if (FAILED(result)) {
            return result;
        }
        const std::size_t bytes = DibBytes(image.size);
        void* const dib = CoTaskMemAlloc(bytes);
        if (dib == nullptr) {
            return E_OUTOFMEMORY;
        }
        WriteDib(image, dib);
        *value = dib;
        *size = static_cast<unsigned>(bytes);
        return S_OK;
    });
}

STDMETHODIMP RendererOptions::Flt_SetBool(LPCSTR field, bool value) {
    if (field == nullptr) {
        return E_POINTER;
    }
    const std::string_view name(field);
    if (name == "flip") {
        core.TheLook().Edit([value](Look& look) { look.orientation.flip = value; });
        return S_OK;
    }
    if (name == "cmd_redraw") {
        if (value) {
            core.Drawing().RequestRedraw();
        }
        return S_OK;
    }
    const std::lock_guard lock(mutex);
    BoolOption* const option = Find(bools, name);
    if (option == nullptr) {
        return E_INVALIDARG;
    }
    option->value = value;
    return S_OK;
}

STDMETHODIMP RendererOptions::Flt_SetInt(LPCSTR field, int value) {
    if (field == nullptr) {
        return E_POINTER;
    }
    const std::string_view name(field);
    if (name == "rotation") {
        const int rotation = NormalizedRotation(value);
        core.TheLook().Edit([rotation](Look& look) { look.orientation.rotation = rotation; });
        return S_OK;
    }
    const std::lock_guard lock(mutex);
    IntOption* const option = Find(ints, name);
    if (option == nullptr) {
        return E_INVALIDARG;
    }
    option->value = value;
    return S_OK;
}

} // namespace brindlecast
