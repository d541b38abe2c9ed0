#!/usr/bin/env python3
"""Runs the test layers in their order, stops at the first that fails, and closes with one line of counts."""
import sys
import time

import layers
from results import Counts, LayerFailed

ORDER = ["lint", "native", "fuzz", "windows", "graph", "filters", "e2e"]
LONG_ORDER = ORDER + ["package", "tsan", "tidy", "mutations"]


def choose(arguments: list[str]) -> tuple[list[str], bool]:
    if arguments == ["long"]:
        return LONG_ORDER, True
    unknown = [name for name in arguments if name not in LONG_ORDER]
    if unknown:
        sys.exit(f"unknown layer: {', '.join(unknown)} (known: {', '.join(LONG_ORDER)}, or 'long' alone)")
    return [name for name in LONG_ORDER if name in arguments] or ORDER, False


def main() -> int:
    chosen, is_long = choose(sys.argv[1:])
    total = Counts()
    failed = None
    seconds: list[tuple[str, float]] = []
    for position, name in enumerate(chosen):
        print(f"== {name}", flush=True)
        start = time.monotonic()
        try:
            counts = getattr(layers, name)(is_long)
        except LayerFailed as failure:
            print(f"-- {name}: {failure}", flush=True)
            counts = failure.counts
            failed = name
        seconds.append((name, time.monotonic() - start))
        total += counts
        print(f"-- {name}: {counts} in {seconds[-1][1]:.0f} s", flush=True)
        if failed:
            rest = chosen[position + 1 :]
            if rest:
                print(f"layers not run: {', '.join(rest)}")
            break
    print("seconds per layer: " + ", ".join(f"{name} {spent:.0f}" for name, spent in seconds))
    print(total, flush=True)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
