#include "base/text.h"
#include "tests/graph/graph_fixture.h"

namespace brindlecast::testing::expected {

Lines RendererStart() {
    return {L"> Loaded filter from: <dir>\\MpcVideoRenderer64.ax",
            L"MpcVideoRenderer64.joins the graph as MPC Video Renderer",
            L"MpcVideoRenderer64.Flt_SetBool(useD3D11, 1)",
            L"MpcVideoRenderer64.Flt_SetInt(presentationType, 0)",
            L"MpcVideoRenderer64.Flt_SetBool(vsync, 0)",
            L"MpcVideoRenderer64.Flt_SetBool(vBlankBeforePresent, 0)",
            L"MpcVideoRenderer64.Flt_SetBool(adjustPresentTime, 0)",
            L"MpcVideoRenderer64.Flt_SetBool(vpScaling, 0)",
            L"MpcVideoRenderer64.Flt_SetBool(lessRedraws, 1)",
            L"MpcVideoRenderer64.Flt_SetBool(d3dFullscreenControl, 0)",
            L"MpcVideoRenderer64.Flt_SetInt(chromaUpsampling, 0)",
            L"MpcVideoRenderer64.Flt_SetInt(upscaler, 0)",
            L"MpcVideoRenderer64.Flt_SetInt(downscaler, 0)",
            L"MpcVideoRenderer64.SetCallback11(callback)"};
}

Lines SplitterStart(const std::wstring& path) {
    return {L"> Loaded filter from: <dir>\\LAVSplitter.ax",        L"LAVSplitter.SetRuntimeConfig(1)",
            L"LAVSplitter.SetPreferredLanguages(kor,eng,jpn)",     L"LAVSplitter.SetTrayIcon(0)",
            L"LAVSplitter.joins the graph as LAV Splitter Source", L"LAVSplitter.Load(" + path + L", null)"};
}

Lines ThreeKeyFrames() {
    return {L"LAVSplitter.GetKeyFrameCount", L"LAVSplitter.GetKeyFrames(media time, 3)",
            L"> Keyframes found: 3", L"> Keyframes: 0.00, 2.00, 4.00"};
}

Lines VideoDecoderStart(int method, const wchar_t* methodName) {
    const std::wstring number = std::to_wstring(method);
    Lines lines = {L"> Loaded filter from: <dir>\\LAVVideo.ax", L"LAVVideo.SetRuntimeConfig(1)",
                   L"> ConfigureLAVVideo: HWAccel=" + number};
    if (method != 0) {
        lines.push_back(L"LAVVideo.CheckHWAccelSupport(" + number + L")");
        lines.push_back(L"> HWAccel " + number + L" supported (status=2)");
    }
    return Join({lines,
                 {L"LAVVideo.SetHWAccel(" + number + L")", L"LAVVideo.GetHWAccelNumDevices(" + number + L")",
                  L"> HWAccel=" + std::wstring(methodName) + L", Available devices=0",
                  L"LAVVideo.GetHWAccelDeviceIndex(" + number + L")",
                  L"> Current HWAccel device index=7 (ID=0xBEEF)"},
                 VideoDecoderSettings(),
                 {L"LAVVideo.joins the graph as LAV Video Decoder"}});
}

Lines VideoDecoderSettings() {
    Lines lines = {L"LAVVideo.SetHWAccelCodec(0, 1)",
                   L"LAVVideo.SetHWAccelCodec(6, 1)",
                   L"LAVVideo.SetHWAccelCodec(7, 1)",
                   L"LAVVideo.SetHWAccelCodec(9, 1)",
                   L"> HW Codec settings - H264=1, HEVC=1, VP9=1, AV1=1",
                   L"LAVVideo.SetNumThreads(0)",
                   L"LAVVideo.SetTrayIcon(0)"};
    for (int format = 0; format <= 17; ++format) {
        lines.push_back(FormatText(L"LAVVideo.SetPixelFormat(%d, 1)", format));
    }
    lines.push_back(L"LAVVideo.SetHWAccelResolutionFlags(7)");
    for (int codec = 0; codec <= 63; ++codec) {
        lines.push_back(FormatText(L"LAVVideo.SetFormatConfiguration(%d, 1)", codec));
    }
    return lines;
}

Lines AudioDecoderStart() {
    return {L"> Loaded filter from: <dir>\\LAVAudio.ax", L"LAVAudio.SetRuntimeConfig(1)",
            L"LAVAudio.SetTrayIcon(0)", L"LAVAudio.joins the graph as LAV Audio Decoder"};
}

Lines SwitcherStart() {
    return {L"> Loaded filter from: <dir>\\AudioSwitcher.ax",
            L"AudioSwitcher.joins the graph as AudioSwitcher",
            L"AudioSwitcher.SetNormalizeBoost2(1, 300, 1, 0)"};
}

Lines SoundStart() {
    return {L"AudioRenderer.joins the graph as DirectSound Renderer"};
}

Lines Priming() {
    // Wine's graph manager seeks to where it began when it is stopped from running or paused.
    return {L"LAVSplitter.SetPositions(0, 1, 0)"};
}

Lines AudioChain() {
    return {L"LAVSplitter.Audio connected to LAV Audio Decoder",
            L"LAVAudio.Output connected to AudioSwitcher",
            L"AudioSwitcher.Output connected to DirectSound Renderer"};
}

Lines VideoPin() {
    return {L"> Rendering pin: Video", L"LAVSplitter.Video connected to LAV Video Decoder",
            L"LAVVideo.Output connected to MPC Video Renderer", L"> Successfully rendered pin: Video"};
}

Lines GraphEnd(int amplitude) {
    return {L"AudioRenderer.put_Volume(" + std::to_wstring(amplitude) + L")",
            L"MpcVideoRenderer64.put_Owner(window)", L"MpcVideoRenderer64.put_MessageDrain(window)",
            L"MpcVideoRenderer64.SetDestinationPosition(0, 218, 1000, 562)",
            L"MpcVideoRenderer64.SetWindowPosition(0, 0, 1000, 1000)"};
}

Lines Close() {
    return {L"LAVSplitter.SetPositions(0, 1, 0)", L"MpcVideoRenderer64.put_Visible(0)",
            L"MpcVideoRenderer64.put_Owner(0)"};
}

Lines FilmBuild(int method, const wchar_t* methodName) {
    return Join({RendererStart(),
                 SplitterStart(),
                 ThreeKeyFrames(),
                 {L"> Detected video resolution: 1920x1080"},
                 VideoDecoderStart(method, methodName),
                 AudioDecoderStart(),
                 SwitcherStart(),
                 SoundStart(),
                 Priming(),
                 AudioChain(),
                 VideoPin(),
                 {L"> Connection status - Video: 1, Audio: 1"},
                 GraphEnd()});
}

Lines SoundBuild(int method, const wchar_t* methodName) {
    return Join({RendererStart(),
                 SplitterStart(),
                 ThreeKeyFrames(),
                 VideoDecoderStart(method, methodName),
                 AudioDecoderStart(),
                 SwitcherStart(),
                 SoundStart(),
                 Priming(),
                 AudioChain(),
                 {L"> Connection status - Video: 0, Audio: 1"},
                 GraphEnd()});
}

Lines FailedLoad() {
    return Join({RendererStart(), SplitterStart(), {L"> Failed to load file: 0x80004005"}});
}

} // namespace brindlecast::testing::expected
