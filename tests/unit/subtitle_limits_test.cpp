#include "subtitles/subtitle_provider.h"

#include "tests/support/subtitle_fixture.h"

#include <chrono>
#include <stdexcept>

// Files that nobody writes for people: they end soon, and nothing goes wrong.

namespace brindlecast::testing {
namespace {

constexpr Size kFrame{200, 100};
constexpr Rect kPlace{10, 20, 110, 60};
constexpr std::size_t kMegabyte = 1'000'000;

using namespace std::string_literals;

class SubtitleLimits : public SubtitleTest {
protected:
    SubtitleLimits() { provider->SetVideoSize(kFrame); }
    ~SubtitleLimits() override {
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
    }
    bool Load(const std::u8string& name, std::string_view bytes) {
        return provider->LoadFile(folder.Write(name, bytes));
    }
    HRESULT Render(Time100ns rt) {
        canvas.Clear();
        Rect bbox;
        const HRESULT result = provider->Render(canvas.desc, rt, 25.0, bbox);
        EXPECT_TRUE(canvas.GapsAreClear());
        return result;
    }

    const std::chrono::steady_clock::time_point begin = std::chrono::steady_clock::now();
    ComReference<CSubtitleProvider> provider{new CSubtitleProvider({}, DrawFakeCue)};
    Canvas canvas{kFrame};
};

TEST_F(SubtitleLimits, ResolutionsThatAreNone) {
    struct Row {
        const char* x;
        const char* y;
    };
    for (const Row& row :
         {Row{"2147483647", "2147483647"}, Row{"2147483647", "1"}, Row{"1", "2147483647"}, Row{"0", "0"},
          Row{"-200", "-100"}, Row{"99999999999999999999", "1"}, Row{"x", ""}, Row{"", ""}}) {
        std::string script = AssScript(kFrame, {{.place = kPlace}});
        script += AssLine("0:00:01.00", "0:00:02.00", "Text");
        script.replace(script.find("PlayResX: 200"), 13, "PlayResX: "s + row.x);
        script.replace(script.find("PlayResY: 100"), 13, "PlayResY: "s + row.y);
        ASSERT_TRUE(Load(u8"a.ass", script)) << row.x << "x" << row.y;
        EXPECT_EQ(1U, provider->GetStartPosition(0, 25.0));
        EXPECT_LE(0, Render(15'000'000));
    }
}

TEST_F(SubtitleLimits, LengthsBeyondAllSense) {
    std::string script = AssHead(kFrame);
    for (const char* tags :
         {"{\\fs2000000000}", "{\\bord99999999}", "{\\shad-99999999}", "{\\blur1e30}", "{\\fscx1e9\\fscy1e9}",
          "{\\pos(1e300,-1e300)}", "{\\pos(nan,inf)}", "{\\frz1e308}", "{\\clip(-2147483648,0,2147483647,1)}",
          "{\\p30}m 0 0 l 2147483647 0 2147483647 2147483647", "{\\p1}m 0 0 l 1e30 0 1e30 1e30",
          "{\\t(0,1e300,1e300,\\fs1e300)}", "{\\fnNo such font\\fs-5}", "{\\org(1e300,1e300)\\frx89.9999}",
          "{\\be1000000}", "{\\fsp1e30}", "{\\k2147483647}{\\K-2147483648}"}) {
        script += AssLine("0:00:01.00", "0:00:02.00", tags + "Text"s);
    }
    ASSERT_TRUE(Load(u8"a.ass", script));
    EXPECT_LE(0, Render(15'000'000));
}

TEST_F(SubtitleLimits, TimesBeyondAllSense) {
    std::string script = AssHead(kFrame);
    for (const char* time : {"999999999:00:00.00", "-1:00:00.00", "0:99:99.99", "0:00:-5.00", "x", "",
                             "2147483647:2147483647:2147483647.2147483647"}) {
        script += AssLine(time, "0:00:02.00", "Text");
        script += AssLine("0:00:01.00", time, "Text");
    }
    ASSERT_TRUE(Load(u8"a.ass", script));
    static_cast<void>(provider->GetStartPosition(0, 25.0));
    std::vector<Time100ns> starts;
    for (SubPicPosition position = 1; position != 0; position = provider->GetNext(position)) {
        starts.push_back(provider->GetStart(position, 25.0));
    }
    EXPECT_EQ(14U, starts.size());
    EXPECT_TRUE(std::ranges::is_sorted(starts));
    EXPECT_LE(0, Render(15'000'000));
    ASSERT_TRUE(Load(u8"a.idx", "1\n2147483647:2147483647:2147483647,2147483647 --> "
                                "99999999999:0:0,0\nHi\n\n2\n00:00:01,000 --> 00:00:02,000\nthere\n"));
    EXPECT_EQ(1U, provider->GetStartPosition(0, 25.0));
    EXPECT_EQ(0, Render(15'000'000));
    EXPECT_EQ((std::vector<DrawnCue>{{L"there", kFrame}}), drawnCues);
}

TEST_F(SubtitleLimits, TwentyThousandEventsAtOnce) {
    std::string script = AssHead(kFrame);
    for (int event = 0; event < 20'000; ++event) {
        script += AssLine({.place = {event % 150, event % 80, event % 150 + 4, event % 80 + 4}});
    }
    ASSERT_TRUE(Load(u8"a.ass", script));
    EXPECT_EQ(1U, provider->GetStartPosition(0, 25.0));
    EXPECT_EQ(1, std::ranges::count(lines, L"libass event count: 20000"));
    EXPECT_EQ(0, Render(15'000'000));
    EXPECT_GT(canvas.Count(kRed), 1000);
    EXPECT_EQ(1, Render(25'000'000));
}

TEST_F(SubtitleLimits, TwentyThousandEventsOneAfterTheOther) {
    std::string text;
    for (int event = 0; event < 20'000; ++event) {
        const std::string time = "0:" + std::to_string(event / 60) + ":" + std::to_string(event % 60);
        text.append("1\n").append(time).append(",000 --> ").append(time).append(",900\nHi\n\n");
    }
    ASSERT_TRUE(Load(u8"a.srt", text));
    EXPECT_EQ(20'000U, provider->GetStartPosition(199'990'000'000, 25.0));
    EXPECT_EQ(0U, provider->GetStartPosition(200'000'000'000, 25.0));
    EXPECT_EQ(199'990'000'000, provider->GetStart(20'000, 25.0));
    EXPECT_EQ(199'999'000'000, provider->GetStop(20'000, 25.0));
    EXPECT_EQ(0, Render(199'995'000'000));
}

TEST_F(SubtitleLimits, LinesOfTenMegabytes) {
    const std::string long_(10 * kMegabyte, 'x');
    std::string script = AssHead(kFrame);
    script += "; " + long_ + "\n" + "Comment: 0,0:00:01.00,0:00:02.00,Default,,0,0,0,," + long_ + "\n";
    script += AssLine("0:00:05.00", "0:00:06.00", long_);
    script += AssLine("0:00:01.00", "0:00:02.00", "{" + long_ + "}");
    script += AssLine({.place = kPlace});
    ASSERT_TRUE(Load(u8"a.ass", script));
    EXPECT_EQ(0, Render(15'000'000));
    EXPECT_EQ(kRed, canvas.At(60, 40));
    ASSERT_TRUE(Load(u8"a.srt", long_ + "\n" + kSubRip + long_.substr(0, kMegabyte)));
    EXPECT_EQ(1U, provider->GetStartPosition(0, 25.0));
    ASSERT_TRUE(Load(u8"a.idx", kSubRip + long_));
    EXPECT_EQ(0, Render(15'000'000));
    EXPECT_EQ(L"Hi\n" + std::wstring(10 * kMegabyte, L'x'), drawnCues.at(0).text);
}

TEST_F(SubtitleLimits, ZeroBytes) {
    std::string script = AssScript(kFrame, {{.place = kPlace}});
    for (const std::size_t at : {std::size_t{0}, std::size_t{20}, script.find("Style:"),
                                 script.find("Dialogue"), script.size() - 10, script.size() - 1}) {
        std::string broken = script;
        broken[at] = '\0';
        static_cast<void>(Load(u8"a.ass", broken)); // libass ends at it
        static_cast<void>(provider->GetStartPosition(0, 25.0));
        EXPECT_LE(0, Render(15'000'000));
    }
    EXPECT_FALSE(Load(u8"a.ass", std::string(kMegabyte, '\0')));
    EXPECT_TRUE(Load(u8"a.srt", std::string(kMegabyte, '\0')));
    EXPECT_EQ(0U, provider->GetStartPosition(0, 25.0));
    ASSERT_TRUE(Load(u8"a.idx", "1\n00:00:01,000 --> 00:00:02,000\nH\0i\n"s));
    EXPECT_EQ(0, Render(15'000'000));
    EXPECT_EQ((std::vector<DrawnCue>{{L"H\0i"s, kFrame}}), drawnCues);
}

TEST_F(SubtitleLimits, BytesOfNoKind) {
    std::string noise(kMegabyte, '\0');
    std::uint32_t state = 1;
    for (char& byte : noise) {
        state = state * 1'664'525 + 1'013'904'223;
        byte = static_cast<char>(state >> 24);
    }
    for (const char8_t* name : {u8"a.srt", u8"a.ass", u8"a.ssa", u8"a.sub", u8"a.smi", u8"a.vtt", u8"a"}) {
        try {
            static_cast<void>(Load(name, noise));
            static_cast<void>(Load(name, AssScript(kFrame, {{.place = kPlace}}) + noise));
        } catch (const std::range_error& error) {
            EXPECT_STREQ("bad conversion", error.what());
        }
        static_cast<void>(provider->GetStartPosition(0, 25.0));
        EXPECT_LE(0, Render(15'000'000));
    }
}

} // namespace
} // namespace brindlecast::testing
