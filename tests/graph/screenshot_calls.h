#pragma once

#include "tests/graph/graph_fixture.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace brindlecast::testing {

// Sees what this program asks of GDI+ for as long as it lives, and lets it happen. One at a time.
class GdiplusRecording {
public:
    // One encoder parameter; `name` in the form {1D5BE4B5-…}.
    struct Parameter {
        std::wstring name;
        std::uint32_t type;
        std::vector<std::uint32_t> values;
    };

    GdiplusRecording();
    GdiplusRecording(const GdiplusRecording&) = delete;
    GdiplusRecording& operator=(const GdiplusRecording&) = delete;
    ~GdiplusRecording();

    // "start", "save", "dispose" (of a picture) and "shut down", in order.
    [[nodiscard]] const Lines& Steps() const;
    // The parameters of each save; none when none were passed.
    [[nodiscard]] const std::vector<std::vector<Parameter>>& Saves() const;
    void Clear() const;

private:
    struct Swaps;
    std::unique_ptr<Swaps> swaps;
};

// Stands between this program and writing files for as long as it lives. One at a time.
class WriteRecording {
public:
    enum Outcome { kEverything, kOneByteLess, kNothing };
    // With a `watched` file, somebody tries to read that one during each write.
    explicit WriteRecording(Outcome outcome, const std::wstring& watched = {});
    WriteRecording(const WriteRecording&) = delete;
    WriteRecording& operator=(const WriteRecording&) = delete;
    ~WriteRecording();

    // How the reader fared: an error of the system, 0 when it could read.
    [[nodiscard]] unsigned long ReadersError() const;

private:
    struct Swaps;
    std::unique_ptr<Swaps> swaps;
};

} // namespace brindlecast::testing
