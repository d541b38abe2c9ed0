// The GUIDs of stream_formats.h, apart from what needs FFmpeg: whoever uses these alone links without it.
#include "filters/base/stream_formats.h"

namespace brindlecast {
namespace {

// The first field of each family is the number it carries; the rest is fixed.
constexpr GUID kTagBase = {0, 0, 0x0010, {0x80, 0x00, 0x00, 0xaa, 0x00, 0x38, 0x9b, 0x71}};
constexpr GUID kCodecBase = {0, 0x9d3a, 0x4b5e, {0x8c, 0x61, 0x42, 0x52, 0x4e, 0x44, 0x43, 0x44}};
constexpr GUID kSideDataBase = {0, 0x9d3a, 0x4b5e, {0x8c, 0x61, 0x42, 0x52, 0x4e, 0x44, 0x50, 0x53}};

GUID WithFirst(GUID base, std::uint32_t first) {
    base.Data1 = first;
    return base;
}

std::optional<std::uint32_t> FirstOf(const GUID& guid, const GUID& base) {
    if (WithFirst(base, guid.Data1) != guid) {
        return std::nullopt;
    }
    return guid.Data1;
}

} // namespace

GUID TagSubtype(std::uint32_t tag) {
    return WithFirst(kTagBase, tag);
}

std::optional<std::uint32_t> TagOfSubtype(const GUID& subtype) {
    return FirstOf(subtype, kTagBase);
}

std::optional<std::uint32_t> CodecOfSubtype(const GUID& subtype) {
    return FirstOf(subtype, kCodecBase);
}

GUID CodecSubtype(std::uint32_t codecId) {
    return WithFirst(kCodecBase, codecId);
}

GUID PacketSideDataKind(std::uint32_t type) {
    return WithFirst(kSideDataBase, type);
}

std::optional<std::uint32_t> PacketSideDataType(const GUID& kind) {
    return FirstOf(kind, kSideDataBase);
}

} // namespace brindlecast
