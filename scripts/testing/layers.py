"""The test layers. Each takes whether the long form is asked for, and answers its counts or raises LayerFailed."""
import functools
import os
import pathlib
import subprocess

import static_checks
from results import Counts, LayerFailed, command, run_program

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
BUILD = ROOT / "build"
REPORTS = BUILD / "reports"
JOBS = str(os.cpu_count() or 2)


def lint(is_long: bool) -> Counts:
    return static_checks.lint()


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


@functools.cache
def build_windows() -> None:
    """Once a run; costs a moment when everything is up to date."""
    command([ROOT / "third_party/build"], "building the third-party libraries")
    configure_and_build("windows")


def some(programs, what: str) -> list[pathlib.Path]:
    """The programs in order; a layer that finds none of what it is there to run has failed."""
    found = sorted(programs)
    if not found:
        raise LayerFailed(f"there are no {what}")
    return found


def make_media() -> None:
    command([ROOT / "tests/media/generate"], "making the test media")


def run_native(program: pathlib.Path, seconds: int, build: str = "native") -> Counts:
    report = REPORTS / f"{program.name}_{build}.xml"
    suppressions = ROOT / "scripts/testing/tsan_suppressions.txt"
    environment = dict(os.environ, BRINDLECAST_MEDIA=str(BUILD / "media"), UBSAN_OPTIONS="print_stacktrace=1",
                       ASAN_OPTIONS="detect_leaks=1", TSAN_OPTIONS=f"suppressions={suppressions}")
    return run_program([program, f"--gtest_output=xml:{report}"], report, report.with_suffix(".log"), seconds,
                       env=environment, cwd=BUILD)


def native(is_long: bool) -> Counts:
    make_media()
    configure_and_build("native")
    counts = Counts()
    for program in some((BUILD / "native").rglob("*_tests"), "native test programs"):
        counts += run_native(program, 600)
    return counts


def tsan(is_long: bool) -> Counts:
    """The unit tests once more under ThreadSanitizer: those that start threads are among them."""
    make_media()
    configure_and_build("native-tsan", "unit_tests")
    return run_native(BUILD / "native-tsan/tests/unit/unit_tests", 1200, "native-tsan")


def fuzz(is_long: bool) -> Counts:
    make_media()
    configure_and_build("native-fuzz")
    counts = Counts()
    for program in some((BUILD / "native-fuzz").rglob("*_fuzz"), "fuzz targets"):
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


def run_windows(program: pathlib.Path, seconds: int, desktop: str = "tests", is_long: bool = False) -> Counts:
    """Runs one test program under Wine on a desktop of its own. Tests that have a long form see by a variable that it is
    asked for."""
    report = REPORTS / f"{program.stem}_windows.xml"
    environment = dict(os.environ, BRINDLECAST_MEDIA=windows_path(BUILD / "media"),
                       BRINDLECAST_BUILD=windows_path(BUILD / "windows"),
                       BRINDLECAST_TOOLS=windows_path(BUILD / "tools"),
                       BRINDLECAST_REPORTS=windows_path(REPORTS),
                       # Where test programs find the FFmpeg libraries, which lie beside the modules.
                       WINEPATH=windows_path(BUILD / "windows/bin"))
    if is_long:
        environment["BRINDLECAST_LONG"] = "1"
    arguments = [ROOT / "scripts/desktop/with_desktop", desktop, "--", "/usr/lib/wine/wine64", program,
                 f"--gtest_output=xml:{windows_path(report)}"]
    return run_program(arguments, report, report.with_suffix(".log"), seconds, env=environment, cwd=program.parent)


def windows_path(path: pathlib.Path) -> str:
    return "Z:" + str(path).replace("/", "\\")


def windows(is_long: bool) -> Counts:
    build_windows()
    return run_windows(BUILD / "windows/test_bin/unit_tests.exe", 300)


def graph(is_long: bool) -> Counts:
    build_windows()
    return run_windows(BUILD / "windows/graph_test_bin/graph_tests.exe", 600)


def filters(is_long: bool) -> Counts:
    build_windows()
    make_media()
    counts = Counts()
    others = {"unit_tests", "e2e_tests"}
    failures = []
    programs = [path for path in (BUILD / "windows/test_bin").glob("*_tests.exe") if path.stem not in others]
    for program in [*some(programs, "tests of the modules"), BUILD / "windows/road_bin/road_tests.exe"]:
        try:
            counts += run_windows(program, 600)
        except LayerFailed as failure:
            counts += failure.counts
            failures.append(str(failure))
    if failures:
        raise LayerFailed("; ".join(failures), counts)
    return counts


def e2e(is_long: bool) -> Counts:
    build_windows()
    make_media()
    command(["bash", "-c", "brindlecast_root=$PWD; . scripts/desktop/tools.sh; native_tool xdnd_source"],
            "compiling the source of drops", cwd=ROOT, stdout=subprocess.DEVNULL)
    counts = selfcheck()
    counts += run_command()
    counts += run_windows(BUILD / "windows/test_bin/e2e_tests.exe", 3000 if is_long else 1200, "e2e", is_long)
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


def package(is_long: bool) -> Counts:
    """The archive is made and started from where it was unpacked."""
    build_windows()
    code, lines = logged("package", [ROOT / "scripts/package", "--output", BUILD / "dist"])
    if code != 0:
        print("\n".join(f"   | {line}" for line in lines[-40:]))
        raise LayerFailed("the package could not be made or does not start")
    return Counts(passed=1)


def tidy(is_long: bool) -> Counts:
    configure_and_build("native")
    build_windows()
    return static_checks.tidy(BUILD / "native", BUILD / "windows", REPORTS / "tidy.log")


def mutations(is_long: bool) -> Counts:
    outcome = subprocess.run(["python3", ROOT / "scripts/testing/run_mutations.py"], cwd=ROOT)
    if outcome.returncode != 0:
        raise LayerFailed("a mutation survived")
    return Counts(passed=1)
