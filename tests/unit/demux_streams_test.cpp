#include "filters/core/demux_streams.h"

#include <gmock/gmock.h>

namespace brindlecast {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Subtitles = StreamPreferences::Subtitles;

DemuxStream Stream(StreamKind kind, std::string language, bool isDefault = false, bool decodable = true) {
    DemuxStream stream;
    stream.kind = kind;
    stream.language = std::move(language);
    stream.isDefault = isDefault;
    stream.decodable = decodable;
    stream.codecName = "codec";
    return stream;
}

StreamPreferences Sound(std::vector<std::string> languages) {
    StreamPreferences preferences;
    preferences.audioLanguages = std::move(languages);
    return preferences;
}

StreamPreferences Texts(Subtitles mode, std::vector<std::string> languages = {}) {
    StreamPreferences preferences;
    preferences.subtitles = mode;
    preferences.subtitleLanguages = std::move(languages);
    return preferences;
}

TEST(DemuxStreams, LanguageListsAreSplitTrimmedAndLowered) {
    EXPECT_THAT(ParseLanguages("kor,eng,jpn"), ElementsAre("kor", "eng", "jpn"));
    EXPECT_THAT(ParseLanguages(" KOR ;, eng,"), ElementsAre("kor", "eng"));
    EXPECT_THAT(ParseLanguages(""), IsEmpty());
    EXPECT_THAT(ParseLanguages(",,"), IsEmpty());
}

TEST(DemuxStreams, BothCodesOfALanguageAreTheSame) {
    EXPECT_TRUE(SameLanguage("ger", "deu"));
    EXPECT_TRUE(SameLanguage("zho", "chi"));
    EXPECT_TRUE(SameLanguage("kor", "kor"));
    EXPECT_FALSE(SameLanguage("kor", "eng"));
    EXPECT_FALSE(SameLanguage("", ""));
}

TEST(DemuxStreams, SoundGoesByLanguageThenFlagThenOrderAndOnlyDecodableCounts) {
    const std::vector<DemuxStream> streams = {
        Stream(StreamKind::Audio, "eng", true, false), Stream(StreamKind::Audio, "fra"),
        Stream(StreamKind::Audio, "jpn", true), Stream(StreamKind::Audio, "kor")};
    EXPECT_EQ(ChooseStreams(streams, Sound({"kor", "jpn"})).audio, 3);
    EXPECT_EQ(ChooseStreams(streams, Sound({"eng", "fre"})).audio, 1);
    EXPECT_EQ(ChooseStreams(streams, Sound({"ita"})).audio, 2);
    EXPECT_EQ(ChooseStreams({streams[0], streams[1]}, {}).audio, 1);
    EXPECT_EQ(ChooseStreams({streams[0]}, {}).audio, -1);
    EXPECT_EQ(ChooseStreams(streams, {}).video, -1);
}

TEST(DemuxStreams, SubtitlesAreChosenByModeOnly) {
    std::vector<DemuxStream> streams = {Stream(StreamKind::Subtitle, "eng"),
                                        Stream(StreamKind::Subtitle, "kor", true),
                                        Stream(StreamKind::Subtitle, "jpn")};
    EXPECT_EQ(ChooseStreams(streams, Texts(Subtitles::None, {"jpn"})).subtitle, -1);
    EXPECT_EQ(ChooseStreams(streams, Texts(Subtitles::Default, {"jpn"})).subtitle, 2);
    EXPECT_EQ(ChooseStreams(streams, Texts(Subtitles::Default)).subtitle, 1);
    EXPECT_EQ(ChooseStreams(streams, Texts(Subtitles::ForcedOnly)).subtitle, -1);
    streams[2].isForced = true;
    EXPECT_EQ(ChooseStreams(streams, Texts(Subtitles::ForcedOnly)).subtitle, 2);
    EXPECT_EQ(ChooseStreams(streams, Texts(Subtitles::ForcedOnly, {"eng"})).subtitle, -1);
}

TEST(DemuxStreams, NamesHaveTitleLanguageAndCodecAndNoWordOfTheirOwn) {
    DemuxStream stream = Stream(StreamKind::Subtitle, "kor");
    stream.title = "제목";
    stream.codecName = "subrip";
    EXPECT_EQ(DisplayName(stream), "제목 [kor] (subrip)");
    stream.title.clear();
    EXPECT_EQ(DisplayName(stream), "[kor] (subrip)");
    stream.language.clear();
    EXPECT_EQ(DisplayName(stream), "(subrip)");
}

} // namespace
} // namespace brindlecast
