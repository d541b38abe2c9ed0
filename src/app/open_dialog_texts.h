#pragma once

namespace brindlecast::texts {

inline constexpr const wchar_t* kOpenTitle = L"Open Media File";

// Pairs of display text and pattern, each ended by a zero, the list by an empty text.
inline constexpr const wchar_t* kOpenFilter =
    L"지원하는 모든 파일 (*.mkv;*.mka;*.mks;*.mk3d;*.webm;*.avi;*.divx;*.amv;*.mp4;*.m4v;*.mov;*.3gp;*.3g2;"
    L"*.qt;*.f4v;*.ts;*.m2ts;*.mts;*.tp;*.ssif;*.wtv;*.bdmv;*.mpls;*.iso;*.ifo;*.mpg;*.mpeg;*.vob;"
    L"*.evo;*.flv;*.ogv;*.ogm;*.rm;*.rmvb;*.wmv;*.asf;*.mxf;*.bik;*.mp3;*.flac;*.aac;*.wav;*.wma;"
    L"*.m4a;*.opus;*.ogg;*.mka;*.ape;*.wv;*.tta;*.tak;*.dsf;*.dff;*.dts;*.dtshd;*.ac3;*.eac3)\0"
    L"*.mkv;*.mka;*.mks;*.mk3d;*.webm;*.avi;*.divx;*.amv;*.mp4;*.m4v;*.mov;*.3gp;*.3g2;*.qt;*.f4v;"
    L"*.ts;*.m2ts;*.mts;*.tp;*.ssif;*.wtv;*.bdmv;*.mpls;*.iso;*.ifo;*.mpg;*.mpeg;*.vob;*.evo;*.flv;"
    L"*.ogv;*.ogm;*.rm;*.rmvb;*.wmv;*.asf;*.mxf;*.bik;*.mp3;*.flac;*.aac;*.wav;*.wma;*.m4a;*.opus;"
    L"*.ogg;*.mka;*.ape;*.wv;*.tta;*.tak;*.dsf;*.dff;*.dts;*.dtshd;*.ac3;*.eac3\0"
    L"비디오 파일 (*.mkv;*.mka;*.mks;*.mk3d;*.webm;*.avi;*.divx;*.amv;*.mp4;*.m4v;*.mov;*.3gp;*.3g2;*.qt;"
    L"*.f4v;*.ts;*.m2ts;*.mts;*.tp;*.ssif;*.wtv;*.bdmv;*.mpls;*.iso;*.ifo;*.mpg;*.mpeg;*.vob;*.evo;"
    L"*.flv;*.ogv;*.ogm;*.rm;*.rmvb;*.wmv;*.asf;*.mxf;*.bik)\0"
    L"*.mkv;*.mka;*.mks;*.mk3d;*.webm;*.avi;*.divx;*.amv;*.mp4;*.m4v;*.mov;*.3gp;*.3g2;*.qt;*.f4v;"
    L"*.ts;*.m2ts;*.mts;*.tp;*.ssif;*.wtv;*.bdmv;*.mpls;*.iso;*.ifo;*.mpg;*.mpeg;*.vob;*.evo;*.flv;"
    L"*.ogv;*.ogm;*.rm;*.rmvb;*.wmv;*.asf;*.mxf;*.bik\0"
    L"오디오 파일 (*.mp3;*.flac;*.aac;*.wav;*.wma;*.m4a;*.opus;*.ogg;*.mka;*.ape;*.wv;*.tta;*.tak;*.dsf;"
    L"*.dff;*.dts;*.dtshd;*.ac3;*.eac3)\0"
    L"*.mp3;*.flac;*.aac;*.wav;*.wma;*.m4a;*.opus;*.ogg;*.mka;*.ape;*.wv;*.tta;*.tak;*.dsf;*.dff;"
    L"*.dts;*.dtshd;*.ac3;*.eac3\0"
    L"모든 파일 (*.*)\0"
    L"*.*\0";

inline constexpr const wchar_t* kOpenSubtitleTitle = L"자막 파일 열기";
inline constexpr const wchar_t* kOpenSubtitleFilter =
    L"자막 파일 (*.srt;*.ass;*.ssa;*.smi;*.vtt;*.sub;*.idx)\0"
    L"*.srt;*.ass;*.ssa;*.smi;*.vtt;*.sub;*.idx\0";

} // namespace brindlecast::texts
