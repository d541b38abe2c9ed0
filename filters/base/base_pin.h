#pragma once

#include "filters/base/base_filter.h"

namespace brindlecast {

// What both kinds of pin share: identity, connection, media type, segment. A pin shares its filter's
// reference count.
//
// Connection and disconnection happen under the filter's state lock. Streaming threads use Peer(), which has
// a lock of its own.
class BasePin : public IPin, public IQualityControl {
public:
    BasePin(const BasePin&) = delete;
    BasePin& operator=(const BasePin&) = delete;

    BRINDLECAST_COM_METHODS

    STDMETHODIMP ReceiveConnection(IPin* connector, const AM_MEDIA_TYPE* type) override;
    STDMETHODIMP Connect(IPin* receiver, const AM_MEDIA_TYPE* type) override;
    STDMETHODIMP Disconnect() override;
    STDMETHODIMP ConnectedTo(IPin** pin) override;
    STDMETHODIMP ConnectionMediaType(AM_MEDIA_TYPE* type) override;
    STDMETHODIMP QueryPinInfo(PIN_INFO* info) override;
    STDMETHODIMP QueryDirection(PIN_DIRECTION* direction) override;
    STDMETHODIMP QueryId(LPWSTR* id) override;
    STDMETHODIMP QueryAccept(const AM_MEDIA_TYPE* type) override;
    STDMETHODIMP EnumMediaTypes(IEnumMediaTypes** types) override;
    STDMETHODIMP QueryInternalConnections(IPin** pins, ULONG* count) override;
    STDMETHODIMP EndOfStream() override;
    STDMETHODIMP BeginFlush() override;
    STDMETHODIMP EndFlush() override;
    STDMETHODIMP NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) override;

    STDMETHODIMP Notify(IBaseFilter* sender, Quality quality) override;
    STDMETHODIMP SetSink(IQualityControl* sink) override;

    virtual ~BasePin();

    ULONG AddReference() noexcept { return ownerFilter.AddReference(); }
    ULONG ReleaseReference() noexcept { return ownerFilter.ReleaseReference(); }

    [[nodiscard]] BaseFilter& Filter() const noexcept { return ownerFilter; }
    [[nodiscard]] const std::wstring& Name() const noexcept { return pinName; }
    [[nodiscard]] bool IsConnected();
    // The pin at the other end, referenced, or null. Any thread.
    [[nodiscard]] Microsoft::WRL::ComPtr<IPin> Peer();
    // A copy of the type of the connection (or of the last format change). Any thread.
    [[nodiscard]] MediaType Type();

    // The segment last announced through this pin.
    struct Segment {
        REFERENCE_TIME start = 0;
        REFERENCE_TIME stop = 0;
        double rate = 1.0;
    };
    [[nodiscard]] Segment CurrentSegment();

    // From stopped to paused, and back. Called under the state lock, for connected pins only. Overriders
    // call the base.
    virtual HRESULT Activate();
    virtual void Deactivate();

protected:
    BasePin(BaseFilter& filter, PIN_DIRECTION direction, std::wstring name);

    [[nodiscard]] virtual void* FindInterface(REFIID iid) noexcept;

    // Types that this pin offers, best first. State lock held.
    [[nodiscard]] virtual std::vector<MediaType> PreferredTypes() = 0;
    // S_OK when a connection or a format change to this type is possible. Never blocks; also called while
    // streaming.
    [[nodiscard]] virtual HRESULT CheckType(const MediaType& type) = 0;
    // The type of a connection being made was agreed on. May refuse.
    virtual HRESULT OnTypeAgreed(const MediaType&) { return S_OK; }
    // The connection was made, or is being undone.
    virtual HRESULT OnConnected(IPin&) { return S_OK; }
    virtual void OnDisconnected() {}
    // True for a pin that may be connected and disconnected while its filter is paused or running.
    [[nodiscard]] virtual bool ConnectsWhileActive() const { return false; }

    void SetPeer(IPin* peer);
    void SetType(const MediaType& type);
    void SetSegment(const Segment& segment);
    // The sink of SetSink, referenced, or null.
    [[nodiscard]] Microsoft::WRL::ComPtr<IQualityControl> QualitySink();

private:
    BaseFilter& ownerFilter;
    const PIN_DIRECTION pinDirection;
    const std::wstring pinName;

    std::mutex pinLock; // leaf lock for what follows
    Microsoft::WRL::ComPtr<IPin> connectedPeer;
    MediaType agreedType;
    Segment currentSegment;
    IQualityControl* qualitySink = nullptr; // not referenced, by the rule of IQualityControl
};

} // namespace brindlecast
