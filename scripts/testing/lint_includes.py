#!/usr/bin/env python3
"""Keeps the layers' order: a folder includes only what stands below it, or itself."""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
# Lowest first. What stands on one line is one layer; layers of equal height do not know each other.
LAYERS = [
    {"filters/include"},
    {"filters/core"},
    {"filters/base"},
    {"filters/splitter", "filters/video_decoder", "filters/audio_decoder", "filters/audio_switcher", "filters/renderer"},
    {"src/base"},
    {"src/subtitles"},
    {"src/engine"},
    {"src/inspection"},
    {"src/library"},
    {"src/ui"},
    {"src/chrome"},
    {"src/playlist_ui"},
    {"src/app"},
]
HEIGHT = {folder: height for height, layer in enumerate(LAYERS) for folder in layer}
# The record of settings belongs to the application but is read by everyone.
OPEN_TO_ALL = {"app/settings.h"}
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)


def folder_of(path: pathlib.PurePosixPath) -> str | None:
    parts = path.parts
    return "/".join(parts[:2]) if len(parts) > 2 and parts[0] in ("src", "filters") else None


def target_of(include: str) -> str | None:
    if include.startswith("filters/"):
        return folder_of(pathlib.PurePosixPath(include))
    if (ROOT / "src" / include).exists():
        return folder_of(pathlib.PurePosixPath("src") / include)
    return None


def complaint(source: pathlib.PurePosixPath, include: str) -> str | None:
    own = folder_of(source)
    if own is None or own not in HEIGHT:
        return f"{source}: its folder has no place in the order" if own else None
    if include.startswith("tests/"):
        return f"{source}: includes {include}, which is for tests"
    target = target_of(include)
    if target is None or target == own or include in OPEN_TO_ALL:
        return None
    if own.startswith("src/") and target.startswith("filters/") and target != "filters/include":
        return f"{source}: includes {include}; of the modules only filters/include may be known"
    if HEIGHT.get(target, len(LAYERS)) >= HEIGHT[own]:
        return f"{source}: includes {include}, which does not stand below {own}"
    return None


def settings_complaints() -> list[str]:
    text = (ROOT / "src/app/settings.h").read_text(encoding="utf-8")
    return [f"src/app/settings.h: includes {include}; it may know src/base alone"
            for include in INCLUDE.findall(text) if not include.startswith("base/")]


def main() -> int:
    complaints = settings_complaints()
    for top in ("src", "filters"):
        for path in sorted((ROOT / top).rglob("*")):
            if path.suffix in (".h", ".cpp"):
                source = pathlib.PurePosixPath(path.relative_to(ROOT).as_posix())
                includes = INCLUDE.findall(path.read_text(encoding="utf-8"))
                complaints += filter(None, (complaint(source, include) for include in includes))
    print("\n".join(complaints))
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
