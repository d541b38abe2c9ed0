#pragma once

#include "base/settings_store.h"
#include "base/time_types.h"
#include "base/win32/com_ptr.h"
#include "engine/bitmap_file.h"
#include "engine/directshow_interfaces.h"
#include "filters/include/audio_switcher.h"
#include "filters/include/lav_splitter.h"
#include "filters/include/mpc_video_renderer.h"
#include "subtitles/renderer_subtitle_callback.h"

#include <windows.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace brindlecast {

class CSubtitleGrabberCallback;
class SubtitleManager;

// What is really decoding; fields that are not known stay empty or 0.
struct MediaSummary {
    std::wstring videoCodec;  // "H264", "HEVC" or an upper-case four-character code
    std::wstring decoderName; // the video decoder's own word for what it uses
    bool isHardware = false;  // told from decoderName
    std::wstring audioCodec;  // upper case
    std::int32_t audioChannels = 0;
    std::int32_t audioSampleRate = 0; // Hz
    double frameRate = 0.0;
};

// Values of PlayerEngine::state.
inline constexpr std::uint32_t kEngineStopped = 0;
inline constexpr std::uint32_t kEnginePaused = 1;
inline constexpr std::uint32_t kEngineRunning = 2;

// Owns the filter graph, which is built and torn down per file. It has no window and no lock: every
// operation runs on the main thread, which must be a single-threaded COM apartment. A null interface means
// that the thing is absent; every operation tests for it. Playback is reported by `events`, whose
// notification window the caller sets after each OpenFile, and after each Play, which may build the graph
// anew.
class PlayerEngine {
public:
    // `theSettings` must outlive the engine.
    explicit PlayerEngine(SettingsStore& theSettings);
    PlayerEngine(const PlayerEngine&) = delete;
    PlayerEngine& operator=(const PlayerEngine&) = delete;
    ~PlayerEngine();

    // Lifecycle.

    // Closes what is open and builds the graph for `path`, with its retries; playback does not start. False
    // leaves the engine closed. Blocks for the whole build.
    [[nodiscard]] bool OpenFile(std::wstring path);
    // Runs the graph. Out of memory under a hardware method other than D3D11 is answered by one rebuild with
    // D3D11.
    [[nodiscard]] bool Play();
    // Stops and releases one file's graph. Safe when nothing is open.
    void CloseGraph();
    // CloseGraph, then forgets the window and the modules, which stay loaded.
    void Shutdown();

    // Position. Seconds; false or 0.0 without a graph.

    [[nodiscard]] Seconds GetDuration() const;
    [[nodiscard]] Seconds GetPosition() const;
    // Goes to the keyframe nearest to `seconds`, or exactly there when the file has no table. Goes on
    // running if it ran.
    bool Seek(Seconds seconds);
    // Stays within 0.0 and the duration.
    bool SeekRelative(Seconds delta);
    // One keyframe back or on, or five seconds without a table.
    bool SeekPreviousKeyFrame();
    bool SeekNextKeyFrame();
    // 0.25 to 4.0; false, and no change, outside.
    bool SetRate(double newRate);
    // The ends of the repeated part, at the present position. Within a second of A, SetMarkA clears both;
    // within a second of B, SetMarkB clears B.
    void SetMarkA();
    void SetMarkB();
    void ClearMarks();
    // One look at the repeated part, for a timer: a running file that has come to B goes back to A, exactly
    // there, and not twice within half a second. `now`: milliseconds of the system's tick count.
    void RepeatBetweenMarks(std::uint64_t now);

    // Sound.

    // Clamped to 0.0 to 1.0 and stored, also without a graph; true if the graph took it.
    bool SetVolume(float newVolume);
    // Stored; keeps `volume`.
    void SetMuted(bool mute);
    [[nodiscard]] int GetAudioTrackCount() const;
    // Counts audio streams alone, from 0; -1 if none is enabled.
    [[nodiscard]] int GetActiveAudioTrack() const;
    [[nodiscard]] std::wstring GetAudioTrackName(unsigned ordinal) const;
    bool SelectAudioTrack(unsigned ordinal);
    // Dynamic range compression, level 0 to 100; stored and applied at once. False, and nothing stored,
    // without decoder.
    bool SetDRC(bool enabled, int level);
    [[nodiscard]] bool GetDRC(bool* enabled, std::uint32_t* level) const;
    void ToggleDRC();
    [[nodiscard]] int GetEmbeddedSubtitleCount() const;
    [[nodiscard]] std::wstring GetEmbeddedSubtitleName(int ordinal) const;
    // The stream index among all streams of the splitter, -1 if there is none of that ordinal.
    [[nodiscard]] int MapEmbeddedSubtitleStream(unsigned ordinal) const;

    // Subtitles.

    // Loads a file in the place of what is loaded. False, and nothing loaded, when no reader takes it.
    [[nodiscard]] bool LoadSubtitle(const std::wstring& path);
    // Makes an entry of what is loaded current.
    [[nodiscard]] bool SelectSubtitle(int index);
    // Takes a text track out of the open file and loads it. False when it holds no text, is not there, or
    // can't be taken out. Blocks for up to 30 seconds.
    [[nodiscard]] bool LoadEmbeddedSubtitle(int ordinal);
    // Stored, and obeyed by what is loaded.
    void SetSubtitleEnabled(bool enabled);
    // Added to the time of playing when text is drawn: a positive delay shows later text sooner. 0, and
    // nothing happens, as long as no subtitle was loaded.
    [[nodiscard]] Milliseconds GetSubtitleDelay() const;
    void AdjustSubtitleDelay(Milliseconds delta);
    void ResetSubtitleDelay();

    // Picture.

    // Fits the picture into a host of the given size; `x` and `y` are ignored. False without a video window.
    bool SetRenderRect(int x, int y, int width, int height);
    // Fits the picture into videoHost again and repaints it.
    void RedrawVideo();
    // Degrees; rounded down to a quarter turn.
    bool SetRotation(int degrees);
    bool SetFlipHorizontal(bool on);
    bool SetFlipVertical(bool on);

    // Pictures of what is shown; null when there is none.

    // By the method that the settings name.
    [[nodiscard]] BitmapBytes CaptureFrame();
    // What the renderer shows, with subtitles and turns, in its own size.
    [[nodiscard]] BitmapBytes CaptureDisplayedImage();
    // What videoHost draws when the system asks it to draw itself.
    [[nodiscard]] BitmapBytes CaptureWindowImage();
    // The frame in the size of the video.
    [[nodiscard]] BitmapBytes CaptureCurrentImage();
    // Captures a frame and writes it in the format that the settings name, whatever the extension of `path`.
    [[nodiscard]] bool SaveScreenshot(const std::wstring& path);

    [[nodiscard]] MediaSummary GetMediaSummary() const;

    // Loads a filter from a module file without registration. A loaded module replaces the reference held in
    // its field, so that one reference per module is kept; modules without a field keep one more reference
    // each time.
    [[nodiscard]] HRESULT LoadFilterFromModule(const std::wstring& path, const CLSID& clsid,
                                               IBaseFilter** out);

    // Fields. Read by others on the main thread; interface pointers are the engine's own.

    ComPtr<IGraphBuilder> graph;
    ComPtr<IMediaControl> control;
    ComPtr<IMediaSeeking> seeking;
    ComPtr<IMediaEventEx> events;
    ComPtr<IBasicAudio> basicAudio;
    ComPtr<IBasicVideo> basicVideo;
    ComPtr<IVideoWindow> videoWindowControl;
    ComPtr<IBaseFilter> videoRenderer;
    ComPtr<IExFilterConfig> rendererConfig;
    ComPtr<IBaseFilter> splitter;
    ComPtr<IBaseFilter> lavVideo;
    ComPtr<IBaseFilter> lavAudio;
    ComPtr<IBaseFilter> audioSwitcher;
    ComPtr<IAudioSwitcherFilter> audioSwitcherControl;
    ComPtr<IKeyFrameInfo> keyFrameInfo;
    std::vector<Time100ns> keyFrames; // ascending
    HWND videoHost = nullptr;         // set by the main window
    std::uint32_t state = kEngineStopped;
    float volume = 0.5F; // 0.0 to 1.0
    bool muted = false;
    std::uint32_t rotation = 0; // 0, 90, 180 or 270 degrees
    bool flipHorizontal = false;
    bool flipVertical = false;
    std::int32_t toolbarHeight = 0; // pixels; set and read by the window alone
    std::uint32_t hwAccel = 5;      // the method asked for in the current build, not what came of it
    double rate = 1.0;              // survives files, although a new graph starts at 1.0
    double frameRate = 0.0;         // of the last file that reported one
    bool hasVideo = false;          // a video pin was connected in the last build
    bool audioNormalize = true;
    bool audioNormalizeRecover = true;
    float audioMaxNormFactor = 4.0F; // meaningless until a build has overwritten it
    float audioBoostGain = 1.0F;
    // Loaded modules, kept across files and never freed at the end: filters may still hold code in them.
    HMODULE splitterModule = nullptr;
    HMODULE videoModule = nullptr;
    HMODULE audioModule = nullptr;
    HMODULE rendererModule = nullptr;
    HMODULE switcherModule = nullptr; // never assigned: each build leaves one more reference to that module
    // Loads and holds subtitles, across files; null until the first one is there.
    std::unique_ptr<SubtitleManager> subtitleManager;
    ComPtr<CMPCVR11SubtitleCallback> subtitleCallback;
    std::wstring currentFile;             // empty: nothing is open
    Time100ns markA = 0;                  // 0 unset, 1 the start of the file
    Time100ns markB = 0;                  // 0 unset
    std::uint64_t lastRepeatJumpTick = 0; // milliseconds
    std::int32_t embeddedSubtitleTrack = -1;
    // Collects the samples of a subtitle stream, and the filter that shows them to it. They stay from file to
    // file until the end, although the filter belongs to the graph that it was made for.
    ComPtr<CSubtitleGrabberCallback> subtitleGrabberCallback;
    ComPtr<IBaseFilter> subtitleGrabber;

private:
    // Building; see build_graph.cpp, render_pins.cpp and audio_chain.cpp. Memory that runs out fails the
    // build like anything else.
    [[nodiscard]] bool BuildGraph(const std::wstring& path);
    [[nodiscard]] bool AssembleGraph(const std::wstring& path);
    [[nodiscard]] bool AddVideoRenderer(const std::wstring& directory);
    [[nodiscard]] bool AddSplitter(const std::wstring& directory, const std::wstring& path);
    void AddDecoders(const std::wstring& directory);
    void AddAudioSwitcher(const std::wstring& directory);
    [[nodiscard]] ComPtr<IBaseFilter> AddAudioRenderer();
    void PrimeGraph();
    void ProbeVideoFormat();
    [[nodiscard]] bool ConnectAudioChain(IBaseFilter* audioRenderer);
    [[nodiscard]] bool ConnectSplitterToDecoder();
    [[nodiscard]] bool ConnectThroughSwitcher(IBaseFilter* audioRenderer);
    void RenderSplitterPins(bool& videoConnected, bool& audioConnected);
    [[nodiscard]] bool LeaveOutAudio(IBaseFilter* audioRenderer);
    void DisableAudioStreams();
    [[nodiscard]] bool AllSplitterPinsConnected();
    void FetchGraphInterfaces();
    void AttachVideoHost();
    // Settings of the modules; see decoder_configuration.cpp, renderer_control.cpp and audio_control.cpp.
    void ConfigureRenderer();
    void ConfigureLAVSplitter(IBaseFilter* filter);
    void ConfigureLAVVideo(IBaseFilter* filter);
    void ConfigureLAVAudio(IBaseFilter* filter);
    void ApplyNormalization();
    void LoadKeyFrames();
    void FindSubtitlesOfCurrentFile();
    void EnsureSubtitleManager();
    // Text inside the file; see embedded_subtitles.cpp.
    [[nodiscard]] bool ExtractSubtitleWithFfmpeg(int ordinal);
    [[nodiscard]] bool AttachSubtitleGrabber(int ordinal);
    [[nodiscard]] bool PrepareSubtitleGrabber(bool isAss);
    [[nodiscard]] bool ConnectSubtitleGrabber(IPin* source);
    void TraceActiveDecoder() const;
    [[nodiscard]] HRESULT RunAgainWithD3D11(HRESULT firstResult);
    [[nodiscard]] HMODULE* ModuleSlot(const CLSID& clsid);
    [[nodiscard]] std::optional<Time100ns> CurrentPosition() const;

    SettingsStore& settings;
};

} // namespace brindlecast
