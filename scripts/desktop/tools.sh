# shellcheck shell=bash disable=SC2154
# Small native programs that scripts and tests work with, compiled when first asked for. Sourced; needs
# brindlecast_root.

native_tool_sources() {
    local tests=$brindlecast_root/tests
    local capture=$tests/support/capture
    case $1 in
    xdnd_source) echo "$tests/support/xdnd_source/xdnd_source.cpp" ;;
    stamp_sound) echo "$capture/stamp_sound.cpp" ;;
    watch_screen) echo "$capture/watch_screen.cpp $capture/screen.cpp" ;;
    judge_playback)
        echo "$capture/judge_playback.cpp $capture/picture_match.cpp $capture/picture_place.cpp $capture/thumbnail.cpp $capture/sound_match.cpp" \
            "$tests/support/tone_analysis.cpp $tests/support/fourier.cpp $tests/support/frame_mark.cpp"
        ;;
    *)
        echo "tools: no tool is named $1" >&2
        return 1
        ;;
    esac
}

native_tool_is_fresh() {
    [ -x "$1" ] && [ -z "$(find "$brindlecast_root/tests/support" "$brindlecast_root/scripts/desktop/tools.sh" \
        \( -name '*.cpp' -o -name '*.h' -o -name tools.sh \) -newer "$1" -print -quit)" ]
}

# native_tool NAME: prints the path of the compiled program.
native_tool() {
    local tool=$brindlecast_root/build/tools/$1 sources
    sources=$(native_tool_sources "$1") || return
    mkdir -p "${tool%/*}"
    if ! native_tool_is_fresh "$tool"; then
        # shellcheck disable=SC2086
        g++ -std=c++20 -O2 -Wall -Wextra -I"$brindlecast_root" -o "$tool.$$" $sources -lX11 >&2 || return
        mv "$tool.$$" "$tool"
    fi
    echo "$tool"
}
