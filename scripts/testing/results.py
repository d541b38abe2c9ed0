"""Counts of tests, and how programs of tests are run and counted."""
import dataclasses
import pathlib
import subprocess
import xml.etree.ElementTree


@dataclasses.dataclass
class Counts:
    passed: int = 0
    failed: int = 0
    skipped: int = 0

    def __iadd__(self, other: "Counts") -> "Counts":
        self.passed += other.passed
        self.failed += other.failed
        self.skipped += other.skipped
        return self

    def __str__(self) -> str:
        return f"{self.passed} passed, {self.failed} failed, {self.skipped} skipped"


class LayerFailed(Exception):
    def __init__(self, why: str, counts: Counts | None = None):
        super().__init__(why)
        # A layer that can't even run counts as one failure, so that the closing line never looks green.
        self.counts = counts if counts is not None else Counts(failed=1)


def command(arguments: list, why: str, **options) -> None:
    """Runs a step that is no test by itself; a failing one fails the layer."""
    outcome = subprocess.run([str(argument) for argument in arguments], **options)
    if outcome.returncode != 0:
        raise LayerFailed(f"{why} (exit code {outcome.returncode})")


def read_report(report: pathlib.Path) -> Counts:
    root = xml.etree.ElementTree.parse(report).getroot()
    counts = Counts()
    for case in root.iter("testcase"):
        if case.find("failure") is not None:
            counts.failed += 1
            print(f"   failed: {case.get('classname')}.{case.get('name')}", flush=True)
        elif case.find("skipped") is not None or case.get("status") == "notrun":
            counts.skipped += 1
        else:
            counts.passed += 1
    return counts


def run_program(arguments: list, report: pathlib.Path, log: pathlib.Path, seconds: int, **options) -> Counts:
    """Runs one GoogleTest program, whose command line holds the report's place already. A program that dies, hangs or runs
    no test counts as failed whatever its report says."""
    report.unlink(missing_ok=True)
    report.parent.mkdir(parents=True, exist_ok=True)
    log.parent.mkdir(parents=True, exist_ok=True)
    with log.open("wb") as out:
        try:
            outcome = subprocess.run([str(argument) for argument in arguments], stdout=out, stderr=subprocess.STDOUT,
                                     stdin=subprocess.DEVNULL, timeout=seconds, **options)
            code = outcome.returncode
        except subprocess.TimeoutExpired:
            code = None
    counts = read_report(report) if report.exists() else Counts()
    if code == 0 and counts.passed > 0 and counts.failed == 0:
        return counts
    tail = log.read_text(errors="replace").splitlines()[-60:]
    print("\n".join(f"   | {line}" for line in tail))
    if counts.failed == 0:
        counts.failed = 1
    state = f"did not end within {seconds} s" if code is None else f"ended with {code}"
    raise LayerFailed(f"{report.stem} {state}; its output is in {log}", counts)
