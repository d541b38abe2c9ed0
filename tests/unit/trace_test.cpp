#include "base/trace.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace brindlecast {
namespace {

class TraceTest : public ::testing::Test {
protected:
    void SetUp() override {
        SetTraceSink([this](std::wstring_view line) { lines.emplace_back(line); });
    }
    void TearDown() override { SetTraceSink({}); }
    std::vector<std::wstring> lines;
};

TEST_F(TraceTest, ALineReachesTheSinkAsItIsFormatted) {
    Trace(L"[Brindlecast] OpenFile with HWAccel=%d\n", 5);
    EXPECT_EQ(lines, std::vector<std::wstring>{L"[Brindlecast] OpenFile with HWAccel=5\n"});
}

TEST_F(TraceTest, ALineIsCutAtItsBuffersSize) {
    Trace(L"%s", std::wstring(511, L'a'));
    Trace(L"%s", std::wstring(600, L'b'));
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].size(), 511U);
    EXPECT_EQ(lines[1].size(), 511U);
}

TEST_F(TraceTest, WithoutASinkLinesAreDropped) {
    SetTraceSink({});
    EXPECT_FALSE(IsTracing());
    Trace(L"nobody listens\n");
    EXPECT_TRUE(lines.empty());
}

} // namespace
} // namespace brindlecast
