# Debian source packages through apt, without touching the machine's apt configuration: a private list of deb-src
# entries is derived from the machine's own entries, so mirrors, proxies and keys are those its owner chose.
# Read by the driver. Needs $cache.
# shellcheck shell=bash
# shellcheck disable=SC2034,SC2154 # variables are shared with the driver and the recipes

readonly debian_codename=bookworm
apt_is_ready=no

# private_apt COMMAND ARGUMENT…: an apt tool that knows the derived source entries only.
# Options on the command line win over every file in /etc/apt; APT::Sandbox::User because a cache in a home
# folder can't be read by the user that apt would otherwise download as.
private_apt() {
    local tool=$1
    shift
    "$tool" -q -o Dir::Etc::sourcelist=/dev/null -o Dir::Etc::sourceparts="$cache/apt/sources.d" \
        -o Dir::State::lists="$cache/apt/lists" -o Dir::Cache="$cache/apt/cache" \
        -o Dir::Cache::pkgcache= -o Dir::Cache::srcpkgcache= \
        -o APT::Sandbox::User=root -o Acquire::Languages=none \
        -o Acquire::Retries=2 -o Acquire::Retries::Delay::Maximum=2 \
        -o Acquire::AllowInsecureRepositories=false -o APT::Get::AllowUnauthenticated=false "$@"
}

# The machine's one-line entries on stdin, ours on stdout: Debian's own suites, component main, all options kept
# but the architectures, which say nothing about sources.
derive_from_list() {
    awk -v name="$debian_codename" '
        { sub(/#.*/, "") }
        $1 != "deb" && $1 != "deb-src" { next }
        {
            options = ""; rest = $0
            sub(/^[ \t]*deb(-src)?[ \t]+/, "", rest)
            if (rest ~ /^\[/) {
                options = substr(rest, 2, index(rest, "]") - 2)
                rest = substr(rest, index(rest, "]") + 1)
            }
            count = split(rest, word, /[ \t]+/)
            first = word[1] == "" ? 2 : 1
            uri = word[first]; suite = word[first + 1]; main = 0
            for (i = first + 2; i <= count; i++) if (word[i] == "main") main = 1
            if (!main || uri ~ /^cdrom:/) next
            if (suite !~ "^(" name "|stable|oldstable)((-|/)(updates|security))?$") next
            gsub(/(^|[ \t])(arch|lang|target)[+-]?=[^ \t]*/, " ", options)
            gsub(/^[ \t]+|[ \t]+$/, "", options)
            line = "deb-src " (options == "" ? "" : "[" options "] ") uri " " suite " main"
            if (!(line in seen)) print line
            seen[line] = 1
        }'
}

# The same for the deb822 format: paragraphs on stdin, paragraphs on stdout.
derive_from_deb822() {
    awk -v name="$debian_codename" '
        function flush_paragraph(   i, count, word, suites, main, off) {
            off = tolower(field["enabled"]) ~ /^[ \t]*(no|false|off|0)[ \t]*$/
            if (off || (" " field["types"] " ") !~ /[ \t](deb|deb-src)[ \t]/) { reset(); return }
            count = split(field["suites"], word, /[ \t\n]+/)
            for (i = 1; i <= count; i++)
                if (word[i] ~ "^(" name "|stable|oldstable)((-|/)(updates|security))?$") suites = suites " " word[i]
            count = split(field["components"], word, /[ \t\n]+/)
            for (i = 1; i <= count; i++) if (word[i] == "main") main = 1
            if (suites != "" && main && field["uris"] !~ /^[ \t]*cdrom:/)
                printf "Types: deb-src\nURIs:%s\nSuites:%s\nComponents: main\n%s\n", field["uris"], suites, others
            reset()
        }
        function reset() { split("", field); others = ""; key = "" }
        BEGIN { reset() }
        /^#/ { next }
        /^[ \t]*$/ { flush_paragraph(); next }
        /^[ \t]/ { field[key] = field[key] "\n" $0; if (other) others = others $0 "\n"; next }
        {
            key = tolower($0); sub(/[ \t]*:.*/, "", key)
            value = $0; sub(/^[^:]*:/, "", value); field[key] = value
            other = key !~ /^(types|uris|suites|components|enabled|architectures(-add|-remove)?|languages|targets)$/
            if (other) others = others $0 "\n"
        }
        END { flush_paragraph() }'
}

# Fills $cache/apt/sources.d with one file for each of the machine's files that names a suite of Debian.
derive_source_entries() {
    local folder="$cache/apt/sources.d" file name etc=${BRINDLECAST_APT_ETC:-/etc/apt}
    rm -rf "$folder"
    mkdir -p "$folder" "$cache/apt/lists/partial" "$cache/apt/cache/archives/partial"
    for file in "$etc/sources.list" "$etc"/sources.list.d/*.list; do
        [[ -f $file ]] || continue
        name=$(basename "$file" .list)
        derive_from_list <"$file" >"$folder/list-$name.list"
    done
    for file in "$etc"/sources.list.d/*.sources; do
        [[ -f $file ]] || continue
        name=$(basename "$file" .sources)
        derive_from_deb822 <"$file" >"$folder/deb822-$name.sources"
    done
    find "$folder" -type f -empty -delete
    [[ -n $(find "$folder" -type f) ]] || die "no entry for Debian's $debian_codename in $etc/sources.list*"
}

# Other people's archives use Debian's suite names too: after the update the signed release files tell them apart.
drop_foreign_entries() {
    local entry origin codename trusted kept=no
    # shellcheck disable=SC2016 # apt expands these
    while IFS='|' read -r entry origin codename trusted; do
        [[ -n $entry ]] || continue
        if [[ $origin == Debian && $codename == "$debian_codename"* && $trusted == yes ]]; then
            kept=yes
        else
            rm -f "${entry%:*}"
        fi
    done < <(private_apt apt-get indextargets --format '$(SOURCESENTRY)|$(ORIGIN)|$(CODENAME)|$(TRUSTED)' \
        'Created-By: Sources')
    [[ $kept == yes ]] ||
        die "apt found no signed source index of Debian's $debian_codename (see $cache/apt/update.log)"
}

# Once a run, and only in runs that need a source package.
prepare_apt() {
    [[ $apt_is_ready == no ]] || return 0
    say "asking apt for the lists of source packages"
    derive_source_entries
    # Somebody else's archive that does not answer is no harm; what matters is looked at next.
    private_apt apt-get update >"$cache/apt/update.log" 2>&1 || {
        cat "$cache/apt/update.log" >&2
        warn "apt-get update failed, going on with the lists that arrived"
    }
    drop_foreign_entries
    apt_is_ready=yes
}

# list_source_files PACKAGE: lines "version sha256 file", newest version first, from the signed index.
list_source_files() {
    private_apt apt-cache showsrc --only-source "$1" 2>/dev/null | awk '
        /^Version:/ { version = $2 }
        /^[^ ]/ { sums = /^Checksums-Sha256:/ }
        /^ / && sums { print version, $1, $3 }
        /^$/ { version = "" }' | awk '!seen[$0]++' | sort -k1,1 -V -r -s
}

# has_file FOLDER FILE SHA256
has_file() {
    [[ -f $1/$2 ]] && [[ $(sha256sum <"$1/$2") == "$3 "* ]]
}

# download_source PACKAGE: the newest version's tarballs into $cache/sources/PACKAGE/VERSION, checked against the
# signed index. Mirrors lose single files of a version; the same tarball then often stands under an older one, so
# apt's status does not count, the checksums do. Prints VERSION.
download_source() {
    local package=$1 version sha file folder listing other scratch wanted=()
    listing=$(list_source_files "$package")
    [[ -n $listing ]] || die "the archive has no source package $package"
    version=$(head -n 1 <<<"$listing" | cut -d ' ' -f 1)
    folder="$cache/sources/$package/${version//:/%3a}"
    scratch=$(mktemp -d "$cache/tmp/source.XXXXXX")
    while read -r other sha file; do
        [[ $other == "$version" ]] || continue
        [[ $file =~ \.(orig|debian)\.tar\.[a-z0-9]+$ ]] && wanted+=("$sha  $file")
    done <<<"$listing"
    for other in $(cut -d ' ' -f 1 <<<"$listing" | uniq); do
        if (cd "$scratch" && printf '%s\n' "${wanted[@]}" | sha256sum --check --status 2>/dev/null); then break; fi
        (cd "$scratch" && private_apt apt-get source --only-source --download-only "$package=$other") \
            >>"$cache/apt/download-$package.log" 2>&1 || true
    done
    mkdir -p "$folder"
    for other in "${wanted[@]}"; do
        sha=${other%% *}
        file=${other##* }
        if has_file "$scratch" "$file" "$sha"; then
            mv "$scratch/$file" "$folder/$file"
        fi
    done
    rm -rf "$scratch"
    printf '%s\n' "$version"
}
