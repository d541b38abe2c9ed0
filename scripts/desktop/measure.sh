# shellcheck shell=bash disable=SC2154
# Measures whether a player on the present desktop really shows and plays a file. Sourced, after desktop.sh.
#
#   measure_file FILE STEM TITLE HAND_OVER…
#
# runs HAND_OVER FILE, which must make the player play FILE from its beginning in a window titled TITLE, and judges
# what the screen then shows and the sound sink receives against what ffmpeg decodes. Leaves STEM.png and STEM.wav,
# prints what was measured, and succeeds only if every stream that ffprobe finds was seen or heard. What can be judged
# is the first picture that is no cover and any one sound track: a file with more is played and measured all the same,
# but does not succeed, and what was not judged is printed.

# How long to play at least, and how long a black or silent beginning may be, in seconds.
measure_seconds=${BRINDLECAST_MEASURE_SECONDS:-8}
measure_longest_search=180

probe_streams() { # FILE SELECTOR ENTRIES: one line a stream
    ffprobe -v error -select_streams "$2" -show_entries "$3" -of csv=p=0 "$1" | sed 's/,*$//' | grep .
}

# The end of a stretch that begins at 0, from the output of ffmpeg's blackdetect or silencedetect; 0 without one.
first_stretch_end() { # START_WORD END_WORD
    tr ' ' '\n' | tr '\r' '\n' | awk -v first="$1" -v last="$2" '
        { split($0, part, ":"); if (part[2] == "") { if ($0 ~ /^-?[0-9.]+$/ && word != "") value = $0; else { word = part[1]; next } }
          else { word = part[1]; value = part[2] }
          if (word == first && !begun) { begun = 1; if (value > 0.3) exit }
          if (word == last && begun) { print value; found = 1; exit }
          word = "" }
        END { if (!found) print 0 }'
}

# Where the sound, and where the picture, begins to be anything. Looking costs little: sound alone decodes fast, and
# of the picture only keyframes are looked at.
sound_begins_at() { # FILE STREAM
    ffmpeg -hide_banner -nostdin -nostats -t "$measure_longest_search" -i "$1" -map "0:$2" \
        -af silencedetect=noise=-50dB:duration=0.5 -f null - 2>&1 | grep silencedetect |
        first_stretch_end silence_start silence_end
}

picture_begins_at() { # FILE STREAM
    ffmpeg -hide_banner -nostdin -nostats -skip_frame nokey -t "$measure_longest_search" -i "$1" -map "0:$2" \
        -vf scale=160:-2,blackdetect=d=0.1 -an -f null - 2>&1 | grep blackdetect |
        first_stretch_end black_start black_end
}

# Sets shape_width and shape_height to how the video stream is to appear.
read_shape() { # FILE STREAM
    local line width height aspect turn
    line=$(probe_streams "$1" "$2" stream=width,height,sample_aspect_ratio) || return
    IFS=, read -r width height aspect <<<"$line"
    case ${aspect:-N/A} in N/A | 0:* | *:0) aspect=1:1 ;; esac
    shape_width=$((width * ${aspect%:*} / ${aspect#*:}))
    shape_height=$height
    turn=$(probe_streams "$1" "$2" stream_side_data=rotation | head -n 1)
    case ${turn#-} in
    90 | 270)
        shape_width=$height
        shape_height=$((width * ${aspect%:*} / ${aspect#*:}))
        ;;
    esac
}

# How long to watch: long enough for both to have begun, not beyond the end of the file.
seconds_to_watch() { # FILE PICTURE_STREAM SOUND_STREAM
    local begins=0 from duration
    if [ -n "$2" ]; then
        begins=$(picture_begins_at "$1" "$2")
    fi
    if [ -n "$3" ]; then
        from=$(sound_begins_at "$1" "$3")
        begins=$(awk -v a="$begins" -v b="$from" 'BEGIN { print (a > b ? a : b) }')
    fi
    duration=$(ffprobe -v error -show_entries format=duration -of csv=p=0 "$1")
    awk -v want="$measure_seconds" -v begins="$begins" -v duration="$duration" 'BEGIN {
        seconds = begins + want
        if (duration ~ /^[0-9.]+$/ && seconds > duration + 0.5) seconds = duration + 0.5
        printf "%.1f\n", seconds }'
}

decode_reference() { # FILE PICTURE_STREAM FOLDER SECONDS SOUND_STREAM…: what ought to be seen and heard
    local file=$1 picture=$2 folder=$3 seconds=$4 stream
    shift 4
    if [ -n "$picture" ]; then
        ffmpeg -v error -nostdin -y -t "$seconds" -i "$file" -map "0:$picture" \
            -vf "fps=25,scale=$reference_width:$reference_height:flags=area" -pix_fmt bgra -f rawvideo \
            "$folder/film.bgra" || return
    fi
    for stream in "$@"; do
        # Silence in front of a late stream keeps the time line.
        ffmpeg -v error -nostdin -y -t "$seconds" -i "$file" -map "0:$stream" -af aresample=async=1:first_pts=0 \
            -ac 2 -ar 48000 -f s16le "$folder/sound.$stream" || return
    done
}

# The streams that nothing can be said about: all but the picture and one track of sound. A cover is no stream of
# the film.
unjudged_streams() { # FILE PICTURE_STREAM SOUND_TRACKS
    local index kind is_cover unjudged=()
    while IFS=, read -r index kind is_cover; do
        [ "$kind" = audio ] || [ "$index" = "$2" ] || [ "$is_cover" = 1 ] || unjudged+=("stream $index ($kind)")
    done < <(ffprobe -v error -show_entries stream=index,codec_type:stream_disposition=attached_pic -of csv=p=0 "$1")
    [ "$3" -le 1 ] || unjudged+=("all but one of $3 sound tracks")
    local IFS=,
    echo "${unjudged[*]}"
}

measure_file() (
    file=$1 stem=$2 title=$3
    shift 3
    if ! ffprobe -v error "$file"; then
        echo "measure: ffprobe cannot read $file" >&2
        exit 1
    fi
    picture=$(probe_streams "$file" V stream=index | head -n 1)
    mapfile -t sounds < <(probe_streams "$file" a stream=index)
    if [ -z "$picture" ] && [ ${#sounds[@]} -eq 0 ]; then
        echo "measure: there is neither picture nor sound in $file" >&2
        exit 1
    fi
    watch=$(native_tool watch_screen) && judge=$(native_tool judge_playback) && native_tool stamp_sound >/dev/null || exit
    folder=$(mktemp -d "${TMPDIR:-/tmp}/brindlecast-measure.XXXXXX") || exit
    [ -n "${MEASURE_KEEP:-}" ] || trap 'rm -rf "$folder"' EXIT
    mkdir "$folder/grabs"
    seconds=$(seconds_to_watch "$file" "$picture" "${sounds[0]:-}") || exit
    echo "measure: playing ${file##*/} for $seconds s"
    left_out=$(unjudged_streams "$file" "$picture" ${#sounds[@]})

    desktop_record_start "$folder/recording.raw" || exit
    handed_over=$(date +%s.%N)
    "$@" "$file" || { echo "measure: the file could not be handed over" >&2; desktop_record_stop; exit 1; }
    window=$("$watch" find "$title" 20) || { desktop_record_stop; exit 1; }
    { sleep "$(awk -v s="$seconds" 'BEGIN { print s * 0.6 }')"; desktop_screenshot "$stem.png"; } &
    shot=$!
    step=$(awk -v s="$seconds" 'BEGIN { print (s / 30 > 0.31 ? s / 30 : 0.31) }')
    watched=0
    "$watch" record "${window%% *}" "$folder/grabs" "$seconds" "$step" || watched=1
    wait "$shot" || watched=1
    desktop_record_stop || exit
    ffmpeg -v error -nostdin -y -f s16le -ar 48000 -ac 2 -i "$folder/recording.raw" "$stem.wav" || exit
    [ "$watched" = 0 ] || exit 1

    arguments=(--handed-over "$handed_over")
    if [ -n "$picture" ]; then
        read_shape "$file" "$picture" || exit
        reference_width=$(awk -v w="$shape_width" -v h="$shape_height" 'BEGIN { print (w >= h ? 64 : int(64 * w / h)) }')
        reference_height=$(awk -v w="$shape_width" -v h="$shape_height" 'BEGIN { print (w >= h ? int(64 * h / w) : 64) }')
        arguments+=(--grabs "$folder/grabs" --film "$folder/film.bgra" --size "${reference_width}x$reference_height"
            --rate 25 --shape "$shape_width:$shape_height")
    fi
    decode_reference "$file" "$picture" "$folder" "$seconds" "${sounds[@]}" || exit
    [ ${#sounds[@]} -gt 0 ] && arguments+=(--recording "$folder/recording.raw")
    for stream in "${sounds[@]}"; do
        arguments+=(--source "$folder/sound.$stream")
    done
    "$judge" "${arguments[@]}" || exit
    if [ -n "$left_out" ]; then
        echo "measure: not seen or heard, so the file as a whole is not proven: $left_out" >&2
        exit 1
    fi
)
