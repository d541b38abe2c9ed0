#!/usr/bin/env python3
"""Breaks the code on purpose, one patch at a time, and fails when the test that a patch names stays green.

A patch in tests/mutations begins with lines of the form "Target: unit_tests" and "Test: Suite.Name"; the tests run natively.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
WORK = ROOT / "build" / "mutations"
TREE = WORK / "tree"
BUILD = WORK / "native"


def run(arguments: list, **options) -> int:
    return subprocess.run([str(argument) for argument in arguments], stdout=subprocess.DEVNULL,
                          stderr=subprocess.DEVNULL, **options).returncode


def copy_tree() -> None:
    """A copy of what git knows; only changed files are written, so that little is compiled again."""
    shutil.rmtree(TREE, ignore_errors=True)
    names = subprocess.run(["git", "ls-files", "-z"], cwd=ROOT, stdout=subprocess.PIPE, check=True).stdout.split(b"\0")
    for name in filter(None, names):
        source, target = ROOT / name.decode(), TREE / name.decode()
        if source.is_file():
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy2(source, target)


def header(patch: pathlib.Path, key: str) -> str:
    found = re.search(rf"^{key}: (\S+)$", patch.read_text(encoding="utf-8"), re.MULTILINE)
    if not found:
        sys.exit(f"{patch.name}: no line '{key}: …'")
    return found.group(1)


def passes(target: str, test: str) -> bool:
    """Whether the named test passes. Code that does not compile proves nothing and ends the run."""
    if run(["cmake", "--build", BUILD, "--target", target, "-j", os.cpu_count() or 2]) != 0:
        sys.exit(f"{target} does not build")
    program = next(BUILD.rglob(target))
    listed = subprocess.run([program, f"--gtest_filter={test}", "--gtest_list_tests"], stdout=subprocess.PIPE).stdout
    if b"  " not in listed:
        sys.exit(f"{target} has no test {test}")
    environment = dict(os.environ, BRINDLECAST_MEDIA=str(ROOT / "build/media"))
    return run([program, f"--gtest_filter={test}"], env=environment) == 0


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
    if run(["cmake", "--preset", "native", "-B", BUILD], cwd=TREE) != 0:
        sys.exit("configuring the copy failed")
    patches = sorted((ROOT / "tests/mutations").glob("*.patch"))
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
