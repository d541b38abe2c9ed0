"""The test layers. Each takes whether the long form is asked for, and answers its counts or raises LayerFailed."""
import os
import pathlib
import subprocess

from results import Counts, LayerFailed, command, run_program

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
BUILD = ROOT / "build"
REPORTS = BUILD / "reports"
JOBS = str(os.cpu_count() or 2)
SOURCE_FOLDERS = ["src", "filters", "tests", "bench"]


def sources(*suffixes: str) -> list[pathlib.Path]:
    return sorted(path for folder in SOURCE_FOLDERS for path in (ROOT / folder).rglob("*") if path.suffix in suffixes)


def lint(is_long: bool) -> Counts:
    counts = Counts()

    def check(name: str, arguments: list) -> None:
        outcome = subprocess.run([str(argument) for argument in arguments], cwd=ROOT)
        if outcome.returncode == 0:
            counts.passed += 1
        else:
            counts.failed += 1
            print(f"   failed: {name}")

    check("format", ["clang-format", "--dry-run", "--Werror", *sources(".h", ".cpp")])
    check("include order", ["python3", ROOT / "scripts/testing/lint_includes.py"])
    scripts = [path for path in tracked_scripts() if b"bash" in path.read_bytes().split(b"\n", 1)[0]]
    check("shell syntax", ["bash", "-c", 'for script in "$@"; do bash -n "$script" || exit 1; done', "syntax", *scripts])
    check("shell checks", ["shellcheck", "--external-sources", "--severity=warning", *scripts])
    if counts.failed:
        raise LayerFailed("the tree breaks its rules", counts)
    return counts


def tracked_scripts() -> list[pathlib.Path]:
    listed = subprocess.run(["git", "ls-files", "-z"], cwd=ROOT, stdout=subprocess.PIPE, check=True).stdout
    paths = [ROOT / name.decode() for name in listed.split(b"\0") if name]
    return [path for path in paths if path.is_file() and path.read_bytes()[:2] == b"#!"]


def configure_and_build(preset: str, *targets: str) -> None:
    command(["cmake", "--preset", preset], f"configuring '{preset}'", cwd=ROOT, stdout=subprocess.DEVNULL)
    target_options = ["--target", *targets] if targets else []
    log = BUILD / f"{preset}.log"
    with log.open("wb") as out:
        outcome = subprocess.run(["cmake", "--build", "--preset", preset, "-j", JOBS, *target_options], cwd=ROOT,
                                 stdout=out, stderr=subprocess.STDOUT)
    if outcome.returncode != 0:
        print("\n".join(log.read_text(errors="replace").splitlines()[-60:]))
        raise LayerFailed(f"building '{preset}'")


def make_media() -> None:
    command([ROOT / "tests/media/generate"], "making the test media")


def run_native(program: pathlib.Path, seconds: int) -> Counts:
    report = REPORTS / f"{program.name}_native.xml"
    environment = dict(os.environ, BRINDLECAST_MEDIA=str(BUILD / "media"),
                       UBSAN_OPTIONS="print_stacktrace=1", ASAN_OPTIONS="detect_leaks=1")
    return run_program([program, f"--gtest_output=xml:{report}"], report, report.with_suffix(".log"), seconds,
                       env=environment, cwd=BUILD)


def native(is_long: bool) -> Counts:
    make_media()
    configure_and_build("native")
    counts = Counts()
    for program in sorted((BUILD / "native").rglob("*_tests")):
        counts += run_native(program, 600)
    return counts


def fuzz(is_long: bool) -> Counts:
    make_media()
    configure_and_build("native-fuzz")
    counts = Counts()
    for program in sorted((BUILD / "native-fuzz").rglob("*_fuzz")):
        corpus = make_corpus(program.name)
        seconds = 600 if is_long else 10
        log = REPORTS / f"{program.name}.log"
        log.parent.mkdir(parents=True, exist_ok=True)
        with log.open("wb") as out:
            outcome = subprocess.run([program, corpus, f"-max_total_time={seconds}", "-seed=1", "-timeout=10",
                                      f"-artifact_prefix={REPORTS}/{program.name}-"], stdout=out,
                                     stderr=subprocess.STDOUT, cwd=REPORTS)
        if outcome.returncode != 0:
            print("\n".join(log.read_text(errors="replace").splitlines()[-30:]))
            raise LayerFailed(f"{program.name} found something; its output is in {log}",
                              Counts(counts.passed, counts.failed + 1, counts.skipped))
        counts.passed += 1
    return counts


def make_corpus(name: str) -> pathlib.Path:
    """Where a target keeps what it has found; the demuxer's begins with the heads of real files."""
    corpus = BUILD / "corpus" / name
    corpus.mkdir(parents=True, exist_ok=True)
    if name == "demux_fuzz":
        for media in ("short.mkv", "no_cues.mkv", "faststart.mp4", "song.mp3", "song.flac", "tracks.mkv"):
            with (BUILD / "media" / media).open("rb") as file:
                (corpus / f"{media}.head").write_bytes(file.read(48 * 1024))
    return corpus


def run_windows(program: pathlib.Path, seconds: int, desktop: str = "tests") -> Counts:
    """Runs one test program under Wine on a desktop of its own."""
    report = REPORTS / f"{program.stem}_windows.xml"
    environment = dict(os.environ, BRINDLECAST_MEDIA=windows_path(BUILD / "media"),
                       BRINDLECAST_BUILD=windows_path(BUILD / "windows"),
                       BRINDLECAST_TOOLS=windows_path(BUILD / "tools"),
                       BRINDLECAST_REPORTS=windows_path(REPORTS),
                       # Where test programs find the FFmpeg libraries, which lie beside the modules.
                       WINEPATH=windows_path(BUILD / "windows/bin"))
    arguments = [ROOT / "scripts/desktop/with_desktop", desktop, "--", "/usr/lib/wine/wine64", program,
                 f"--gtest_output=xml:{windows_path(report)}"]
    return run_program(arguments, report, report.with_suffix(".log"), seconds, env=environment, cwd=program.parent)


def windows_path(path: pathlib.Path) -> str:
    return "Z:" + str(path).replace("/", "\\")


def windows(is_long: bool) -> Counts:
    command([ROOT / "third_party/build"], "building the third-party libraries")
    configure_and_build("windows")
    return run_windows(BUILD / "windows/test_bin/unit_tests.exe", 300)


def graph(is_long: bool) -> Counts:
    return run_windows(BUILD / "windows/graph_test_bin/graph_tests.exe", 600)


def filters(is_long: bool) -> Counts:
    make_media()
    counts = Counts()
    others = {"unit_tests", "e2e_tests"}
    failures = []
    programs = sorted((BUILD / "windows/test_bin").glob("*_tests.exe")) + [BUILD / "windows/road_bin/road_tests.exe"]
    for program in programs:
        if program.stem in others:
            continue
        try:
            counts += run_windows(program, 600)
        except LayerFailed as failure:
            counts += failure.counts
            failures.append(str(failure))
    if failures:
        raise LayerFailed("; ".join(failures), counts)
    return counts


def e2e(is_long: bool) -> Counts:
    make_media()
    command(["bash", "-c", "brindlecast_root=$PWD; . scripts/desktop/tools.sh; native_tool xdnd_source"],
            "compiling the source of drops", cwd=ROOT, stdout=subprocess.DEVNULL)
    counts = selfcheck()
    counts += run_command()
    counts += run_windows(BUILD / "windows/test_bin/e2e_tests.exe", 1200, "e2e")
    return counts


def logged(name: str, arguments: list) -> tuple[int, list[str]]:
    log = REPORTS / f"{name}.log"
    log.parent.mkdir(parents=True, exist_ok=True)
    with log.open("wb") as out:
        outcome = subprocess.run([str(argument) for argument in arguments], stdout=out, stderr=subprocess.STDOUT,
                                 stdin=subprocess.DEVNULL, cwd=ROOT)
    return outcome.returncode, log.read_text(errors="replace").splitlines()


def selfcheck() -> Counts:
    """The measuring itself: right runs of another player pass, and black, frozen, shifted and silent ones fail."""
    code, lines = logged("selfcheck", [ROOT / "tests/support/selfcheck"])
    counts = Counts(passed=sum(line.startswith("ok: ") for line in lines),
                    failed=sum(line.startswith("FAILED: ") for line in lines))
    if code != 0 or counts.passed == 0:
        print("\n".join(f"   | {line}" for line in lines[-40:]))
        counts.failed = max(counts.failed, 1)
        raise LayerFailed("the measuring set-up is wrong", counts)
    return counts


def run_command() -> Counts:
    """./run as a user without a display would call it, on a film and on sound alone."""
    files = [BUILD / "media" / name for name in ("film_1080p.mkv", "song_cover.mp3")]
    code, lines = logged("run", [ROOT / "run", "--measure", *files])
    if code != 0:
        print("\n".join(f"   | {line}" for line in lines[-40:]))
        raise LayerFailed("./run did not see and hear its files")
    return Counts(passed=1)


def tidy(is_long: bool) -> Counts:
    configure_and_build("native")
    files = [path for path in sources(".cpp") if path.relative_to(ROOT).parts[0] != "tests"]
    database = BUILD / "native"
    known = (database / "compile_commands.json").read_text()
    counts = Counts()
    for path in files:
        if str(path) not in known:
            continue
        outcome = subprocess.run(["clang-tidy", "--quiet", "-p", database, path], cwd=ROOT, stderr=subprocess.DEVNULL)
        counts += Counts(passed=1) if outcome.returncode == 0 else Counts(failed=1)
    if counts.failed:
        raise LayerFailed("clang-tidy has found something", counts)
    return counts


def mutations(is_long: bool) -> Counts:
    outcome = subprocess.run(["python3", ROOT / "scripts/testing/run_mutations.py"], cwd=ROOT)
    if outcome.returncode != 0:
        raise LayerFailed("a mutation survived")
    return Counts(passed=1)
