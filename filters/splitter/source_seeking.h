#pragma once

#include <dshow.h>

namespace brindlecast {

// What the seeking interfaces of one source ask of it. Times in 100 ns on the graph's time line.
class SeekTarget {
public:
    // `asker` tells apart the objects through which one seek arrives. Null pointers: keep.
    virtual HRESULT SeekTo(const void* asker, const LONGLONG* start, const LONGLONG* stop) = 0;
    virtual HRESULT ChangeRate(double rate) = 0;
    // 0 when unknown.
    [[nodiscard]] virtual LONGLONG SeekDuration() = 0;
    [[nodiscard]] virtual LONGLONG SeekPosition() = 0;
    [[nodiscard]] virtual LONGLONG SeekStop() = 0;
    [[nodiscard]] virtual double SeekRate() = 0;
    // The keyframe at or before a time, or the time itself without a table.
    [[nodiscard]] virtual LONGLONG KeyframeBefore(LONGLONG time) = 0;

protected:
    ~SeekTarget() = default;
};

// IMediaSeeking of a source, for its filter and for each pin; each is an asker of its own. The deriving
// class brings IUnknown. The only time format is TIME_FORMAT_MEDIA_TIME.
class SourceSeeking : public IMediaSeeking {
public:
    explicit SourceSeeking(SeekTarget& target) : seekTarget(target) {}

    STDMETHODIMP GetCapabilities(DWORD* capabilities) override;
    STDMETHODIMP CheckCapabilities(DWORD* capabilities) override;
    STDMETHODIMP IsFormatSupported(const GUID* format) override;
    STDMETHODIMP QueryPreferredFormat(GUID* format) override;
    STDMETHODIMP GetTimeFormat(GUID* format) override;
    STDMETHODIMP IsUsingTimeFormat(const GUID* format) override;
    STDMETHODIMP SetTimeFormat(const GUID* format) override;
    STDMETHODIMP GetDuration(LONGLONG* duration) override;
    STDMETHODIMP GetStopPosition(LONGLONG* stop) override;
    STDMETHODIMP GetCurrentPosition(LONGLONG* current) override;
    STDMETHODIMP ConvertTimeFormat(LONGLONG* target, const GUID* targetFormat, LONGLONG source,
                                   const GUID* sourceFormat) override;
    STDMETHODIMP SetPositions(LONGLONG* current, DWORD currentFlags, LONGLONG* stop,
                              DWORD stopFlags) override;
    STDMETHODIMP GetPositions(LONGLONG* current, LONGLONG* stop) override;
    STDMETHODIMP GetAvailable(LONGLONG* earliest, LONGLONG* latest) override;
    STDMETHODIMP SetRate(double rate) override;
    STDMETHODIMP GetRate(double* rate) override;
    STDMETHODIMP GetPreroll(LONGLONG* preroll) override;

protected:
    ~SourceSeeking() = default;

private:
    SeekTarget& seekTarget;
};

} // namespace brindlecast
