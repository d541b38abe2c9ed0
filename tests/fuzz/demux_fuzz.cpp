#include "filters/core/demux_file.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" {
#include <libavutil/log.h>
}

using namespace brindlecast;

namespace {

// A file in memory that libavformat opens by its path.
class MemoryFile {
public:
    MemoryFile(const std::uint8_t* data, std::size_t size) : descriptor(memfd_create("input", 0)) {
        while (size > 0) {
            const ssize_t written = write(descriptor, data, size);
            if (written <= 0) {
                break;
            }
            data += written;
            size -= static_cast<std::size_t>(written);
        }
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { close(descriptor); }

    [[nodiscard]] std::string Path() const { return "/proc/self/fd/" + std::to_string(descriptor); }

private:
    int descriptor;
};

void ReadPackets(DemuxFile& file, int most) {
    DemuxPacket packet;
    while (most-- > 0 && file.Read(packet) == DemuxFile::ReadResult::Packet) {
    }
}

} // namespace

// Opens the input as a media file, takes its keyframe table, reads, seeks and reads again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    av_log_set_level(AV_LOG_QUIET);
    const MemoryFile memory(data, size);
    int error = 0;
    const auto file = DemuxFile::Open(memory.Path(), error);
    if (file == nullptr) {
        return 0;
    }
    file->LoadKeyframes(0);
    ReadPackets(*file, 50);
    for (const DemuxTime target : {file->Duration() / 2, DemuxTime{0}}) {
        if (file->Seek(target, 0)) {
            ReadPackets(*file, 20);
        }
    }
    return 0;
}
