#pragma once

#include "base/time_types.h"

#include <windows.h>

#include <qedit.h>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace brindlecast {

class CSubtitleProvider;

// Filters of the system: one shows each sample that passes to a callback, the other swallows samples.
inline constexpr CLSID kClsidSampleGrabber = {
    0xC1F400A0, 0x3F08, 0x11D3, {0x9F, 0x0B, 0x00, 0x60, 0x08, 0x03, 0x9E, 0x37}};
inline constexpr CLSID kClsidNullRenderer = {
    0xC1F400A4, 0x3F08, 0x11D3, {0x9F, 0x0B, 0x00, 0x60, 0x08, 0x03, 0x9E, 0x37}};

// One sample of a subtitle stream; its times are relative to the segment that was played.
struct GrabbedSample {
    Time100ns start = 0;
    Time100ns stop = 0;
    std::vector<std::uint8_t> data;
};

// Collects the samples of a subtitle stream. SampleCB is called on the splitter's streaming thread, all else
// on the main thread; whoever touches a field holds `lock`.
class CSubtitleGrabberCallback final : public ISampleGrabberCB {
public:
    CSubtitleGrabberCallback() = default;
    CSubtitleGrabberCallback(const CSubtitleGrabberCallback&) = delete;
    CSubtitleGrabberCallback& operator=(const CSubtitleGrabberCallback&) = delete;

    STDMETHODIMP QueryInterface(REFIID iid, void** out) override;
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;
    // Keeps a copy of a sample that holds anything; a sample that can't be kept is passed over.
    STDMETHODIMP SampleCB(double time, IMediaSample* sample) override;
    // The other way of being called, which is not asked for.
    STDMETHODIMP BufferCB(double time, BYTE* buffer, LONG length) override;

private:
    // Behind the interface's methods in the table of functions.
    virtual ~CSubtitleGrabberCallback() = default;

public:
    // Forgets what was collected, for another stream.
    void Clear();

    std::vector<GrabbedSample> samples; // in the order of their coming
    // Reserved, like the two numbers: emptied by Clear alone.
    std::string text;
    std::uint64_t reservedFirst = 0;
    std::uint64_t reservedSecond = 0;
    bool isAss = false; // the stream is ASS or SSA

private:
    std::atomic<std::uint32_t> refCount{1};

public:
    std::recursive_mutex lock;
    // Where samples could go on to; they don't yet. Not owned, and not to be followed: the provider may have
    // gone.
    bool providerLinked = false;
    const CSubtitleProvider* providerTarget = nullptr;
};

} // namespace brindlecast
