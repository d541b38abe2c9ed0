#include "app/open_dialog_texts.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace brindlecast {
namespace {

// What the dialog lists, in its order: a text and its pattern in turn.
const std::vector<std::wstring> kExpected = {
    L"지원하는 모든 파일 (*.mkv;*.mka;*.mks;*.mk3d;*.webm;*.avi;*.divx;*.amv;*.mp4;*.m4v;*.mov;*.3gp;"
    L"*.3g2;*.qt;*.f4v;*.ts;*.m2ts;*.mts;*.tp;*.ssif;*.wtv;*.bdmv;*.mpls;*.iso;*.ifo;*.mpg;"
    L"*.mpeg;*.vob;*.evo;*.flv;*.ogv;*.ogm;*.rm;*.rmvb;*.wmv;*.asf;*.mxf;*.bik;*.mp3;*.flac;"
    L"*.aac;*.wav;*.wma;*.m4a;*.opus;*.ogg;*.mka;*.ape;*.wv;*.tta;*.tak;*.dsf;*.dff;*.dts;"
    L"*.dtshd;*.ac3;*.eac3)",
    L"*.mkv;*.mka;*.mks;*.mk3d;*.webm;*.avi;*.divx;*.amv;*.mp4;*.m4v;*.mov;*.3gp;*.3g2;*.qt;"
    L"*.f4v;*.ts;*.m2ts;*.mts;*.tp;*.ssif;*.wtv;*.bdmv;*.mpls;*.iso;*.ifo;*.mpg;*.mpeg;*.vob;"
    L"*.evo;*.flv;*.ogv;*.ogm;*.rm;*.rmvb;*.wmv;*.asf;*.mxf;*.bik;*.mp3;*.flac;*.aac;*.wav;"
    L"*.wma;*.m4a;*.opus;*.ogg;*.mka;*.ape;*.wv;*.tta;*.tak;*.dsf;*.dff;*.dts;*.dtshd;*.ac3;"
    L"*.eac3",
    L"비디오 파일 (*.mkv;*.mka;*.mks;*.mk3d;*.webm;*.avi;*.divx;*.amv;*.mp4;*.m4v;*.mov;*.3gp;"
    L"*.3g2;*.qt;*.f4v;*.ts;*.m2ts;*.mts;*.tp;*.ssif;*.wtv;*.bdmv;*.mpls;*.iso;*.ifo;*.mpg;"
    L"*.mpeg;*.vob;*.evo;*.flv;*.ogv;*.ogm;*.rm;*.rmvb;*.wmv;*.asf;*.mxf;*.bik)",
    L"*.mkv;*.mka;*.mks;*.mk3d;*.webm;*.avi;*.divx;*.amv;*.mp4;*.m4v;*.mov;*.3gp;*.3g2;*.qt;"
    L"*.f4v;*.ts;*.m2ts;*.mts;*.tp;*.ssif;*.wtv;*.bdmv;*.mpls;*.iso;*.ifo;*.mpg;*.mpeg;*.vob;"
    L"*.evo;*.flv;*.ogv;*.ogm;*.rm;*.rmvb;*.wmv;*.asf;*.mxf;*.bik",
    L"오디오 파일 (*.mp3;*.flac;*.aac;*.wav;*.wma;*.m4a;*.opus;*.ogg;*.mka;*.ape;*.wv;*.tta;*.tak;"
    L"*.dsf;*.dff;*.dts;*.dtshd;*.ac3;*.eac3)",
    L"*.mp3;*.flac;*.aac;*.wav;*.wma;*.m4a;*.opus;*.ogg;*.mka;*.ape;*.wv;*.tta;*.tak;*.dsf;"
    L"*.dff;*.dts;*.dtshd;*.ac3;*.eac3",
    L"모든 파일 (*.*)",
    L"*.*",
};

TEST(OpenDialogTexts, TheFilterIsFourPairsEndedByAnEmptyText) {
    std::vector<std::wstring> listed;
    const wchar_t* text = texts::kOpenFilter;
    while (*text != L'\0') {
        listed.emplace_back(text);
        text += listed.back().size() + 1;
    }
    EXPECT_EQ(listed, kExpected);
}

TEST(OpenDialogTexts, TheTitleIsFixed) {
    EXPECT_EQ(std::wstring(texts::kOpenTitle), L"Open Media File");
}

} // namespace
} // namespace brindlecast
