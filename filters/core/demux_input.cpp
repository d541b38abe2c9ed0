#include "filters/core/demux_input.h"

#include <cstdio>

extern "C" {
#include <libavutil/error.h>
#include <libavutil/mem.h>
}

namespace brindlecast {

std::unique_ptr<DemuxInput> DemuxInput::Open(const std::string& path, int& error) {
    std::unique_ptr<DemuxInput> input(new DemuxInput());
    // The prefix keeps a name like "concat:…" from being taken for another protocol.
    error = avio_open2(&input->inner, ("file:" + path).c_str(), AVIO_FLAG_READ, nullptr, nullptr);
    if (error < 0) {
        return nullptr;
    }
    input->fileSize = avio_size(input->inner);
    constexpr int kBufferBytes = 64 * 1024;
    auto* buffer = static_cast<unsigned char*>(av_malloc(kBufferBytes));
    if (buffer != nullptr) {
        input->outer = avio_alloc_context(buffer, kBufferBytes, 0, input.get(), &Read, nullptr, &Seek);
    }
    if (input->outer == nullptr) {
        av_free(buffer);
        error = AVERROR(ENOMEM);
        return nullptr;
    }
    return input;
}

DemuxInput::~DemuxInput() {
    if (outer != nullptr) {
        av_freep(&outer->buffer);
        avio_context_free(&outer);
    }
    avio_closep(&inner);
}

int DemuxInput::Read(void* self, std::uint8_t* buffer, int size) {
    auto& input = *static_cast<DemuxInput*>(self);
    if (input.interrupted) {
        return AVERROR_EXIT;
    }
    if (!input.blank) {
        const int got = avio_read_partial(input.inner, buffer, size);
        return got == 0 ? AVERROR_EOF : got;
    }
    if (input.blankByteGiven || size <= 0 || input.blankPosition >= input.fileSize) {
        return AVERROR_EOF;
    }
    input.blankByteGiven = true;
    ++input.blankPosition;
    buffer[0] = 0;
    return 1;
}

std::int64_t DemuxInput::Seek(void* self, std::int64_t offset, int whence) {
    auto& input = *static_cast<DemuxInput*>(self);
    if ((whence & AVSEEK_SIZE) != 0) {
        return input.fileSize;
    }
    if (!input.blank) {
        return avio_seek(input.inner, offset, whence & ~AVSEEK_FORCE);
    }
    if ((whence & ~AVSEEK_FORCE) != SEEK_SET || offset < 0) {
        return AVERROR(EINVAL);
    }
    input.blankByteGiven = false;
    input.blankPosition = offset;
    return offset;
}

void DemuxInput::Interrupt(bool interrupt) {
    interrupted = interrupt;
    if (!interrupt) {
        outer->eof_reached = 0; // an interrupted read counts as a failed one otherwise
        outer->error = 0;
    }
}

void DemuxInput::SetBlank(bool isBlank) {
    if (isBlank) {
        blankPosition = avio_tell(inner);
    } else {
        avio_seek(inner, blankPosition, SEEK_SET); // where libavformat thinks the file stands
    }
    blank = isBlank;
    blankByteGiven = false;
    outer->direct = isBlank ? 1 : 0; // a short way forward is a seek like any other, not to be read through
    // What the buffer holds belongs to the other mode. An empty one keeps its place: the end of what was
    // read.
    outer->buf_ptr = outer->buf_end = outer->buffer;
    outer->eof_reached = 0;
    outer->error = 0;
}

} // namespace brindlecast
