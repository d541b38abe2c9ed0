#pragma once

#include "base/com_object.h"
#include "subtitles/sub_pic.h"
#include "subtitles/sub_pic_impl.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// A provider, an allocator and pictures that write down what is asked of them, all in one list.

namespace brindlecast::testing {

using CallList = std::vector<std::string>;

inline std::string TextOf(const Rect& rect) {
    return std::to_string(rect.left) + "," + std::to_string(rect.top) + "," + std::to_string(rect.right) +
           "," + std::to_string(rect.bottom);
}

// Has events and draws by writing the byte 7 into the first pixel.
class RecordingProvider final : public ComObject<ISubPicProvider> {
public:
    struct Event {
        Time100ns start;
        Time100ns stop;
    };

    explicit RecordingProvider(CallList& list) : calls(list) {}

    STDMETHODIMP Lock() override { return Note("provider Lock", S_OK); }
    STDMETHODIMP Unlock() override { return Note("provider Unlock", S_OK); }
    SubPicPosition STDMETHODCALLTYPE GetStartPosition(Time100ns rt, double fps) override {
        const auto found =
            std::find_if(events.begin(), events.end(), [rt](const Event& event) { return event.stop > rt; });
        const SubPicPosition position =
            found == events.end() ? 0 : static_cast<SubPicPosition>(found - events.begin() + 1);
        return Note("provider GetStartPosition " + std::to_string(rt) + FpsText(fps),
                    forcedPosition.value_or(position));
    }
    SubPicPosition STDMETHODCALLTYPE GetNext(SubPicPosition) override {
        return Note("provider GetNext", SubPicPosition{0});
    }
    Time100ns STDMETHODCALLTYPE GetStart(SubPicPosition position, double fps) override {
        return Note("provider GetStart " + std::to_string(position) + FpsText(fps),
                    events.at(position - 1).start);
    }
    Time100ns STDMETHODCALLTYPE GetStop(SubPicPosition position, double fps) override {
        return Note("provider GetStop " + std::to_string(position) + FpsText(fps),
                    events.at(position - 1).stop);
    }
    bool STDMETHODCALLTYPE IsAnimated(SubPicPosition) override { return Note("provider IsAnimated", true); }
    STDMETHODIMP Render(SubPicDesc& desc, Time100ns rt, double fps, Rect& bbox) override {
        const auto bytes = static_cast<std::size_t>(desc.pitch) * static_cast<std::size_t>(desc.height);
        receivedZeros = std::all_of(desc.bits, desc.bits + bytes, [](auto byte) { return byte == 0; });
        desc.bits[0] = 7;
        Note("provider Render " + std::to_string(rt) + FpsText(fps) + " " + TextOf(bbox), S_OK);
        bbox = box;
        if (whileRendering) {
            whileRendering();
        }
        return renderResult;
    }
    void STDMETHODCALLTYPE SetVideoSize(Size) override { calls.emplace_back("provider SetVideoSize"); }
    Size* STDMETHODCALLTYPE GetVideoSize(Size* result) override {
        return Note("provider GetVideoSize", result);
    }
    STDMETHODIMP Reserved1(std::uint32_t*) override { return Note("provider Reserved1", S_OK); }

    std::vector<Event> events;                    // in the order of their starts
    std::optional<SubPicPosition> forcedPosition; // answered whatever the time
    HRESULT renderResult = S_OK;
    Rect box{1, 2, 3, 4};
    std::function<void()> whileRendering;
    bool receivedZeros = false; // whether all of the picture was 0 at the last Render

private:
    ~RecordingProvider() override { calls.emplace_back("provider gone"); }
    static std::string FpsText(double fps) { return " at " + std::to_string(fps).substr(0, 6); }
    template <class Result>
    Result Note(std::string call, Result result) {
        calls.push_back(std::move(call));
        return result;
    }

    CallList& calls;
};

// A picture of 4x2 in memory that is not 0 at first, with more behind its end.
class RecordingPicture final : public CSubPicImpl {
public:
    static constexpr std::int32_t kPitch = 32; // bytes; more than the row's 16
    static constexpr std::size_t kBytes = 2 * 32;
    static constexpr std::uint8_t kFill = 0xCC;

    RecordingPicture(CallList& list, int place, HRESULT lockAnswer)
        : CSubPicImpl({4, 2}, {}), number(place), lockResult(lockAnswer), calls(list) {}

    Time100ns STDMETHODCALLTYPE GetStart() override { return Note("GetStart", CSubPicImpl::GetStart()); }
    Time100ns STDMETHODCALLTYPE GetStop() override { return Note("GetStop", CSubPicImpl::GetStop()); }
    void STDMETHODCALLTYPE SetStart(Time100ns value) override {
        Note("SetStart " + std::to_string(value), 0);
        CSubPicImpl::SetStart(value);
    }
    void STDMETHODCALLTYPE SetStop(Time100ns value) override {
        Note("SetStop " + std::to_string(value), 0);
        CSubPicImpl::SetStop(value);
    }
    STDMETHODIMP Lock(SubPicDesc& desc) override {
        desc = {0, 4, 2, 32, kPitch, memory.data(), {}};
        return Note("Lock", lockResult);
    }
    STDMETHODIMP Unlock(const Rect* drawn) override {
        return Note("Unlock " + (drawn != nullptr ? TextOf(*drawn) : std::string("null")), S_OK);
    }
    STDMETHODIMP AlphaBlt(const Rect*, const Rect*, SubPicDesc*) override { return Note("AlphaBlt", S_OK); }

    const int number; // counted from 1
    std::vector<std::uint8_t> memory = std::vector<std::uint8_t>(kBytes + 16, kFill);

private:
    ~RecordingPicture() override { Note("gone", 0); }
    template <class Result>
    Result Note(const std::string& call, Result result) {
        calls.push_back("picture " + std::to_string(number) + " " + call);
        return result;
    }

    HRESULT lockResult;
    CallList& calls;
};

class RecordingAllocator final : public ComObject<ISubPicAllocator> {
public:
    explicit RecordingAllocator(CallList& list) : calls(list) {}

    STDMETHODIMP SetCurSize(Size) override { return Note("SetCurSize", S_OK); }
    STDMETHODIMP SetCurVidRect(Rect) override { return Note("SetCurVidRect", S_OK); }
    STDMETHODIMP GetCurSize(Size*) override { return Note("GetCurSize", S_OK); }
    STDMETHODIMP GetCurVidRect(Rect*) override { return Note("GetCurVidRect", S_OK); }
    bool STDMETHODCALLTYPE IsDynamicWriteOnly() override { return Note("IsDynamicWriteOnly", false); }
    STDMETHODIMP AllocDynamic(ISubPic** picture) override {
        *picture = allocResult == S_OK ? new RecordingPicture(calls, ++made, lockResult) : nullptr;
        return Note("AllocDynamic", allocResult);
    }
    STDMETHODIMP GetStatic(ISubPic**) override { return Note("GetStatic", E_FAIL); }
    STDMETHODIMP FreeStatic() override { return Note("FreeStatic", S_OK); }
    STDMETHODIMP Reserved1() override { return Note("Reserved1", S_OK); }
    STDMETHODIMP Reserved2() override { return Note("Reserved2", E_NOTIMPL); }
    Size* STDMETHODCALLTYPE GetMaxSize(Size* result) override { return Note("GetMaxSize", result); }

    HRESULT allocResult = S_OK;
    HRESULT lockResult = S_OK; // of the pictures made from now on
    int made = 0;

private:
    ~RecordingAllocator() override { calls.emplace_back("allocator gone"); }
    template <class Result>
    Result Note(const std::string& call, Result result) {
        calls.push_back("allocator " + call);
        return result;
    }

    CallList& calls;
};

} // namespace brindlecast::testing
