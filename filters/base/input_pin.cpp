#include "filters/base/input_pin.h"

#include "filters/base/sample_allocator.h"

namespace brindlecast {

using Microsoft::WRL::ComPtr;

InputPin::InputPin(BaseFilter& filter, std::wstring name) : BasePin(filter, PINDIR_INPUT, std::move(name)) {}

void* InputPin::FindInterface(REFIID iid) noexcept {
    return iid == IID_IMemInputPin ? static_cast<IMemInputPin*>(this) : BasePin::FindInterface(iid);
}

STDMETHODIMP InputPin::ReceiveConnection(IPin* connector, const AM_MEDIA_TYPE* type) {
    return Guarded([&]() -> HRESULT {
        if (connector == nullptr || type == nullptr) {
            return E_POINTER;
        }
        const std::lock_guard lock(Filter().StateLock());
        if (IsConnected()) {
            return VFW_E_ALREADY_CONNECTED;
        }
        if (Filter().State() != State_Stopped && !ConnectsWhileActive()) {
            return VFW_E_NOT_STOPPED;
        }
        PIN_DIRECTION direction = PINDIR_INPUT;
        if (FAILED(connector->QueryDirection(&direction)) || direction != PINDIR_OUTPUT) {
            return VFW_E_INVALID_DIRECTION;
        }
        const MediaType offered(*type);
        if (CheckType(offered) != S_OK) {
            return VFW_E_TYPE_NOT_ACCEPTED;
        }
        HRESULT result = OnTypeAgreed(offered);
        if (FAILED(result)) {
            return result;
        }
        SetType(offered);
        SetPeer(connector);
        endOfStream = formatFailed = flushing = false;
        result = OnConnected(*connector);
        if (FAILED(result)) {
            OnDisconnected();
            SetPeer(nullptr);
        }
        return result;
    });
}

void InputPin::OnDisconnected() {
    agreedAllocator.Reset();
}

HRESULT InputPin::CheckStreaming() const {
    if (Filter().State() == State_Stopped) {
        return VFW_E_WRONG_STATE;
    }
    if (flushing) {
        return S_FALSE;
    }
    if (formatFailed) {
        return VFW_E_RUNTIME_ERROR;
    }
    return S_OK;
}

STDMETHODIMP InputPin::EndOfStream() {
    return Guarded([&] {
        const HRESULT allowed = CheckStreaming();
        if (allowed != S_OK) {
            return allowed;
        }
        endOfStream = true;
        return OnEndOfStream();
    });
}

STDMETHODIMP InputPin::BeginFlush() {
    return Guarded([&] {
        flushing = true;
        return OnBeginFlush();
    });
}

STDMETHODIMP InputPin::EndFlush() {
    return Guarded([&] {
        const HRESULT result = OnEndFlush();
        endOfStream = formatFailed = false;
        flushing = false;
        return result;
    });
}

STDMETHODIMP InputPin::NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) {
    return Guarded([&] {
        const Segment segment{start, stop, rate};
        SetSegment(segment);
        return OnNewSegment(segment);
    });
}

STDMETHODIMP InputPin::Notify(IBaseFilter* sender, Quality quality) {
    ComPtr<IQualityControl> target = QualitySink();
    if (!target) {
        const ComPtr<IPin> peer = Peer();
        if (peer) {
            peer->QueryInterface(IID_IQualityControl, reinterpret_cast<void**>(target.GetAddressOf()));
        }
    }
    return target ? target->Notify(sender, quality) : VFW_E_NOT_FOUND;
}

STDMETHODIMP InputPin::GetAllocator(IMemAllocator** allocator) {
    return Guarded([&] {
        if (allocator == nullptr) {
            return E_POINTER;
        }
        *allocator = nullptr;
        *allocator = new SampleAllocator();
        return S_OK;
    });
}

STDMETHODIMP InputPin::NotifyAllocator(IMemAllocator* allocator, BOOL) {
    if (allocator == nullptr) {
        return E_POINTER;
    }
    const std::lock_guard lock(Filter().StateLock());
    agreedAllocator = allocator;
    return S_OK;
}

STDMETHODIMP InputPin::GetAllocatorRequirements(ALLOCATOR_PROPERTIES* properties) {
    return properties == nullptr ? E_POINTER : E_NOTIMPL;
}

STDMETHODIMP InputPin::Receive(IMediaSample* sample) {
    return Guarded([&]() -> HRESULT {
        if (sample == nullptr) {
            return E_POINTER;
        }
        const HRESULT allowed = CheckStreaming();
        if (allowed != S_OK) {
            return allowed;
        }
        if (endOfStream) {
            return VFW_E_SAMPLE_REJECTED_EOS;
        }
        AM_MEDIA_TYPE* changed = nullptr;
        if (sample->GetMediaType(&changed) == S_OK && changed != nullptr) {
            const MediaType type(*changed);
            MediaType::FreeTaskMem(changed);
            if (CheckType(type) != S_OK || FAILED(OnFormatChange(type))) {
                formatFailed = true;
                Filter().Notify(EC_ERRORABORT, VFW_E_TYPE_NOT_ACCEPTED, 0);
                return VFW_E_INVALIDMEDIATYPE;
            }
            SetType(type);
        }
        return OnSample(*sample);
    });
}

STDMETHODIMP InputPin::ReceiveMultiple(IMediaSample** samples, LONG count, LONG* processed) {
    if (samples == nullptr || processed == nullptr) {
        return E_POINTER;
    }
    *processed = 0;
    for (LONG i = 0; i < count; ++i) {
        const HRESULT result = Receive(samples[i]);
        if (result != S_OK) {
            return result;
        }
        ++*processed;
    }
    return S_OK;
}

STDMETHODIMP InputPin::ReceiveCanBlock() {
    return S_OK;
}

HRESULT InputPin::Activate() {
    endOfStream = formatFailed = flushing = false;
    return S_OK;
}

void InputPin::Deactivate() {
    endOfStream = formatFailed = flushing = false;
    if (agreedAllocator) {
        agreedAllocator->Decommit();
    }
}

} // namespace brindlecast
