#!/usr/bin/env python3
"""Makes the quality report (Markdown, on standard output) of what training/evaluate printed.

    training/quality_report.py training/work/evaluation.txt > docs/quality.md

A line reads "LANGUAGE, SPEAKERS | MEASURE | FIGURES | ...". Lines of a kind that is not known here
still appear, under the other measures of their language.
"""

import pathlib
import re
import subprocess
import sys
from collections import defaultdict

# What each figure should reach: language ("" for every one), speakers, measure, the figure in its
# fields, at least or at most what, and how the table calls it. A share of trials is written "n of m".
TARGETS = [
    ("", "held-out", r"frame phoneme accuracy, augmented", r"top-1 ([\d.]+)", ">=", 0.88,
     "frame phoneme accuracy, augmented"),
    ("English", "held-out", r"aligned phonemes by frames, augmented", r"top-1 ([\d.]+)", ">=", 0.89,
     "aligned phonemes by frames, augmented, top-1"),
    ("English", "held-out", r"aligned phonemes by frames, augmented", r"top-3 ([\d.]+)", ">=", 0.97,
     "aligned phonemes by frames, augmented, top-3"),
    ("English", "held-out", r"aligned phonemes by the phoneme model, augmented", r"top-1 ([\d.]+)",
     ">=", 0.89, "aligned phonemes by the phoneme model, augmented, top-1"),
    ("English", "held-out", r"aligned phonemes by the phoneme model, augmented", r"top-3 ([\d.]+)",
     ">=", 0.97, "aligned phonemes by the phoneme model, augmented, top-3"),
    ("Chinese|Japanese", "held-out", r"aligned phonemes by the phoneme model, augmented",
     r"top-1 ([\d.]+)", ">=", 0.88, "aligned phonemes by the phoneme model, augmented, top-1"),
    ("Chinese|Japanese", "held-out", r"aligned phonemes by the phoneme model, augmented",
     r"top-3 ([\d.]+)", ">=", 0.97, "aligned phonemes by the phoneme model, augmented, top-3"),
    ("English", "held-out", r"boundaries, clean", r"within 20 ms ([\d.]+)", ">=", 0.96,
     "boundaries within 20 ms, clean"),
    ("Chinese|Japanese", "held-out", r"boundaries, clean", r"within 20 ms ([\d.]+)", ">=", 0.92,
     "boundaries within 20 ms, clean"),
    ("English", "held-out", r"boundaries, clean", r"median ([\d.]+) ms", "<=", 3.5,
     "boundaries, clean: median error in ms"),
    ("", "held-out", r"right sentence of 8, unrelated", r"(\d+) of (\d+)", ">=", 1.0,
     "right sentence of 8, unrelated ones"),
    ("", "held-out", r"right sentence of 8, one word changed", r"(\d+) of (\d+)", ">=", 0.975,
     "right sentence of 8, one word changed"),
    ("", "held-out", r"substituted phonemes, clean", r"area under curve ([\d.]+)", ">=", 0.95,
     "substituted phonemes, clean: area under curve"),
    ("", "held-out", r"substituted phonemes, augmented", r"area under curve ([\d.]+)", ">=", 0.95,
     "substituted phonemes, augmented: area under curve"),
    ("", "held-out", r"substituted phonemes, clean", r"under 60 ([\d.]+)", "<=", 0.015,
     "right phonemes scored under 60, clean"),
    ("", "held-out", r"substituted phonemes, augmented", r"under 60 ([\d.]+)", "<=", 0.015,
     "right phonemes scored under 60, augmented"),
    ("English", "left-out", r"aligned phonemes by the phoneme model, clean", r"top-1 ([\d.]+)", ">=",
     0.65, "aligned phonemes by the phoneme model, clean, top-1"),
    ("English", "left-out", r"aligned phonemes by the phoneme model, clean", r"top-3 ([\d.]+)", ">=",
     0.90, "aligned phonemes by the phoneme model, clean, top-3"),
    ("English", "left-out", r"right sentence of 8, one word changed", r"(\d+) of (\d+)", ">=", 0.975,
     "right sentence of 8, one word changed"),
    ("English", "left-out", r"substituted phonemes, clean", r"area under curve ([\d.]+)", ">=", 0.85,
     "substituted phonemes, clean: area under curve"),
    ("Chinese", "held-out", r"tones, clean", r"right ([\d.]+)", ">=", 0.95,
     "{measure}"),
    ("", "held-out", r"annotation, clean", r"phoneme error rate ([\d.]+)", "<=", 0.25,
     "annotation without a sentence, clean: phoneme error rate"),
    ("", "held-out", r"goodness, unrelated sentence", r"area under curve ([\d.]+)", ">=", 0.995,
     "goodness, unrelated sentence: area under curve"),
    ("", "held-out", r"goodness, one third of the words changed", r"area under curve ([\d.]+)", ">=",
     0.95, "goodness, one third of the words changed: area under curve"),
    ("", "held-out", r"goodness, cut off halfway", r"area under curve ([\d.]+)", ">=", 0.97,
     "goodness, cut off halfway: area under curve"),
    ("", "held-out", r"goodness, right reading", r"median ([\d.]+)", ">=", 0.95,
     "goodness factor of right readings, median"),
    ("", "held-out", r"goodness, right reading", r"tenth percentile ([\d.]+)", ">=", 0.85,
     "goodness factor of right readings, tenth percentile"),
    ("", "held-out", r"goodness, unrelated sentence", r"median ([\d.]+)", "<=", 0.35,
     "goodness factor of unrelated sentences, median"),
]

INTRODUCTION = """# How good the models are

Every figure here is of synthesised speech: nobody was recorded. `training/evaluate --report
docs/quality.md` measures and writes this page; it was written on {date} from commit {commit}. The
models and what they were made of are listed in `resources/MANIFEST`.

## What such figures show, and what they do not

- The voices called held out (ten variants of espeak-ng) were never trained on, and the sentences
  neither: templates and content words are others. But they come from the synthesiser that most of
  the training speech comes from. Its variants differ in pitch, formants and voice quality, not in how
  a phoneme is made; a person differs in all of that. Take these figures as an upper bound.
- Chinese and Japanese have this one synthesiser only. For English, flite's four voices were made from
  recordings of people by another system; models that never heard a voice are measured on it (left
  out). Their figures are the nearest thing here to a new speaker, and they are clearly lower.
- True phoneme times are the synthesiser's own. What it calls the start of a phoneme is a convention,
  which the models have learnt with the rest.
- Faults are made, too: a phoneme is exchanged, a word changed, a pitch flattened. Learners err in
  softer ways. How scores of people relate to the judgement of teachers is not known from any of this.
- Augmented means: other vocal tracts, rooms, microphones, noises and levels were laid over the
  speech, as in training. Strongly augmented: worse than anything in training, all at once (vocal
  tracts beyond its range, a band of 4 kHz, reverb, noise at 10 dB). Settings of the training were chosen on these voices, which makes the figures slightly too
  good.

An accuracy is top-1 or top-3: the right phoneme has the highest score, or one of the three highest.
F1 is macro-averaged: each phoneme counts alike. Phonemes are written in the symbols of the language's
set (`docs/formats/dictionary.md`).
"""


def read(path):
    """The lines as (language, speakers, measure, fields), and the indented tables below them as
    (language, title, lines)."""
    lines = []
    tables = []
    for line in open(path, encoding="utf-8"):
        line = line.rstrip("\n")
        if line.startswith("  ") and lines:
            language, speakers, measure, _ = lines[-1]
            title = f"{speakers}, {measure}"
            if not tables or tables[-1][:2] != (language, title):
                tables.append((language, title, []))
            tables[-1][2].append(line[2:])
            continue
        fields = line.split(" | ")
        if len(fields) < 3:
            continue
        language, _, speakers = fields[0].partition(", ")
        lines.append((language, speakers, fields[1], fields[2:]))
    return lines, tables


def figure(match):
    if len(match.groups()) == 2:
        return int(match[1]) / max(int(match[2]), 1), f"{match[1]} of {match[2]}"
    return float(match[1]), match[1]


def wanted(pattern, sign, bound):
    name = "at least" if sign == ">=" else "at most"
    if "of" in pattern:
        return f"{name} {bound * 100:g} %"
    return f"{name} {bound:g}"


def targets(lines):
    print("## Figures and what was wanted\n")
    print("| language | voices | measure | measured | wanted | reached |")
    print("|---|---|---|---|---|---|")
    missed = []
    for language, speakers, measure, fields in lines:
        rest = " | ".join(fields)
        for wanted_language, kind, name, pattern, sign, bound, label in TARGETS:
            if not re.fullmatch(wanted_language or ".*", language) or not speakers.startswith(kind):
                continue
            match = re.fullmatch(name, measure) and re.search(pattern, rest)
            if not match:
                continue
            value, text = figure(match)
            label = label.format(measure=measure)
            reached = value >= bound if sign == ">=" else value <= bound
            if not reached:
                missed.append(f"{language}, {speakers}: {label} {text}")
            print(f"| {language} | {speakers} | {label} | {text} | {wanted(pattern, sign, bound)} | "
                  f"{'yes' if reached else '**no**'} |")
    print()
    if not any(speakers.startswith("left-out") for _, speakers, _, _ in lines):
        print("No models that were made without a flite voice were there to be measured; the figures of")
        print("those made with the first English models are in `resources/MANIFEST`.\n")
    if missed:
        print("Not reached: " + "; ".join(missed) + ".\n")
        tried = pathlib.Path(__file__).with_name("tried.md").read_text(encoding="utf-8")
        print(re.sub("^#", "##", tried.strip(), flags=re.MULTILINE) + "\n")
    else:
        print("All of them are reached.\n")


def share(text):
    match = re.fullmatch(r"(\d+) of (\d+)", text)
    return f"{text} ({100 * int(match[1]) / max(int(match[2]), 1):.1f} %)" if match else text


def details(language, lines):
    print(f"## {language}\n")
    groups = defaultdict(list)
    for _, speakers, measure, fields in lines:
        special = measure if measure in ("confusion", "calibration", "voice") else None
        if measure == "grading, order":
            special = "order"
        elif measure.startswith("grading, "):
            special = "grading"
        elif measure.startswith("goodness, "):
            special = "goodness"
        groups[special].append((speakers, measure, fields))
    general(groups[None])
    voices(groups["voice"])
    confusions(groups["confusion"])
    calibration(groups["calibration"])
    goodness(groups["goodness"])
    grading(groups["grading"], groups["order"])


def general(rows):
    if not rows:
        return
    print("| voices | measure | figures |\n|---|---|---|")
    for speakers, measure, fields in rows:
        print(f"| {speakers} | {measure} | {', '.join(fields)} |")
    print()


def voices(rows):
    if not rows:
        return
    print("### Each held-out voice, clean, by the phoneme model\n")
    print("| voice | top-1 | top-3 | boundaries within 20 ms | substitutions: area under curve | "
          "right phonemes under 60 | phonemes |")
    print("|---|---|---|---|---|---|---|")
    for _, _, fields in rows:
        numbers = [re.search(r"[\d.]+$", field)[0] for field in fields[1:6]]
        print(f"| {fields[0]} | {' | '.join(numbers)} | {fields[6].split()[0]} |")
    print()


def confusions(rows):
    if not rows:
        return
    print("### What is taken for what most often\n")
    print("| phoneme | taken for | how often |\n|---|---|---|")
    for _, _, fields in rows:
        truth, said = re.fullmatch(r"(.) taken for (.)", fields[0]).groups()
        print(f"| `{truth}` | `{said}` | {share(fields[1])} |")
    print()


def calibration(rows):
    if not rows:
        return
    print("### How far a phoneme score can be trusted\n")
    print("About one phoneme in six was exchanged for another of its kind. Of those with a score of")
    print("each range, so many were the phoneme that was said:\n")
    print("| score | right | phonemes |\n|---|---|---|")
    for _, _, fields in rows:
        low, high = re.fullmatch(r"score (\d+) to (\d+)", fields[0]).groups()
        right = float(fields[1].split()[1])
        print(f"| {low if low == high else low + ' to ' + high} | {100 * right:.1f} % | "
              f"{fields[2].split()[0]} |")
    print()


def goodness(rows):
    if not rows:
        return
    print("### Whether the sentence was read at all\n")
    print("Area under the curve: how well the probability of a good reading tells right readings,")
    print("with and without pauses, from the kind of the row. Factor: what all scores are multiplied")
    print("by. Recordings that cannot be aligned at all get no score and are not counted.\n")
    print("| voices | recording | area under curve | factor: median | tenth percentile | "
          "ninetieth | readings |")
    print("|---|---|---|---|---|---|---|")
    for speakers, measure, fields in rows:
        rest = " | ".join(fields)
        area = re.search(r"area under curve ([\d.]+)", rest)
        factor = re.search(r"median ([\d.]+), tenth percentile ([\d.]+), ninetieth ([\d.]+)", rest)
        print(f"| {speakers} | {measure.removeprefix('goodness, ')} | {area[1] if area else ''} | "
              f"{' | '.join(factor.groups())} | {fields[-1]} |")
    print()


def grading(rows, orders):
    if rows:
        print("### Grading of readings with one known fault\n")
        print("Voices that were never trained on read short sentences as tutors; the same voices")
        print("read them again with one fault. Medians, before the factor of the section above.\n")
        print("| reading | pronunciation | pitch | timing | intensity | total | readings |")
        print("|---|---|---|---|---|---|---|")
        for _, measure, fields in rows:
            scores = re.findall(r"(\d+)", fields[0])
            print(f"| {measure.removeprefix('grading, ')} | {' | '.join(scores)} | "
                  f"{fields[1].split()[0]} |")
        print()
    for _, _, fields in orders:
        print(f"- {fields[0]}" + (f": {share(fields[1])}" if len(fields) > 1 else ""))
    if orders:
        print()


def commands():
    print("## Commands\n")
    print("```sh")
    print("training/setup")
    print("cmake --preset training && cmake --build build/training")
    print("training/make-models all       # corpora and models, from nothing")
    print("training/leave-one-out         # models without one flite voice each")
    print("training/evaluate --report docs/quality.md")
    print("```")


def git(*arguments):
    return subprocess.run(["git", *arguments], capture_output=True, text=True, check=True).stdout.strip()


def main():
    lines, tables = read(sys.argv[1])
    commit = git("rev-parse", "--short", "HEAD")
    if git("status", "--porcelain", "resources", "training"):
        commit += " with changes"
    date = subprocess.run(["date", "-u", "+%Y-%m-%d"], capture_output=True, text=True, check=True)
    print(INTRODUCTION.format(date=date.stdout.strip(), commit=commit))
    targets(lines)
    languages = list(dict.fromkeys(line[0] for line in lines))
    for language in languages:
        details(language, [line for line in lines if line[0] == language])
        for _, title, table in [table for table in tables if table[0] == language]:
            print(f"### {title[0].upper()}{title[1:]}\n")
            print("```text\n" + "\n".join(table) + "\n```\n")
    commands()


if __name__ == "__main__":
    main()
