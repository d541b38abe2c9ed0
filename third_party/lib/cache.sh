# The cache outside the tree: sources as downloaded, one entry for each built library, merged prefixes.
#   sources/PACKAGE/VERSION/      tarballs
#   entries/LIBRARY/NAME/         bin, include, lib, share of one library; NAME = key-version-checksum
#   prefixes/NAME/                what build/sysroot points to, merged from entries
#   tmp/                          everything unfinished; whole folders are renamed out of it
# Read by the driver. Needs $third_party, $cache.
# shellcheck shell=bash
# shellcheck disable=SC2034,SC2154 # variables are shared with the driver and the recipes

# read_recipe LIBRARY: sets the recipe's variables (and build, which only build_recipe runs).
read_recipe() {
    depends=() licenses=() skip_patches=()
    static_only=no debian_tarball=required source_package='' version='' sha256='' seconds=0
    [[ -f $third_party/$1/recipe ]] || die "no recipe third_party/$1/recipe"
    # shellcheck disable=SC1090
    . "$third_party/$1/recipe"
}

# upstream_of VERSION: 1:0.17.1-1+deb12u1 gives 0.17.1, 2.12.1+dfsg-5 gives 2.12.1
upstream_of() {
    local upstream=${1#*:}
    upstream=${upstream%-*}
    printf '%s\n' "${upstream%[+.]dfsg*}"
}

# branch_of VERSION: major.minor
branch_of() {
    [[ $(upstream_of "$1") =~ ^[0-9]+(\.[0-9]+)? ]] && printf '%s\n' "${BASH_REMATCH[0]}"
}

# entry_name KEY VERSION SHA256
entry_name() {
    printf '%s-%s-%s\n' "${1:0:16}" "${2//:/%3a}" "${3:0:8}"
}

# compute_key LIBRARY: a hash over all that decides the result except the version: the recipe, its patches, the
# tool settings, the compiler and the entries of the libraries it depends on (their names hold their versions).
# Comments and the recorded seconds decide nothing.
compute_key() {
    local library=$1 dependency
    {
        sed -e '/^seconds=/d' -e '/^ *#/d' "$third_party/$library/recipe" "$third_party/lib/toolchain.sh" \
            "$third_party/lib/build_recipe"
        find "$third_party/$library" -name '*.patch' -print0 | sort -z | xargs -0 -r cat
        printf '%s\n' "$compiler_version"
        for dependency in "${depends[@]}"; do
            printf '%s %s\n' "$dependency" "${entry_of[$dependency]}"
        done
    } | sha256sum | cut -d ' ' -f 1
}

# newest_entry LIBRARY KEY: name of the built entry of this key with the highest version, or nothing.
newest_entry() {
    local folders=("$cache/entries/$1/${2:0:16}"-*)
    [[ -d ${folders[0]} ]] || return 0
    printf '%s\n' "${folders[@]##*/}" | sort -V | tail -n 1
}

# find_entries LIBRARY…: fills entry_of with what is built; returns 1 where something is missing.
# A library whose dependency is missing can't be in the cache: its key is not known yet.
find_entries() {
    local library dependency missing=no
    for library in "$@"; do
        read_recipe "$library"
        for dependency in "${depends[@]}"; do
            [[ -n ${entry_of[$dependency]:-} ]] || continue 2
        done
        key_of["$library"]=$(compute_key "$library")
        entry_of["$library"]=$(newest_entry "$library" "${key_of[$library]}")
    done
    for library in "$@"; do
        [[ -n ${entry_of[$library]:-} ]] || missing=yes
    done
    [[ $missing == no ]]
}

# One run at a time builds; what it finds in tmp is left over from runs that were killed.
lock_cache() {
    exec 9>"$cache/lock"
    if ! flock --nonblock 9; then
        say "another run is building the libraries, waiting for it"
        flock 9
    fi
    rm -rf "$cache/tmp"
    mkdir -p "$cache/tmp"
}

# store_entry LIBRARY NAME FOLDER: into the cache, whole or not at all.
store_entry() {
    mkdir -p "$cache/entries/$1"
    mv -T "$3" "$cache/entries/$1/$2"
}

# publish_prefix LIBRARY…: merges the entries, unless it has been done, and points build/sysroot at the result.
# Libraries that only live inside others' DLLs give nothing but their licenses.
publish_prefix() {
    local library name prefix scratch entry link
    name=$(for library in "$@"; do printf '%s %s\n' "$library" "${entry_of[$library]}"; done |
        sha256sum | cut -c 1-16)
    prefix="$cache/prefixes/$name"
    if [[ ! -d $prefix ]]; then
        scratch=$(mktemp -d "$cache/tmp/prefix.XXXXXX")
        chmod 755 "$scratch"
        mkdir -p "$scratch/share"
        for library in "$@"; do
            read_recipe "$library"
            entry="$cache/entries/$library/${entry_of[$library]}"
            if [[ $static_only == yes ]]; then
                cp -a "$entry/share/." "$scratch/share/"
            else
                cp -a "$entry/." "$scratch/"
            fi
        done
        mkdir -p "$cache/prefixes"
        # Another run can have been faster: then the same content stands there already.
        mv -T "$scratch" "$prefix" 2>/dev/null || [[ -d $prefix ]]
    fi
    link="$root/build/sysroot"
    if [[ $(readlink "$link" 2>/dev/null) != "$prefix" ]]; then
        mkdir -p "$root/build"
        ln -s "$prefix" "$link.$$"
        mv -T "$link.$$" "$link"
        say "build/sysroot -> $prefix"
    fi
}
