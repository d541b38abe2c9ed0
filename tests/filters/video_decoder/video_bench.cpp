#include "tests/filters/video_decoder/video_bench.h"

#include <cstring>
#include <stdexcept>

namespace brindlecast {
namespace {

void Require(bool condition, const char* what) {
    if (!condition) {
        throw std::runtime_error(what);
    }
}

} // namespace

TestModule& VideoModule() {
    static TestModule module(L"LAVVideo.ax");
    return module;
}

bool HasSubtype(const MediaType& type, const GUID& subtype) {
    return type->subtype == subtype;
}

VideoBench::VideoBench(const MediaStream& stream, Accepts accepts, const Prepare& prepare)
    : decoder(VideoModule().CreateFilter(kClsidLavVideo)), source(PushSource::Create(stream.types)),
      sink(RecordingSink::Create(MEDIATYPE_Video, std::move(accepts))) {
    if (prepare) {
        prepare(*Query<ILAVVideoSettings>(decoder, __uuidof(ILAVVideoSettings)).Get());
    }
    graph.Add(source.Get(), L"source");
    graph.Add(decoder.Get(), L"decoder");
    graph.Add(sink.Get(), L"sink");
    graph.RemoveClock();
    Require(graph.ConnectDirect(&source->Pin(), PinsOf(decoder.Get(), PINDIR_INPUT)[0].Get()) == S_OK,
            "connect in");
    Require(graph.ConnectDirect(PinsOf(decoder.Get(), PINDIR_OUTPUT)[0].Get(), &sink->Pin()) == S_OK,
            "connect out");
    Require(SUCCEEDED(graph.Pause()), "pause");
}

VideoBench::~VideoBench() {
    sink->Block(false);
    (void)graph.Stop();
}

HRESULT VideoBench::Push(const MediaPacket& packet, Time100ns segmentStart) {
    return source->Push(packet.bytes.data(), packet.bytes.size(), packet.In(segmentStart));
}

void VideoBench::PushFrom(const MediaStream& stream, std::size_t firstPacket, Time100ns segmentStart) {
    for (std::size_t i = firstPacket; i < stream.packets.size(); ++i) {
        const HRESULT result = Push(stream.packets[i], segmentStart);
        Require(result == S_OK, "push");
    }
}

void VideoBench::EndOfStream() {
    Require(source->Pin().DeliverEndOfStream() == S_OK, "end of stream");
}

MediaType VideoBench::OutputType() {
    return sink->Pin().Type();
}

const VIDEOINFOHEADER2& VideoBench::OutputHeader() {
    outputType_ = OutputType();
    const auto* header = outputType_.Format<VIDEOINFOHEADER2>(FORMAT_VideoInfo2);
    Require(header != nullptr, "no VIDEOINFOHEADER2");
    return *header;
}

std::vector<BYTE> AsNv12(const AVFrame& picture) {
    std::vector<BYTE> bytes;
    for (int row = 0; row < picture.height; ++row) {
        const BYTE* from = picture.data[0] + std::ptrdiff_t{row} * picture.linesize[0];
        bytes.insert(bytes.end(), from, from + picture.width);
    }
    for (int row = 0; row < picture.height / 2; ++row) {
        for (int x = 0; x < picture.width / 2; ++x) {
            bytes.push_back(picture.data[1][std::ptrdiff_t{row} * picture.linesize[1] + x]);
            bytes.push_back(picture.data[2][std::ptrdiff_t{row} * picture.linesize[2] + x]);
        }
    }
    return bytes;
}

} // namespace brindlecast
