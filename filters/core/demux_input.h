#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

extern "C" {
#include <libavformat/avio.h>
}

namespace brindlecast {

// Bytes of a local file for libavformat. One thread at a time; Interrupt may come from any.
class DemuxInput {
public:
    // `path` is UTF-8. Null with a negative FFmpeg error code when the file cannot be opened.
    static std::unique_ptr<DemuxInput> Open(const std::string& path, int& error);
    ~DemuxInput();

    DemuxInput(const DemuxInput&) = delete;
    DemuxInput& operator=(const DemuxInput&) = delete;

    [[nodiscard]] AVIOContext* Context() const { return outer_; }
    [[nodiscard]] std::int64_t Size() const { return size_; }

    // While blank, a read gives one zero byte and then the end, without touching the file: a demuxer that
    // walks its index this way tells the times of packets and loads none of them.
    void SetBlank(bool blank);

    // While set, reads fail with AVERROR_EXIT. Setting may come from any thread, clearing from the reader's
    // turn only.
    void Interrupt(bool interrupt);

private:
    DemuxInput() = default;
    static int Read(void* self, std::uint8_t* buffer, int size);
    static std::int64_t Seek(void* self, std::int64_t offset, int whence);

    AVIOContext* inner_ = nullptr; // the file
    AVIOContext* outer_ = nullptr; // what libavformat sees
    std::int64_t size_ = 0;
    bool blank_ = false;
    bool blankByteGiven_ = false;
    std::int64_t blankPosition_ = 0;
    std::atomic<bool> interrupted_{false};
};

} // namespace brindlecast
