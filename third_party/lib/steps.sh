# The way of one library: sources, patches, build, checks, cache entry. Read by the driver.
# Needs $third_party, $cache, $libraries, key_of, entry_of and the recipe's variables as read_recipe leaves them.
# shellcheck shell=bash
# shellcheck disable=SC2034,SC2154 # variables are shared with the driver and the recipes

# choose_source LIBRARY REFRESH: sets chosen_version and chosen_folder. The pinned version is taken from the cache
# when it is there; else the archive decides.
choose_source() {
    local library=$1 refresh=$2
    chosen_version=$version
    chosen_folder="$cache/sources/$source_package/${version//:/%3a}"
    if [[ $refresh == no ]] && [[ -n $(find_orig) ]] &&
        [[ $debian_tarball == optional || -n $(find_debian_tarball) ]]; then
        return
    fi
    prepare_apt
    chosen_version=$(download_source "$source_package")
    chosen_folder="$cache/sources/$source_package/${chosen_version//:/%3a}"
    [[ $(branch_of "$chosen_version") == "$(branch_of "$version")" ]] ||
        die "$library: the archive has $chosen_version, the recipe is written for branch $(branch_of "$version")"
    local log="$cache/apt/download-$source_package.log"
    [[ -n $(find_orig) ]] || die "$library: the tarball of $chosen_version can't be fetched (see $log)"
    if [[ -z $(find_debian_tarball) && $debian_tarball == required ]]; then
        die "$library: Debian's patches for $chosen_version can't be fetched (see $log)"
    fi
}

find_orig() { find "$chosen_folder" -name '*.orig.tar.*' 2>/dev/null; }
find_debian_tarball() { find "$chosen_folder" -name '*.debian.tar.*' 2>/dev/null; }

# compare_with_pin LIBRARY SHA256
compare_with_pin() {
    if [[ $chosen_version != "$version" ]]; then
        warn "$1: building $chosen_version; the recipe was written for $version"
    elif [[ $2 != "$sha256" ]]; then
        die "$1: the tarball of $version has sha256 $2, the recipe was written for $sha256"
    fi
}

# apply_patch FILE SOURCES
apply_patch() {
    basename "$1"
    patch --strip 1 --force --silent --directory "$2" <"$1"
}

# debian_patches FOLDER: the files of the series in its order, without those that the recipe leaves out.
debian_patches() {
    local name
    [[ -f $1/debian/patches/series ]] || return 0
    while read -r name _; do
        [[ -z $name || $name == \#* || " ${skip_patches[*]} " == *" $name "* ]] || echo "$1/debian/patches/$name"
    done <"$1/debian/patches/series"
}

# unpack_source LIBRARY WORK: the tarball into WORK/src, then Debian's patches, then our own.
unpack_source() {
    local library=$1 work=$2 debian patch_file patches
    mkdir -p "$work/src" "$work/debian"
    tar -xf "$(find_orig)" -C "$work/src" --strip-components 1
    debian=$(find_debian_tarball)
    [[ -z $debian ]] || tar -xf "$debian" -C "$work/debian"
    mapfile -t patches < <(
        debian_patches "$work/debian"
        find "$third_party/$library" -path '*/patches/*.patch' | sort
    )
    for patch_file in "${patches[@]}"; do
        apply_patch "$patch_file" "$work/src" >>"$work/patch.log" 2>&1 || {
            cat "$work/patch.log" >&2
            die "$library: this patch does not apply"
        }
    done
}

# Recipes install .pc files with the path of the moment: entries are moved and merged, so paths become relative.
make_relocatable() {
    local stage=$1 file
    find "$stage" -name '*.la' -delete
    for file in "$stage"/lib/pkgconfig/*.pc; do
        [[ -f $file ]] || continue
        sed -i -e "s|^prefix=.*|prefix=\${pcfiledir}/../..|" -e "s|^\(exec_prefix\)=.*|\1=\${prefix}|" \
            -e "s|^libdir=.*|libdir=\${prefix}/lib|" -e "s|^includedir=.*|includedir=\${prefix}/include|" \
            -e "s| *-[LI]$work/[^ ]*||g" "$file"
        # shellcheck disable=SC2016
        if grep -q "$work" "$file"; then die "$library: $(basename "$file") names the folder of the build"; fi
    done
}

# install_licenses LIBRARY SOURCES STAGE: the texts, and what the binaries were made of.
install_licenses() {
    local target="$3/share/licenses/$1" file
    mkdir -p "$target"
    for file in "${licenses[@]}"; do
        cp "$2/$file" "$target/"
    done
    cat >"$target/SOURCE.txt" <<EOF
Built from Debian's source package $source_package $chosen_version,
$(basename "$(find_orig)"), sha256 $chosen_sha256,
with Debian's patches, by third_party/$1/recipe of Brindlecast.
EOF
}

# The DLLs must run on a Windows that knows nothing of our compiler.
check_imports() {
    local file runtime
    while read -r file; do
        runtime=$("$OBJDUMP" -p "$file" | sed -n 's/^\tDLL Name: //p' |
            grep -iE '^lib(gcc|stdc\+\+|winpthread|ssp|atomic)' || true)
        [[ -z $runtime ]] || die "$library: $(basename "$file") imports the compiler's runtime: $runtime"
    done < <(find "$1" -name '*.dll' -o -name '*.exe')
}

# gather_dependencies FOLDER
gather_dependencies() {
    local dependency
    mkdir -p "$1/lib/pkgconfig" "$1/include"
    for dependency in "${depends[@]}"; do
        cp -a "$cache/entries/$dependency/${entry_of[$dependency]}/." "$1/"
    done
}

# run_with_progress LIBRARY LOG COMMAND…: says every half minute that it still works; shows the log's end on failure.
# The command gets a session of its own, so that an interrupted run leaves no compiler behind.
run_with_progress() {
    local library=$1 log=$2 started=$SECONDS next=30 child
    shift 2
    setsid "$@" >"$log" 2>&1 9>&- &
    child=$!
    # shellcheck disable=SC2064 # the number of this child
    trap "kill -- -$child 2>/dev/null; exit 130" INT TERM HUP
    while kill -0 "$child" 2>/dev/null; do
        sleep 0.2
        if ((SECONDS - started >= next)); then
            say "  $library: $((SECONDS - started)) s of about $(estimate "$seconds") s"
            next=$((next + 30))
        fi
    done
    trap - INT TERM HUP
    if ! wait "$child"; then
        tail -n 40 "$log" >&2
        cp "$log" "$cache/failed-$library.log"
        die "$library failed, the whole log is $cache/failed-$library.log"
    fi
}

# Recorded seconds are those of two processors.
estimate() { echo $((($1 * 2 + JOBS - 1) / JOBS)); }

# build_library LIBRARY REFRESH
build_library() {
    local library=$1 name work chosen_version chosen_folder chosen_sha256 started=$SECONDS
    read_recipe "$library"
    choose_source "$library" "$2"
    chosen_sha256=$(sha256sum <"$(find_orig)" | cut -d ' ' -f 1)
    compare_with_pin "$library" "$chosen_sha256"
    key_of["$library"]=$(compute_key "$library")
    name=$(entry_name "${key_of[$library]}" "$chosen_version" "$chosen_sha256")
    if [[ ! -d $cache/entries/$library/$name ]]; then
        work=$(mktemp -d "$cache/tmp/$library.XXXXXX")
        mkdir -p "$work/stage" "$work/scratch"
        gather_dependencies "$work/deps"
        unpack_source "$library" "$work"
        UPSTREAM_VERSION=$(upstream_of "$chosen_version") run_with_progress "$library" "$work/build.log" \
            "$third_party/lib/build_recipe" "$library" "$work/src" "$work/stage" "$work/deps" "$work/scratch"
        make_relocatable "$work/stage"
        check_imports "$work/stage"
        install_licenses "$library" "$work/src" "$work/stage"
        store_entry "$library" "$name" "$work/stage"
        rm -rf "$work"
        say "  $library done in $((SECONDS - started)) s"
    fi
    entry_of["$library"]=$name
}

# build_missing REFRESH LIBRARY…
build_missing() {
    local refresh=$1 library remaining=0 missing=()
    shift
    # The cache can have been filled while this run waited for the lock.
    find_entries "$@" || true
    for library in "$@"; do
        [[ $refresh == yes || -z ${entry_of[$library]:-} ]] || continue
        missing+=("$library")
        read_recipe "$library"
        remaining=$((remaining + seconds))
    done
    for library in "${missing[@]}"; do
        read_recipe "$library"
        say "$library: about $(estimate "$seconds") s, all that is left about $(estimate "$remaining") s"
        remaining=$((remaining - seconds))
        build_library "$library" "$refresh"
    done
}
