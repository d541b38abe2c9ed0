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

    [[nodiscard]] AVIOContext* Context() const { return outer; }
    [[nodiscard]] std::int64_t Size() const { return fileSize; }

    // While blank, a read gives one zero byte and then the end, without touching the file: a demuxer that
    // walks its index this way tells the times of packets and loads none of them.
    void SetBlank(bool isBlank);

    // While set, reads fail with AVERROR_EXIT. Setting may come from any thread, clearing from the reader's
    // turn only.
    void Interrupt(bool interrupt);

private:
    DemuxInput() = default;
    static int Read(void* self, std::uint8_t* buffer, int size);
    static std::int64_t Seek(void* self, std::int64_t offset, int whence);

    AVIOContext* inner = nullptr; // the file
    AVIOContext* outer = nullptr; // what libavformat sees
    std::int64_t fileSize = 0;
    bool blank = false;
    bool blankByteGiven = false;
    std::int64_t blankPosition = 0;
    std::atomic<bool> interrupted{false};
};

} // namespace brindlecast
