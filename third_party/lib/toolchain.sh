# The cross compiler and small helpers for recipes. Read by build_recipe and, for the tools' names, by the driver.
# A change of what stands in this file builds all libraries anew.
# shellcheck shell=bash
# shellcheck disable=SC2034,SC2154 # variables are read by the recipes and set by build_recipe

HOST=x86_64-w64-mingw32
CC=$HOST-gcc-posix
CXX=$HOST-g++-posix
AR=$HOST-ar
STRIP=$HOST-strip
WINDRES=$HOST-windres
OBJDUMP=$HOST-objdump
JOBS=${BRINDLECAST_JOBS:-$(nproc)}
CFLAGS="-O2"
CXXFLAGS="-O2"

prepare_toolchain() {
    LINK_DIR=$SCRATCH/link
    mkdir -p "$LINK_DIR" "$SCRATCH/objects"
    write_static_winpthread
    write_meson_cross_file
    # No time stamps in the binaries: the same sources give the same DLL.
    LINK_FLAGS="-static-libgcc -static-libstdc++ -Wl,--no-insert-timestamp"
    LDFLAGS="-L$LINK_DIR $LINK_FLAGS"
    # The host's own .pc files must never be found.
    export PKG_CONFIG_LIBDIR="$DEPS/lib/pkgconfig" PKG_CONFIG_PATH=""
    export LC_ALL=C.UTF-8 TZ=UTC
    unset CPATH C_INCLUDE_PATH CPLUS_INCLUDE_PATH LIBRARY_PATH
}

# The posix flavour of the compiler adds -lpthread to every link and would choose the import library, and so
# a libwinpthread-1.dll to be shipped. A folder with the static archive alone, first on the link line, cures it.
write_static_winpthread() {
    local archive
    archive=$("$CC" -print-file-name=libwinpthread.a)
    [[ -f $archive ]] || { echo "libwinpthread.a not found beside $CC" >&2; return 1; }
    cp "$archive" "$LINK_DIR/libwinpthread.a"
    cp "$archive" "$LINK_DIR/libpthread.a"
}

write_meson_cross_file() {
    MESON_CROSS_FILE=$SCRATCH/cross.ini
    cat >"$MESON_CROSS_FILE" <<EOF
[binaries]
c = '$CC'
cpp = '$CXX'
ar = '$AR'
strip = '$STRIP'
windres = '$WINDRES'
pkgconfig = 'pkg-config'
[host_machine]
system = 'windows'
cpu_family = 'x86_64'
cpu = 'x86_64'
endian = 'little'
EOF
}

# compile_objects COMPILER [FLAG…] -- SOURCE…: each source into $SCRATCH/objects, $JOBS at a time.
# 255 makes xargs stop at the first source that does not compile.
compile_objects() {
    local flags=()
    while [[ $1 != -- ]]; do
        flags+=("$1")
        shift
    done
    shift
    # shellcheck disable=SC2016 # the inner shell expands
    printf '%s\0' "$@" | SCRATCH=$SCRATCH xargs -0 -P "$JOBS" -n 1 bash -c '
        source=${!#}
        object=$SCRATCH/objects/$(printf %s "${source#./}" | tr / _).o
        "${@:1:$#-1}" -c "$source" -o "$object" || exit 255' compile "${flags[@]}"
}

compile_c() { compile_objects "$CC" "$CFLAGS" "$@"; }
compile_cxx() { compile_objects "$CXX" "$CXXFLAGS" "$@"; }

# archive NAME: all objects compiled so far into lib/NAME.
archive() {
    mkdir -p "$STAGE/lib"
    "$AR" rcsD "$STAGE/lib/$1" "$SCRATCH"/objects/*.o
}

# install_headers SUBFOLDER HEADER…
install_headers() {
    local folder="$STAGE/include${1:+/$1}"
    shift
    mkdir -p "$folder"
    cp "$@" "$folder/"
}

# install_pc NAME DESCRIPTION LIBS [CFLAGS [REQUIRES]]: a pkg-config file for what has no build system here.
install_pc() {
    mkdir -p "$STAGE/lib/pkgconfig"
    cat >"$STAGE/lib/pkgconfig/$1.pc" <<EOF
prefix=\${pcfiledir}/../..
includedir=\${prefix}/include
libdir=\${prefix}/lib

Name: $1
Description: $2
Version: $UPSTREAM_VERSION
Requires.private: ${5:-}
Libs: -L\${libdir} $3
Cflags: -I\${includedir} ${4:-}
EOF
}
