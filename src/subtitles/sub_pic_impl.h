#pragma once

#include "base/com_object.h"
#include "subtitles/sub_pic.h"

namespace brindlecast {

// What every picture has besides its memory. See ISubPic for threads.
class CSubPicImpl : public ComObject<ISubPic> {
public:
    Time100ns STDMETHODCALLTYPE GetStart() override { return start; }
    Time100ns STDMETHODCALLTYPE GetStop() override { return stop; }
    void STDMETHODCALLTYPE SetStart(Time100ns time) override { start = time; }
    void STDMETHODCALLTYPE SetStop(Time100ns time) override { stop = time; }
    STDMETHODIMP GetDirtyRect(Rect* rect) override;
    STDMETHODIMP SetDirtyRect(const Rect* rect) override;
    void STDMETHODCALLTYPE ClearDirtyRect() override { dirtyRect = {}; }
    STDMETHODIMP GetSize(Size* result) override;
    STDMETHODIMP GetMaxSize(Size* result) override;
    Time100ns STDMETHODCALLTYPE GetSegmentStart() override { return segmentStart; }
    Time100ns STDMETHODCALLTYPE GetSegmentStop() override { return segmentStop; }
    void STDMETHODCALLTYPE SetSegmentStart(Time100ns time) override { segmentStart = time; }
    void STDMETHODCALLTYPE SetSegmentStop(Time100ns time) override { segmentStop = time; }
    STDMETHODIMP Reserved1() override { return E_NOTIMPL; }
    STDMETHODIMP Reserved2() override { return E_NOTIMPL; }

protected:
    CSubPicImpl(Size pictureSize, Rect pictureVideoRect)
        : size(pictureSize), maxSize(pictureSize), videoRect(pictureVideoRect) {}

    Size size; // pixels
    Size maxSize;
    Rect videoRect;
    Rect dirtyRect;
    Time100ns start = 0;
    Time100ns stop = 0; // the first moment that no longer belongs to the picture
    Time100ns segmentStart = 0;
    Time100ns segmentStop = 0;
};

} // namespace brindlecast
