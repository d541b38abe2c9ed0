"""What ffprobe says about a test file, for the manifest."""

import json
import subprocess

COLUMNS = ["name", "size", "duration", "frames", "fps", "first_number", "width", "height", "display_width",
           "display_height", "video_start", "audio_start", "tones", "tone_level", "streams", "keyframes"]


def ask(path, *arguments):
    command = ["ffprobe", "-v", "error", "-of", "json", *arguments, str(path)]
    result = subprocess.run(command, capture_output=True, text=True)
    return json.loads(result.stdout) if result.returncode == 0 and result.stdout.strip() else None


def is_cover(stream):
    return bool(stream["disposition"].get("attached_pic"))


def display_size(stream):
    width, height = stream["width"], stream["height"]
    above, below = map(int, stream.get("sample_aspect_ratio", "1:1").split(":"))
    if above and below:
        width = round(width * above / below)
    turn = sum(int(data.get("rotation", 0)) for data in stream.get("side_data_list", []))
    return (height, width) if turn % 180 else (width, height)


def describe(path, facts):
    """One entry of the manifest; times in seconds as the container has them."""
    entry = {"name": path.name, "size": path.stat().st_size, **facts}
    seen = ask(path, "-show_format", "-show_streams") if not facts.get("broken") else None
    if seen is None:
        if not facts.get("broken"):
            raise RuntimeError(f"ffprobe cannot read {path.name}")
        return entry
    if "duration" in seen["format"]:
        entry["duration"] = float(seen["format"]["duration"])
    entry["streams"] = [describe_stream(stream) for stream in seen["streams"]]
    for stream in seen["streams"]:
        if stream["codec_type"] == "audio" and "audio_start" not in entry:
            entry["audio_start"] = float(stream["start_time"])
        if stream["codec_type"] == "video" and not is_cover(stream):
            add_video(path, stream, entry)
    return entry


def describe_stream(stream):
    tags = stream.get("tags", {})
    kind = "cover" if stream["codec_type"] == "video" and is_cover(stream) else stream["codec_type"]
    return {"kind": kind, "codec": stream["codec_name"], "language": tags.get("language", ""),
            "title": tags.get("title", "")}


def add_video(path, stream, entry):
    packets = ask(path, "-select_streams", f"{stream['index']}", "-show_entries", "packet=pts_time,flags")["packets"]
    times = sorted((float(packet["pts_time"]), "K" in packet["flags"]) for packet in packets)
    entry["frames"] = len(times)
    entry["fps"] = stream["avg_frame_rate"]
    entry["width"], entry["height"] = stream["width"], stream["height"]
    entry["display_width"], entry["display_height"] = display_size(stream)
    entry["video_start"] = times[0][0]
    entry["keyframes"] = [time for time, key in times if key]


def cell(entry, column):
    value = entry.get(column)
    if value is None:
        return ""
    if column == "streams":
        return ",".join(f"{stream['kind']}:{stream['codec']}:{stream['language']}" for stream in value)
    return ",".join(map(str, value)) if isinstance(value, list) else str(value)


def write_manifest(folder, entries):
    (folder / "manifest.json").write_text(json.dumps(entries, indent=1, ensure_ascii=False) + "\n", encoding="utf-8")
    rows = ["\t".join(COLUMNS)] + ["\t".join(cell(entry, column) for column in COLUMNS) for entry in entries]
    (folder / "manifest.tsv").write_text("\n".join(rows) + "\n", encoding="utf-8")
