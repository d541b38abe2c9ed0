#include "filters/base/output_pin.h"

#include "filters/base/sample_allocator.h"

#include <algorithm>

namespace brindlecast {

using Microsoft::WRL::ComPtr;

OutputPin::OutputPin(BaseFilter& filter, std::wstring name)
    : BasePin(filter, PINDIR_OUTPUT, std::move(name)) {}

STDMETHODIMP OutputPin::Connect(IPin* receiver, const AM_MEDIA_TYPE* type) {
    return Guarded([&]() -> HRESULT {
        if (receiver == nullptr) {
            return E_POINTER;
        }
        const std::lock_guard lock(Filter().StateLock());
        if (IsConnected()) {
            return VFW_E_ALREADY_CONNECTED;
        }
        if (Filter().State() != State_Stopped && !ConnectsWhileActive()) {
            return VFW_E_NOT_STOPPED;
        }
        PIN_DIRECTION direction = PINDIR_OUTPUT;
        if (FAILED(receiver->QueryDirection(&direction)) || direction != PINDIR_INPUT) {
            return VFW_E_INVALID_DIRECTION;
        }
        if (type != nullptr && !MediaType::IsPartial(*type)) {
            return TryConnect(*receiver, MediaType(*type));
        }
        for (const MediaType& own : PreferredTypes()) {
            if (type != nullptr && !own.Matches(*type)) {
                continue;
            }
            if (SUCCEEDED(TryConnect(*receiver, own))) {
                return S_OK;
            }
        }
        return TryReceiversTypes(*receiver, type);
    });
}

HRESULT OutputPin::TryReceiversTypes(IPin& receiver, const AM_MEDIA_TYPE* pattern) {
    ComPtr<IEnumMediaTypes> types;
    if (FAILED(receiver.EnumMediaTypes(types.GetAddressOf())) || !types) {
        return VFW_E_NO_ACCEPTABLE_TYPES;
    }
    AM_MEDIA_TYPE* next = nullptr;
    while (types->Next(1, &next, nullptr) == S_OK) {
        const MediaType theirs(*next);
        MediaType::FreeTaskMem(next);
        if (MediaType::IsPartial(theirs.Get()) || (pattern != nullptr && !theirs.Matches(*pattern))) {
            continue;
        }
        if (SUCCEEDED(TryConnect(receiver, theirs))) {
            return S_OK;
        }
    }
    return VFW_E_NO_ACCEPTABLE_TYPES;
}

HRESULT OutputPin::TryConnect(IPin& receiver, const MediaType& type) {
    if (CheckType(type) != S_OK) {
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    HRESULT result = OnTypeAgreed(type);
    if (FAILED(result)) {
        return result;
    }
    SetType(type);
    SetPeer(&receiver);
    result = receiver.ReceiveConnection(this, &type.Get());
    if (SUCCEEDED(result)) {
        result = OnConnected(receiver);
        if (FAILED(result)) {
            receiver.Disconnect();
            OnDisconnected();
        }
    }
    if (FAILED(result)) {
        SetPeer(nullptr);
    }
    return result;
}

HRESULT OutputPin::OnConnected(IPin& receiver) {
    ComPtr<IMemInputPin> input;
    const HRESULT result =
        receiver.QueryInterface(IID_IMemInputPin, reinterpret_cast<void**>(input.GetAddressOf()));
    return FAILED(result) ? result : Negotiate(*input.Get());
}

HRESULT OutputPin::Negotiate(IMemInputPin& input) {
    ALLOCATOR_PROPERTIES needs = BufferNeeds();
    ALLOCATOR_PROPERTIES wishes{};
    if (SUCCEEDED(input.GetAllocatorRequirements(&wishes))) {
        needs.cBuffers = std::max(needs.cBuffers, wishes.cBuffers);
        needs.cbBuffer = std::max(needs.cbBuffer, wishes.cbBuffer);
        needs.cbAlign = std::max(needs.cbAlign, wishes.cbAlign);
    }
    needs.cbAlign = std::max<LONG>(needs.cbAlign, 1);
    HRESULT result = E_FAIL;
    for (const bool receivers : {PrefersReceiversAllocator(), !PrefersReceiversAllocator()}) {
        ComPtr<IMemAllocator> allocator;
        if (receivers) {
            if (FAILED(input.GetAllocator(allocator.GetAddressOf())) || !allocator) {
                continue;
            }
        } else {
            allocator = AdoptReference<IMemAllocator>(new SampleAllocator());
        }
        result = TryAllocator(input, *allocator.Get(), needs);
        if (SUCCEEDED(result)) {
            return result;
        }
    }
    return result;
}

HRESULT OutputPin::TryAllocator(IMemInputPin& input, IMemAllocator& allocator,
                                const ALLOCATOR_PROPERTIES& needs) {
    ALLOCATOR_PROPERTIES request = needs;
    ALLOCATOR_PROPERTIES actual{};
    HRESULT result = allocator.SetProperties(&request, &actual);
    if (FAILED(result)) {
        return result;
    }
    if (actual.cBuffers < needs.cBuffers || actual.cbBuffer < needs.cbBuffer) {
        return E_FAIL;
    }
    result = input.NotifyAllocator(&allocator, FALSE);
    if (FAILED(result)) {
        return result;
    }
    const std::lock_guard lock(linkLock);
    currentLink = {&input, &allocator};
    return S_OK;
}

void OutputPin::OnDisconnected() {
    Link old; // released outside the lock
    const std::lock_guard lock(linkLock);
    std::swap(old, currentLink);
    typePending = false;
}

OutputPin::Link OutputPin::CurrentLink() {
    const std::lock_guard lock(linkLock);
    return currentLink;
}

HRESULT OutputPin::Activate() {
    const Link link = CurrentLink();
    return link.allocator ? link.allocator->Commit() : VFW_E_NO_ALLOCATOR;
}

void OutputPin::Deactivate() {
    const Link link = CurrentLink();
    if (link.allocator) {
        link.allocator->Decommit();
    }
}

HRESULT OutputPin::GetBuffer(IMediaSample** sample, LONG size, DWORD flags) {
    *sample = nullptr;
    const Link link = CurrentLink();
    if (!link.allocator) {
        return VFW_E_NOT_CONNECTED;
    }
    ComPtr<IGrowingAllocator> growing;
    if (SUCCEEDED(link.allocator->QueryInterface(kIidGrowingAllocator,
                                                 reinterpret_cast<void**>(growing.GetAddressOf())))) {
        return growing->GetBufferOfSize(size, sample, flags);
    }
    const HRESULT result = link.allocator->GetBuffer(sample, nullptr, nullptr, flags);
    if (FAILED(result)) {
        return result;
    }
    if ((*sample)->GetSize() < size) {
        (*sample)->Release();
        *sample = nullptr;
        return VFW_E_BUFFER_OVERFLOW;
    }
    return result;
}

HRESULT OutputPin::Deliver(IMediaSample* sample) {
    const Link link = CurrentLink();
    if (!link.input) {
        return VFW_E_NOT_CONNECTED;
    }
    if (typePending.exchange(false)) {
        MediaType type = Type();
        const HRESULT result = sample->SetMediaType(&type.Edit());
        if (FAILED(result)) {
            return result;
        }
    }
    return link.input->Receive(sample);
}

HRESULT OutputPin::DeliverEndOfStream() {
    const ComPtr<IPin> peer = Peer();
    return peer ? peer->EndOfStream() : VFW_E_NOT_CONNECTED;
}

HRESULT OutputPin::DeliverNewSegment(const Segment& segment) {
    SetSegment(segment);
    const ComPtr<IPin> peer = Peer();
    return peer ? peer->NewSegment(segment.start, segment.stop, segment.rate) : VFW_E_NOT_CONNECTED;
}

HRESULT OutputPin::DeliverBeginFlush() {
    const ComPtr<IPin> peer = Peer();
    return peer ? peer->BeginFlush() : VFW_E_NOT_CONNECTED;
}

HRESULT OutputPin::DeliverEndFlush() {
    const ComPtr<IPin> peer = Peer();
    return peer ? peer->EndFlush() : VFW_E_NOT_CONNECTED;
}

HRESULT OutputPin::ChangeType(const MediaType& type, LONG bufferSize) {
    const ComPtr<IPin> peer = Peer();
    const Link link = CurrentLink();
    if (!peer || !link.allocator) {
        return VFW_E_NOT_CONNECTED;
    }
    if (peer->QueryAccept(&type.Get()) != S_OK) {
        return VFW_E_TYPE_NOT_ACCEPTED;
    }
    ALLOCATOR_PROPERTIES properties{};
    HRESULT result = link.allocator->GetProperties(&properties);
    if (SUCCEEDED(result) && properties.cbBuffer < bufferSize) {
        ComPtr<IGrowingAllocator> growing;
        if (SUCCEEDED(link.allocator->QueryInterface(kIidGrowingAllocator,
                                                     reinterpret_cast<void**>(growing.GetAddressOf())))) {
            result = growing->GrowBuffers(bufferSize);
        } else {
            ALLOCATOR_PROPERTIES actual{};
            properties.cbBuffer = bufferSize;
            link.allocator->Decommit();
            result = link.allocator->SetProperties(&properties, &actual);
            const HRESULT committed = link.allocator->Commit();
            if (SUCCEEDED(result)) {
                result = committed;
            }
        }
    }
    if (FAILED(result)) {
        return result;
    }
    SetType(type);
    typePending = true;
    return S_OK;
}

} // namespace brindlecast
