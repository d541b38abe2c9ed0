"""How each test file is made. A recipe is a function of a Kitchen; facts are what ffprobe cannot know."""

import pathlib
import subprocess

LEVEL = -20.0  # dBFS of every tone
MP3_LEVEL = -20.445  # the encoder scales its input by 0.95

KOREAN_FILM = "한국어 영화 01화.mkv"


class Kitchen:
    def __init__(self, tool, folder, work):
        self.tool = tool
        self.folder = folder
        self.work = work
        self.facts = {}

    def sound(self, seconds, frequency):
        path = self.work / f"{seconds}-{frequency}.{id(object())}.s16le"
        with open(path, "wb") as out:
            subprocess.run([self.tool, "audio", str(seconds), str(frequency), str(LEVEL)], stdout=out, check=True)
        return ["-f", "s16le", "-ar", "48000", "-ac", "2", "-i", path]

    def ffmpeg(self, arguments, stdin=None, stdout=None):
        command = ["ffmpeg", "-v", "error", "-nostdin", "-y", *arguments]
        result = subprocess.run(command, stdin=stdin, stdout=stdout, stderr=subprocess.PIPE)
        if result.returncode != 0:
            raise subprocess.CalledProcessError(result.returncode, command, stderr=result.stderr.decode())

    def film(self, name, *, size=(320, 180), fps="25", seconds=20, first=0, matrix="709", full=False, aspect="1",
             hue="0.6", tones=(440,), b_frames=3, keyframe_seconds=2, filters=None, inputs=(), options=(), output=None):
        """Encodes marked frames, and one stereo track per tone, as H.264 and AAC."""
        rate = eval_ratio(fps)
        frames = round(seconds * rate)
        pixels = "yuvj420p" if full else "yuv420p"
        colours = {"709": "bt709", "601": "smpte170m"}[matrix]
        arguments = ["-f", "rawvideo", "-pix_fmt", pixels, "-s", f"{size[0]}x{size[1]}", "-r", fps, "-i", "pipe:0"]
        for tone in tones:
            arguments += self.sound(seconds, tone)
        for extra in inputs:
            arguments += ["-i", extra]
        arguments += ["-map", "0:v"]
        for index in range(len(tones)):
            arguments += ["-map", f"{index + 1}:a"]
        for index in range(len(inputs)):
            arguments += ["-map", f"{len(tones) + index + 1}"]
        gop = str(round(keyframe_seconds * rate))
        chain = ([filters] if filters else []) + [f"setsar={aspect}"]
        arguments += ["-vf", ",".join(chain), "-c:v", "libx264", "-preset", "veryfast", "-crf", "18", "-g", gop,
                      "-keyint_min", gop, "-sc_threshold", "0", "-bf", str(b_frames), "-pix_fmt", pixels,
                      "-colorspace", colours, "-color_primaries", colours, "-color_trc", colours,
                      "-color_range", "pc" if full else "tv", "-c:a", "aac", "-b:a", "160k",
                      *options, *(output or [self.folder / name])]
        source = subprocess.Popen([self.tool, "video", str(size[0]), str(size[1]), fps, str(frames), str(first), matrix,
                                   "full" if full else "limited", aspect, hue], stdout=subprocess.PIPE)
        try:
            self.ffmpeg(arguments, stdin=source.stdout)
        finally:
            source.stdout.close()
            failed = source.wait()
        if failed:
            raise RuntimeError(f"marked_source failed for {name}")
        self.facts[name] = {"first_number": first, "tones": list(tones), "tone_level": LEVEL if tones else None}

    def song(self, name, options, *, seconds=20, tone=440, inputs=(), level=LEVEL):
        arguments = self.sound(seconds, tone)
        for extra in inputs:
            arguments += ["-i", extra]
        self.ffmpeg([*arguments, *options, self.folder / name])
        self.facts[name] = {"tones": [tone], "tone_level": level}

    def copy_facts(self, name, original):
        self.facts[name] = dict(self.facts[original])

    def broken(self, name, content):
        (self.folder / name).write_bytes(content)
        self.facts[name] = {"broken": True}


def eval_ratio(text):
    above, _, below = text.partition("/")
    return float(above) / float(below or 1)


def film_mkv(k):
    k.film("film.mkv", b_frames=0)


def reference_frame(k):
    """Frame 50 of film.mkv as another decoder shows it: rows of B, G, R, 255."""
    k.ffmpeg(["-i", k.folder / "film.mkv", "-vf",
              "select=eq(n\\,50),scale=in_color_matrix=bt709:in_range=tv:flags=accurate_rnd+full_chroma_int+bicubic,"
              "format=bgra", "-frames:v", "1", "-f", "rawvideo", k.folder / "film_frame_50.bgra"])


def film_mp4(k):
    k.film("film.mp4")


def silent_mkv(k):
    k.film("silent.mkv", tones=(), seconds=10)


def silent_mp4(k):
    k.film("silent.mp4", tones=(), seconds=10)


def short_mkv(k):
    k.film("short.mkv", seconds=3)


def second_mkv(k):
    k.film("second.mkv", fps="30", first=20000, tones=(660,), seconds=10, hue="0.1")


def korean_film(k):
    k.film(KOREAN_FILM, first=10000, tones=(520,), seconds=10, hue="0.35")


def film_1080p(k):
    k.film("film_1080p.mkv", size=(1920, 1080), fps="24", seconds=10)


def anamorphic(k):
    # 240 pixels of shape 4:3 fill the width of 320 square ones.
    k.film("anamorphic.mp4", size=(240, 180), aspect="4/3", seconds=10)


def rotated(k):
    # Upright as 180x320 once turned clockwise by a quarter, as the metadata asks; stored lying.
    # The muxer takes the angle, counted anticlockwise, from copied streams only.
    lying = k.work / "lying.mp4"
    k.film("rotated.mp4", size=(180, 320), seconds=10, filters="transpose=cclock", output=[lying])
    k.ffmpeg(["-i", lying, "-c", "copy", "-metadata:s:v:0", "rotate=-90", k.folder / "rotated.mp4"])


def film_bt601(k):
    k.film("film_bt601.mkv", matrix="601", seconds=5)


def film_fullrange(k):
    k.film("film_fullrange.mkv", full=True, seconds=5)


def live_mkv(k):
    """As a stream is recorded: no index, no duration."""
    path = k.folder / "live.mkv"
    k.film("live.mkv", seconds=10, output=["-f", "matroska", "-live", "1", path])


def faststart_mp4(k):
    k.film("faststart.mp4", seconds=10, options=["-movflags", "+faststart"])


def songs(k):
    cover = k.work / "cover.jpg"
    k.ffmpeg(["-f", "lavfi", "-i", "testsrc=size=300x300", "-frames:v", "1", "-q:v", "3", "-update", "1", cover])
    k.song("song.mp3", ["-c:a", "libmp3lame", "-b:a", "160k"], level=MP3_LEVEL)
    k.song("song.flac", ["-c:a", "flac"])
    art = ["-map", "0:a", "-map", "1:v", "-c:v", "copy", "-disposition:v:0", "attached_pic"]
    k.song("song_cover.mp3", [*art, "-c:a", "libmp3lame", "-b:a", "160k", "-id3v2_version", "3"], inputs=[cover],
           seconds=10, level=MP3_LEVEL)
    k.song("song_cover.m4a", [*art, "-c:a", "aac", "-b:a", "160k"], inputs=[cover], seconds=10)


def subrip(lines):
    cues = []
    for number, line in enumerate(lines):
        begin = 2 * number
        cues.append(f"{number + 1}\n00:00:{begin:02},500 --> 00:00:{begin + 1:02},900\n{line}\n")
    return "\n".join(cues)


def advanced(lines):
    head = ("[Script Info]\nScriptType: v4.00+\nPlayResX: 320\nPlayResY: 180\n\n[V4+ Styles]\nFormat: Name, Fontname, "
            "Fontsize, PrimaryColour, Alignment\nStyle: Default,Malgun Gothic,18,&H0000FFFF,2\n\n[Events]\n"
            "Format: Layer, Start, End, Style, Text\n")
    return head + "".join(f"Dialogue: 0,0:00:{2 * n:02}.50,0:00:{2 * n + 1:02}.90,Default,{line}\n"
                          for n, line in enumerate(lines))


def tracks(k):
    texts = {
        "kor.srt": subrip([f"한국어 자막 {n}" for n in range(5)]),
        "eng.srt": subrip([f"English line {n}" for n in range(5)]),
        "kor.ass": advanced([f"{{\\i1}}꾸민 자막{{\\i0}} {n}" for n in range(5)]),
        "jpn.ass": advanced([f"日本語字幕 {n}" for n in range(5)]),
    }
    for name, text in texts.items():
        (k.work / name).write_text(text, encoding="utf-8")
    options = ["-c:s", "copy"]
    for index, (language, title) in enumerate([("kor", "한국어 음성"), ("eng", "영어 음성"), ("jpn", "일본어 음성")]):
        options += [f"-metadata:s:a:{index}", f"language={language}", f"-metadata:s:a:{index}", f"title={title}"]
    names = [("kor", "한국어 자막"), ("eng", "영어 자막"), ("kor", "한국어 꾸밈 자막"), ("jpn", "일본어 자막")]
    for index, (language, title) in enumerate(names):
        options += [f"-metadata:s:s:{index}", f"language={language}", f"-metadata:s:s:{index}", f"title={title}"]
    options += ["-disposition:a:0", "default", "-disposition:s:0", "default"]
    k.film("tracks.mkv", tones=(440, 550, 880), seconds=10, inputs=[k.work / name for name in texts], options=options)


def tracks_mixed(k):
    """Sound tracks that differ in everything: codec, channels, rate. The steady tone stands on the left."""
    options = ["-c:a:1", "flac", "-filter:a:1", "pan=mono|c0=c0,aresample=44100",
               "-c:a:2", "ac3", "-filter:a:2", "pan=5.1|FL=c0|FR=c1"]
    for index, language in enumerate(["kor", "eng", "jpn"]):
        options += [f"-metadata:s:a:{index}", f"language={language}"]
    k.film("tracks_mixed.mkv", tones=(440, 550, 880), seconds=20, options=options)


def no_cues(k):
    """film.mkv with its index overwritten by filler of the same length; duration and the rest stay."""
    data = bytearray((k.folder / "film.mkv").read_bytes())
    place, header, size = find_cues(data)
    filler = header + size - 9  # what follows the one byte of the Void element's id and eight of its length
    data[place:place + 9] = b"\xec" + (filler | 1 << 56).to_bytes(8, "big")
    (k.folder / "no_cues.mkv").write_bytes(data)
    k.copy_facts("no_cues.mkv", "film.mkv")


def find_cues(data):
    """Place, header length and size of the Cues element among the children of the segment."""
    def number(at, keep_marker):
        length = 9 - data[at].bit_length()
        value = int.from_bytes(data[at:at + length], "big")
        return (value if keep_marker else value & (1 << 7 * length) - 1), length

    at = 0
    while at < len(data):
        element, id_length = number(at, True)
        size, size_length = number(at + id_length, False)
        if element == 0x1C53BB6B:
            return at, id_length + size_length, size
        inside = element == 0x18538067
        at += id_length + size_length + (0 if inside else size)
    raise RuntimeError("film.mkv has no index")


def broken(k):
    k.broken("empty.mkv", b"")
    k.broken("text.mkv", "이것은 동영상이 아니라 글이다.\nThis is text, not a film.\n".encode() * 40)
    film = (k.folder / "film.mp4").read_bytes()
    index = film.rindex(b"moov") - 4
    k.broken("truncated.mp4", film[:index * 3 // 4])
    film = (k.folder / "film.mkv").read_bytes()
    k.broken("truncated.mkv", film[:len(film) // 2])
    film = (k.folder / "faststart.mp4").read_bytes()
    k.broken("truncated_faststart.mp4", film[:len(film) // 2])


def groups():
    return [
        [film_1080p, film_mkv, film_mp4, tracks, tracks_mixed, songs, silent_mkv, silent_mp4, short_mkv, second_mkv, korean_film,
         anamorphic, rotated, film_bt601, film_fullrange, live_mkv, faststart_mp4],
        [no_cues, reference_frame, broken],
    ]
