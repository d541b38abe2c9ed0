#!/usr/bin/env python3
"""Breaks the code on purpose, one patch at a time, and fails when the test that a patch names stays green.

A patch in tests/mutations begins with lines of the form "Target: unit_tests" and "Test: Suite.Name". The tests of the graph
run under Wine, all others natively.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys

from layers import windows_path

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
WORK = ROOT / "build" / "mutations"
TREE = WORK / "tree"
LOG = WORK / "test.log"
WINDOWS_TARGETS = {"graph_tests"}
# A test that takes longer has been broken as well.
LONGEST_TEST = 120


def run(arguments: list, **options) -> int:
    return subprocess.run([str(argument) for argument in arguments], stdout=subprocess.DEVNULL,
                          stderr=subprocess.DEVNULL, **options).returncode


def copy_tree() -> None:
    """A copy of what git knows or would add. Only files that differ are written, with the time of now: little is compiled
    again, and what an earlier run left broken is."""
    listed = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"], cwd=ROOT,
                            stdout=subprocess.PIPE, check=True).stdout.split(b"\0")
    names = {name.decode() for name in listed if name and (ROOT / name.decode()).is_file()}
    for path in list(TREE.rglob("*")):
        if path.is_file() and not path.is_symlink() and str(path.relative_to(TREE)) not in names:
            path.unlink()
    for name in names:
        source, target = ROOT / name, TREE / name
        if not target.is_file() or target.read_bytes() != source.read_bytes():
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(source, target)
    # The third-party libraries are not broken and not built again.
    libraries = TREE / "build" / "sysroot"
    libraries.parent.mkdir(parents=True, exist_ok=True)
    if not libraries.is_symlink():
        libraries.symlink_to(ROOT / "build" / "sysroot")


def header(patch: pathlib.Path, key: str) -> str:
    found = re.search(rf"^{key}: (\S+)$", patch.read_text(encoding="utf-8"), re.MULTILINE)
    if not found:
        sys.exit(f"{patch.name}: no line '{key}: …'")
    return found.group(1)


def build_folder(target: str) -> pathlib.Path:
    return WORK / ("windows" if target in WINDOWS_TARGETS else "native")


def start_test(target: str, test: str) -> tuple[int | None, str]:
    """Runs one test; its exit code, None when it did not end, and what it printed."""
    choice = f"--gtest_filter={test}"
    if target in WINDOWS_TARGETS:
        program = next(build_folder(target).rglob(f"{target}.exe"))
        arguments = [ROOT / "scripts/desktop/with_desktop", "mutations", "--", "/usr/lib/wine/wine64",
                     windows_path(program), choice]
    else:
        program = next(build_folder(target).rglob(target))
        arguments = [program, choice]
    environment = dict(os.environ, BRINDLECAST_MEDIA=str(ROOT / "build/media"))
    # Into a file: what Wine leaves running would keep a pipe open.
    with LOG.open("wb") as out:
        try:
            code = subprocess.run([str(argument) for argument in arguments], stdout=out, stderr=subprocess.STDOUT,
                                  stdin=subprocess.DEVNULL, timeout=LONGEST_TEST, env=environment,
                                  cwd=program.parent).returncode
        except subprocess.TimeoutExpired:
            code = None
    return code, LOG.read_text(errors="replace")


def passes(target: str, test: str) -> bool:
    """Whether the named test passes. Code that does not compile proves nothing and ends the run."""
    if run(["cmake", "--build", build_folder(target), "--target", target, "-j", os.cpu_count() or 2]) != 0:
        sys.exit(f"{target} does not build")
    code, output = start_test(target, test)
    if "[==========] Running" not in output:
        sys.exit(f"{target} did not start")
    if "[==========] Running 0 tests" in output:
        sys.exit(f"{target} has no test {test}")
    return code == 0


def survives(patch: pathlib.Path) -> bool:
    target, test = header(patch, "Target"), header(patch, "Test")
    if run(["patch", "-p1", "-i", patch], cwd=TREE) != 0:
        sys.exit(f"{patch.name} does not apply any more")
    try:
        return passes(target, test)
    finally:
        if run(["patch", "-R", "-p1", "-i", patch], cwd=TREE) != 0:
            sys.exit(f"{patch.name} can't be taken back")


def main() -> int:
    copy_tree()
    patches = sorted((ROOT / "tests/mutations").glob("*.patch"))
    for folder in {build_folder(header(patch, "Target")) for patch in patches}:
        if run(["cmake", "--preset", folder.name, "-B", folder], cwd=TREE) != 0:
            sys.exit(f"configuring the copy for '{folder.name}' failed")
    for patch in patches:
        if not passes(header(patch, "Target"), header(patch, "Test")):
            sys.exit(f"{patch.name}: its test fails already without it")
    survivors = []
    for patch in patches:
        caught = not survives(patch)
        print(f"   {'caught' if caught else 'SURVIVED'}: {patch.name}", flush=True)
        if not caught:
            survivors.append(patch)
    print(f"   {len(patches) - len(survivors)} of {len(patches)} mutations caught")
    return 1 if survivors or not patches else 0


if __name__ == "__main__":
    sys.exit(main())
