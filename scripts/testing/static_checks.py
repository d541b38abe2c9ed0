"""What is checked without running anything: format, the order of the layers, scripts, and clang-tidy."""
import concurrent.futures
import json
import pathlib
import subprocess

from results import Counts, LayerFailed

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
SOURCE_FOLDERS = ["src", "filters", "tests", "bench", "scripts"]
WINDOWS_TARGET = "x86_64-w64-mingw32"
WINDOWS_COMPILER = f"{WINDOWS_TARGET}-g++-posix"


def sources(*suffixes: str) -> list[pathlib.Path]:
    return sorted(path for folder in SOURCE_FOLDERS for path in (ROOT / folder).rglob("*") if path.suffix in suffixes)


def shell_scripts() -> list[pathlib.Path]:
    """Those that say so in their first line, and files that others read in: *.sh and the recipes of the libraries."""
    listed = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"], cwd=ROOT,
                            stdout=subprocess.PIPE, check=True).stdout
    paths = [ROOT / name.decode() for name in listed.split(b"\0") if name]
    return sorted(path for path in paths if path.is_file() and is_shell_script(path))


def is_shell_script(path: pathlib.Path) -> bool:
    first = path.read_bytes().split(b"\n", 1)[0]
    says_so = first.startswith(b"#!") and first.split(b"/")[-1].split(b" ")[-1] in (b"bash", b"sh")
    is_recipe = path.name == "recipe" and path.parent.parent == ROOT / "third_party"
    return says_so or path.suffix == ".sh" or is_recipe


def lint() -> Counts:
    counts = Counts()

    def check(name: str, arguments: list) -> None:
        outcome = subprocess.run([str(argument) for argument in arguments], cwd=ROOT)
        if outcome.returncode == 0:
            counts.passed += 1
        else:
            counts.failed += 1
            print(f"   failed: {name}")

    scripts = shell_scripts()
    check("format", ["clang-format", "--dry-run", "--Werror", *sources(".h", ".cpp")])
    check("include order", ["python3", ROOT / "scripts/testing/lint_includes.py"])
    check("shell syntax", ["bash", "-c", 'for script in "$@"; do bash -n "$script" || exit 1; done', "syntax", *scripts])
    check("shell checks", ["shellcheck", "--external-sources", "--severity=warning", *scripts])
    if counts.failed:
        raise LayerFailed("the tree breaks its rules", counts)
    return counts


def compiled_files(database: pathlib.Path) -> set[pathlib.Path]:
    """Our own sources in a compilation database; tests are not looked at."""
    entries = json.loads((database / "compile_commands.json").read_text())
    files = {pathlib.Path(entry["directory"], entry["file"]).resolve() for entry in entries}
    return {path for path in sources(".cpp") if path in files and path.relative_to(ROOT).parts[0] != "tests"}


def windows_arguments() -> list[str]:
    """What makes clang read the code as the cross compiler does: its target, and the compiler's own C++ headers."""
    listed = subprocess.run([WINDOWS_COMPILER, "-E", "-v", "-x", "c++", "/dev/null"], stdout=subprocess.DEVNULL,
                            stderr=subprocess.PIPE, text=True, check=True).stderr
    listed = listed[listed.index("search starts here"):].splitlines()
    headers = [line.strip() for line in listed if line.startswith(" ") and "/c++" in line]
    return [f"--extra-arg={argument}" for argument in
            [f"--target={WINDOWS_TARGET}", *(f"-isystem{folder}" for folder in headers)]]


def tidy(native: pathlib.Path, windows: pathlib.Path, log: pathlib.Path) -> Counts:
    """Looks at every source once: natively where it is compiled there, else as Windows code. Two at a time."""
    native_files = compiled_files(native)
    windows_files = compiled_files(windows) - native_files
    if not native_files or not windows_files:
        raise LayerFailed(f"too few files: {len(native_files)} native ones, {len(windows_files)} of Windows")
    jobs = [(path, ["-p", native]) for path in sorted(native_files)]
    jobs += [(path, ["-p", windows, *windows_arguments()]) for path in sorted(windows_files)]

    def look(job: tuple) -> str:
        path, arguments = job
        outcome = subprocess.run([str(argument) for argument in ["clang-tidy", "--quiet", *arguments, path]], cwd=ROOT,
                                 stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        # What goes wrong with the tool itself stands in the other stream.
        return "" if outcome.returncode == 0 else outcome.stdout or outcome.stderr

    with concurrent.futures.ThreadPoolExecutor(max_workers=2) as pool:
        findings = list(pool.map(look, jobs))
    failed = [text for text in findings if text]
    counts = Counts(passed=len(findings) - len(failed), failed=len(failed))
    log.parent.mkdir(parents=True, exist_ok=True)
    log.write_text("\n".join(failed))
    if failed:
        lines = {line for text in failed for line in text.splitlines() if ": error: " in line or ": warning: " in line}
        print("\n".join(f"   {line}" for line in sorted(lines)))
        raise LayerFailed(f"clang-tidy has found something; its whole output is in {log}", counts)
    return counts
