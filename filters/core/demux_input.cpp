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
    error = avio_open2(&input->inner_, ("file:" + path).c_str(), AVIO_FLAG_READ, nullptr, nullptr);
    if (error < 0)
        return nullptr;
    input->size_ = avio_size(input->inner_);
    constexpr int kBufferBytes = 64 * 1024;
    auto* buffer = static_cast<unsigned char*>(av_malloc(kBufferBytes));
    if (buffer != nullptr)
        input->outer_ = avio_alloc_context(buffer, kBufferBytes, 0, input.get(), &Read, nullptr, &Seek);
    if (input->outer_ == nullptr) {
        av_free(buffer);
        error = AVERROR(ENOMEM);
        return nullptr;
    }
    return input;
}

DemuxInput::~DemuxInput() {
    if (outer_ != nullptr) {
        av_freep(&outer_->buffer);
        avio_context_free(&outer_);
    }
    avio_closep(&inner_);
}

int DemuxInput::Read(void* self, std::uint8_t* buffer, int size) {
    auto& input = *static_cast<DemuxInput*>(self);
    if (input.interrupted_)
        return AVERROR_EXIT;
    if (!input.blank_) {
        const int got = avio_read_partial(input.inner_, buffer, size);
        return got == 0 ? AVERROR_EOF : got;
    }
    if (input.blankByteGiven_ || size <= 0 || input.blankPosition_ >= input.size_)
        return AVERROR_EOF;
    input.blankByteGiven_ = true;
    ++input.blankPosition_;
    buffer[0] = 0;
    return 1;
}

std::int64_t DemuxInput::Seek(void* self, std::int64_t offset, int whence) {
    auto& input = *static_cast<DemuxInput*>(self);
    if ((whence & AVSEEK_SIZE) != 0)
        return input.size_;
    if (!input.blank_)
        return avio_seek(input.inner_, offset, whence & ~AVSEEK_FORCE);
    if ((whence & ~AVSEEK_FORCE) != SEEK_SET || offset < 0)
        return AVERROR(EINVAL);
    input.blankByteGiven_ = false;
    input.blankPosition_ = offset;
    return offset;
}

void DemuxInput::Interrupt(bool interrupt) {
    interrupted_ = interrupt;
    if (!interrupt) {
        outer_->eof_reached = 0; // an interrupted read counts as a failed one otherwise
        outer_->error = 0;
    }
}

void DemuxInput::SetBlank(bool blank) {
    if (blank)
        blankPosition_ = avio_tell(inner_);
    else
        avio_seek(inner_, blankPosition_, SEEK_SET); // where libavformat thinks the file stands
    blank_ = blank;
    blankByteGiven_ = false;
    outer_->direct = blank ? 1 : 0; // a short way forward is a seek like any other, not to be read through
    // What the buffer holds belongs to the other mode. An empty one keeps its place: the end of what was
    // read.
    outer_->buf_ptr = outer_->buf_end = outer_->buffer;
    outer_->eof_reached = 0;
    outer_->error = 0;
}

} // namespace brindlecast
