# shellcheck shell=bash disable=SC2154
# Functions that make and keep Wine prefixes. Sourced; needs brindlecast_root.

# What every Wine program of ours runs with. winemenubuilder would write into the user's own menus.
wine_environment() {
    export WINEPREFIX=$1
    export WINEARCH=win64
    export WINEDEBUG=${WINEDEBUG:--all}
    export WINEDLLOVERRIDES="mscoree,mshtml,winedbg.exe,winemenubuilder.exe="
    export LC_ALL=C.UTF-8 # else Korean arguments arrive broken
}

# Debian's wine64 is outside of PATH when only the 64-bit packages are installed.
find_wine() {
    local folder
    for folder in "${BRINDLECAST_WINE:-}" /usr/lib/wine; do
        if [ -n "$folder" ] && [ -x "$folder/wine64" ] && [ -x "$folder/wineserver64" ]; then
            wine_program=$folder/wine64
            wine_server=$folder/wineserver64
            return
        fi
    done
    echo "desktop: no wine64 found (package wine64)" >&2
    return 1
}

# The registry of a prefix: Windows 10, windows that Wine places itself (see docs/testing.md), and fonts that are
# there in place of those of Windows, the Korean names included.
prefix_registry() {
    local font
    printf 'Windows Registry Editor Version 5.00\r\n\r\n'
    printf '[HKEY_CURRENT_USER\\Software\\Wine]\r\n"Version"="win10"\r\n\r\n'
    printf '[HKEY_CURRENT_USER\\Software\\Wine\\X11 Driver]\r\n"Managed"="N"\r\n\r\n'
    printf '[HKEY_CURRENT_USER\\Software\\Wine\\Fonts\\Replacements]\r\n'
    for font in "Segoe UI" "Malgun Gothic" "맑은 고딕" "Tahoma" "MS Shell Dlg" "MS Shell Dlg 2"; do
        printf '"%s"="NanumGothic"\r\n' "$font"
    done
    printf '"Consolas"="Liberation Mono"\r\n"Arial"="Liberation Sans"\r\n'
}

korean_font_folder=/usr/share/fonts/truetype/nanum

install_korean_fonts() {
    local fonts=$1 style file
    for style in Regular Bold; do
        file=$korean_font_folder/NanumGothic.ttf
        [ "$style" = Bold ] && file=$korean_font_folder/NanumGothicBold.ttf
        # Debian's own python3 has fontTools; another one in PATH may not.
        /usr/bin/python3 "$brindlecast_root/scripts/desktop/make_korean_font" \
            "$file" "$fonts/MalgunGothic$style.ttf" "Malgun Gothic" "$style" || return
    done
}

# Changes with everything that decides what a new prefix holds.
prefix_stamp() {
    {
        cat "$brindlecast_root/scripts/desktop/prefix.sh" "$brindlecast_root/scripts/desktop/make_korean_font"
        cat "$korean_font_folder/NanumGothic.ttf" "$korean_font_folder/NanumGothicBold.ttf"
        "$wine_program" --version
    } | sha256sum | cut -d' ' -f1
}

prefix_fits() { [ "$(cat "$1/brindlecast_stamp" 2>/dev/null)" = "$2" ]; }

# make_prefix FOLDER: leaves a prefix that fits the stamp, with no server running. The first one of a checkout takes
# a while and becomes a template; the others share its system files by hard links (a prefix has 700 MB of them,
# which programs only read) and have their own registry and user folders.
make_prefix() (
    prefix=$1
    template=$brindlecast_root/build/wine/.template
    stamp=$(prefix_stamp) || exit
    prefix_fits "$prefix" "$stamp" && exit 0
    exec {template_lock}>"$template.lock"
    flock "$template_lock"
    if ! prefix_fits "$template" "$stamp"; then
        echo "desktop: making a Wine prefix, about 15 seconds ..." >&2
        make_template "$template" "$stamp" {template_lock}>&- || exit
    fi
    part=$prefix.part
    rm -rf "$part" "$prefix"
    cp -al "$template" "$part" &&
        rm -rf "$part"/*.reg "$part/drive_c/users" &&
        cp -a "$template"/*.reg "$part" &&
        cp -a "$template/drive_c/users" "$part/drive_c" &&
        mv "$part" "$prefix"
)

make_template() (
    wine_environment "$1"
    rm -rf "$WINEPREFIX"
    # A home of its own: Wine links the user's folders to what it finds there.
    export HOME=$WINEPREFIX/unix_home
    mkdir -p "$HOME"
    log=$WINEPREFIX/setup.log
    fail() {
        echo "desktop: $1 failed:" >&2
        cat "$log" >&2
        "$wine_server" -k
        exit 1
    }
    "$wine_program" wineboot -i >"$log" 2>&1 || fail "wineboot"
    { printf '\xff\xfe'; prefix_registry | iconv -f UTF-8 -t UTF-16LE; } >"$WINEPREFIX/drive_c/setup.reg"
    "$wine_program" reg import 'C:\setup.reg' >>"$log" 2>&1 || fail "the registry import"
    install_korean_fonts "$WINEPREFIX/drive_c/windows/Fonts" >>"$log" 2>&1 || fail "the Korean font"
    timeout 60 "$wine_server" -w || fail "waiting for the server"
    # Folders instead of links that all lead to one place outside.
    find "$WINEPREFIX/drive_c/users" -type l | while read -r link; do
        rm "$link" && mkdir "$link" || exit
    done || fail "making the user's folders"
    printf '%s\n' "$2" >"$WINEPREFIX/brindlecast_stamp"
)
