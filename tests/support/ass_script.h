#pragma once

#include "base/geometry.h"

#include <initializer_list>
#include <string>

namespace brindlecast::testing {

// An event of a script that fills a rectangle with one colour. libass needs no font for it, and every pixel
// of it is known.
struct AssBlock {
    const char* start = "0:00:01.00";
    const char* end = "0:00:02.00";
    Rect place;                   // in the script's resolution
    const char* color = "0000FF"; // blue, green, red
    const char* transparency = "00";
};

[[nodiscard]] inline std::string AssHead(Size resolution) {
    return "[Script Info]\nScriptType: v4.00+\nScaledBorderAndShadow: yes\nPlayResX: " +
           std::to_string(resolution.width) + "\nPlayResY: " + std::to_string(resolution.height) +
           "\n\n[V4+ Styles]\n"
           "Format: Name, Fontname, Fontsize, PrimaryColour, SecondaryColour, OutlineColour, BackColour, "
           "Bold, Italic, Underline, StrikeOut, ScaleX, ScaleY, Spacing, Angle, BorderStyle, Outline, "
           "Shadow, Alignment, MarginL, MarginR, MarginV, Encoding\n"
           "Style: Default,Malgun Gothic,20,&H00FFFFFF,&H000000FF,&H00000000,&H80000000,0,0,0,0,100,100,0,0,"
           "1,1,1,2,5,5,5,1\n\n[Events]\n"
           "Format: Layer, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text\n";
}

[[nodiscard]] inline std::string AssLine(const std::string& start, const std::string& end,
                                         const std::string& text) {
    return "Dialogue: 0," + start + "," + end + ",Default,,0,0,0,," + text + "\n";
}

[[nodiscard]] inline std::string AssLine(const AssBlock& block) {
    const std::string width = std::to_string(block.place.Width());
    const std::string height = std::to_string(block.place.Height());
    return AssLine(block.start, block.end,
                   "{\\an7\\pos(" + std::to_string(block.place.left) + "," + std::to_string(block.place.top) +
                       ")\\bord0\\shad0\\1c&H" + block.color + "&\\1a&H" + block.transparency +
                       "&\\p1}m 0 0 l " + width + " 0 " + width + " " + height + " 0 " + height);
}

[[nodiscard]] inline std::string AssScript(Size resolution, std::initializer_list<AssBlock> blocks) {
    std::string script = AssHead(resolution);
    for (const AssBlock& block : blocks) {
        script += AssLine(block);
    }
    return script;
}

} // namespace brindlecast::testing
