#include "filters/renderer/shader_source.h"

namespace brindlecast {

namespace {

constexpr const char* kVertexShader = R"(
struct Vertex { float4 position : SV_Position; float2 coordinate : TEXCOORD0; };
Vertex main(float3 position : POSITION, float2 coordinate : TEXCOORD0) {
    Vertex result;
    result.position = float4(position, 1.0);
    result.coordinate = coordinate;
    return result;
}
)";

constexpr const char* kCopyShader = R"(
Texture2D plane0 : register(t0);
SamplerState linearClamp : register(s0);
float4 main(float4 position : SV_Position, float2 coordinate : TEXCOORD0) : SV_Target {
    return plane0.Sample(linearClamp, coordinate);
}
)";

constexpr const char* kPictureHead = R"(
Texture2D plane0 : register(t0);
Texture2D plane1 : register(t1);
Texture2D plane2 : register(t2);
SamplerState linearClamp : register(s0);
cbuffer Constants : register(b0) {
    float4 matrixRow0;
    float4 matrixRow1;
    float4 matrixRow2;
    float4 chromaMap;
    float4 footprint;
};
)";

constexpr const char* kPictureTail = R"(
    float4 value = float4(average, 1.0);
    return float4(dot(matrixRow0, value), dot(matrixRow1, value), dot(matrixRow2, value), 1.0);
}
)";

// An expression for the three values of the picture at the place in the variable of that name.
std::string Fetch(PixelFormat format, const std::string& place) {
    const auto sample = [](const char* plane, const std::string& at, const char* channels) {
        return std::string(plane) + ".Sample(linearClamp, " + at + ")." + channels;
    };
    const std::string chroma = "(" + place + " * chromaMap.xy + chromaMap.zw)";
    switch (format) {
    case PixelFormat::kNv12:
    case PixelFormat::kP010:
        return "float3(" + sample("plane0", place, "r") + ", " + sample("plane1", chroma, "rg") + ")";
    case PixelFormat::kYv12:
        return "float3(" + sample("plane0", place, "r") + ", " + sample("plane1", chroma, "r") + ", " +
               sample("plane2", chroma, "r") + ")";
    case PixelFormat::kYuy2:
        return "float3(" + sample("plane0", place, "r") + ", " + sample("plane1", chroma, "ga") + ")";
    case PixelFormat::kAyuv: // bytes V, U, Y, A
        return sample("plane0", place, "bgr");
    case PixelFormat::kRgb32: return sample("plane0", place, "rgb");
    }
    return "float3(0.0, 0.0, 0.0)";
}

// Statements that leave the mean of taps x taps samples, spread over an output pixel, in `average`.
std::string Average(PixelFormat format, int taps) {
    if (taps == 1) {
        return "    float3 average = " + Fetch(format, "coordinate") + ";\n";
    }
    std::string text = "    float3 average = float3(0.0, 0.0, 0.0);\n    float2 place;\n";
    const auto offset = [taps](int index) {
        return std::to_string((2.0 * index + 1.0) / (2.0 * taps) - 0.5); // the middles of equal parts
    };
    for (int y = 0; y < taps; ++y) {
        for (int x = 0; x < taps; ++x) {
            text += "    place = coordinate + footprint.xy * float2(" + offset(x) + ", " + offset(y) + ");\n";
            text += "    average += " + Fetch(format, "place") + ";\n";
        }
    }
    return text + "    average *= " + std::to_string(1.0 / (taps * taps)) + ";\n";
}

} // namespace

const char* VertexShaderSource() {
    return kVertexShader;
}

const char* CopyShaderSource() {
    return kCopyShader;
}

std::string PictureShaderSource(PixelFormat format, int taps) {
    std::string source = kPictureHead;
    source += "float4 main(float4 position : SV_Position, float2 coordinate : TEXCOORD0) : SV_Target {\n";
    source += Average(format, taps);
    source += kPictureTail;
    return source;
}

} // namespace brindlecast
