#!/usr/bin/env python3
"""Makes the two pages of quality (Markdown) of what training/evaluate printed.

    training/quality_report.py training/work/evaluation.txt docs

writes docs/quality.md, for somebody who uses the engine, and docs/quality-details.md with every figure.
The format of the lines, and the pages, are in training/report.
"""

import contextlib
import os
import subprocess
import sys
from pathlib import Path

from report import details, evaluation, summary


ROOT = Path(__file__).resolve().parent.parent


def git(*arguments):
    return subprocess.run(["git", "-C", ROOT, *arguments], capture_output=True, text=True,
                          check=True).stdout.strip()


def commit():
    try:
        name = git("rev-parse", "--short", "HEAD")
        changed = git("status", "--porcelain", "resources", "training")
    except (OSError, subprocess.CalledProcessError):
        return "(unknown)"  # sources without their history
    return name + (" with changes" if changed else "")


def today():
    return subprocess.run(["date", "-u", "+%Y-%m-%d"], capture_output=True, text=True,
                          check=True).stdout.strip()


def main(arguments):
    if len(arguments) != 2:
        print(__doc__, file=sys.stderr)
        return 2
    lines = evaluation.read(arguments[0])
    if not lines:
        print(f"quality_report.py: no figures in {arguments[0]}", file=sys.stderr)
        return 1
    for name, page in (("quality.md", summary), ("quality-details.md", details)):
        path = Path(arguments[1]) / name
        part = path.with_suffix(".part")
        with open(part, "w", encoding="utf-8") as file, contextlib.redirect_stdout(file):
            page.write(lines, today(), commit())
        os.replace(part, path)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
