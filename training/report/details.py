"""docs/quality-details.md: every figure that training/evaluate printed."""

import pathlib
import re
from collections import defaultdict

from . import evaluation
from .evaluation import FEW, samples
from .markdown import NO_FIGURE, code, table

INTRODUCTION = """# All figures of the models

What stands behind [quality.md](quality.md), which says what the words mean and whose voices these are.
Written by `training/evaluate --report docs` on {date} from commit {commit}; every figure is of
synthesised speech.

- True phoneme times are the synthesiser's own. What it calls the start of a phoneme is a convention,
  which the models have learnt with the rest. Those of flite's, festival's and the HMM voice are what the
  model of the first round finds, which heard espeak-ng alone: their frames and boundaries are compared
  with that.
- Augmented means: other vocal tracts, rooms, microphones, noises and levels were laid over the
  speech, as in training. Strongly augmented: worse than anything in training, all at once (vocal
  tracts beyond its range, a band of 4 kHz, reverb, noise at 10 dB).
- Settings of the training were chosen on the voices that are called development here and, before there
  were such voices, on held-out espeak; the others chose nothing.
- The shipped models on the HMM voice: they heard recordings of its speaker, by another synthesiser.

An accuracy is top-1 or top-3: the right phoneme has the highest score, or one of the three highest.
F1 is macro-averaged: each phoneme counts alike. Phonemes are written in the symbols of the language's
set ([dictionary.md](formats/dictionary.md)).
"""


def share(text):
    match = re.fullmatch(r"(\d+) of (\d+)", text)
    return f"{text} ({100 * int(match[1]) / max(int(match[2]), 1):.1f} %)" if match else text


KINDS = ("confusion", "calibration", "voice", "learner's error", "expected phoneme")


def kind_of(measure):
    first = measure.split(", ")[0]
    if measure == "grading, order":
        return "order"
    return first if first in KINDS or first in ("grading", "goodness", "condition") else None


def language_page(language, lines):
    print(f"## {language}\n")
    groups = defaultdict(list)
    for line in lines:
        groups[kind_of(line.measure)].append(line)
    general(groups[None])
    expected(groups["expected phoneme"])
    errors(groups["learner's error"])
    conditions(groups["condition"])
    goodness(groups["goodness"])
    voices(groups["voice"])
    confusions(groups["confusion"])
    calibration(groups["calibration"])
    grading(groups["grading"], groups["order"])
    for line in lines:
        if line.table:
            print(f"### {line.speakers[0].upper()}{line.speakers[1:]}, {line.measure}\n")
            print("```text\n" + "\n".join(line.table) + "\n```\n")


def by_speakers(lines):
    groups = defaultdict(list)
    for line in lines:
        groups[line.speakers].append(line)
    return groups.items()


def general(lines):
    for speakers, own in by_speakers(lines):
        print(f"### {speakers[0].upper()}{speakers[1:]}\n")
        print("\n".join(table(["measure", "figures"],
                              [[line.measure, ", ".join(line.fields)] for line in own])))


def numbers(text, count):
    """The numbers of a field, of which there should be `count`; only the last is there where nothing
    was measured."""
    found = re.findall(r"(?<= )\d+(?:\.\d+)?(?= samples|,|$)", re.sub("under 60", "under", text))
    return [NO_FIGURE] * (count - len(found)) + found


def expected(lines):
    if not lines:
        return
    print("### Each phoneme as the expected one\n")
    print("Another phoneme was said in its place, each of the others of the set equally often; and it was said")
    print(f"itself. * has fewer than {FEW} samples. Sounds that a corpus has too few recordings of are not among")
    print("the others.\n")
    for speakers, own in by_speakers(lines):
        rows = []
        for line in own:
            other, itself = line.fields[1], line.fields[2]
            few = min(samples(other), samples(itself)) < FEW
            rows.append([code(line.fields[0]) + "*" * few, *numbers(other, 4), *numbers(itself, 3)])
        print(f"{speakers[0].upper()}{speakers[1:]}:\n")
        print("\n".join(table(
            ["expected", "another said: median", "full marks", "under 60", "samples",
             "said itself: median", "under 60", "samples"], rows)))


def area(line):
    match = re.search(r"area under curve ([\d.]+)", line.figures)
    return match[1] if match else NO_FIGURE


def errors(lines):
    if not lines:
        return
    print("### Errors of learners\n")
    print(f"Caught means scored under 60. * has fewer than {FEW} samples.\n")
    for speakers, own in by_speakers(lines):
        rows = [[line.fields[0] + "*" * (samples(line.figures) < FEW),
                 line.fields[1].split()[1], area(line), samples(line.figures)] for line in own]
        print(f"{speakers[0].upper()}{speakers[1:]}:\n")
        print("\n".join(table(["error (expected > said)", "caught", "area under curve", "samples"], rows)))


def conditions(lines):
    if not lines:
        return
    print("### Conditions\n")
    print("Right readings, one fault of the recording at a time.\n")
    for speakers, own in by_speakers(lines):
        rows = []
        for line in own:
            rows.append([
                line.measure.removeprefix("condition, "),
                *(re.search(pattern, line.figures)[1] for pattern in (
                    r"top-1 ([\d.]+)", r"under 60 ([\d.]+)", r"median ([\d.]+)",
                    r"tenth percentile ([\d.]+)", r"sentence of 8 (\d+ of \d+)", r"(\d+) phonemes")),
            ])
        print(f"{speakers[0].upper()}{speakers[1:]}:\n")
        print("\n".join(table(["condition", "top-1", "right ones under 60", "factor: median",
                               "tenth percentile", "right sentence of 8, one word changed", "phonemes"],
                              rows)))


def voices(lines):
    if not lines:
        return
    print("### Each held-out voice, clean, by the phoneme model\n")
    rows = [[line.fields[0], *(re.search(r"[\d.]+$", field)[0] for field in line.fields[1:6]),
             line.fields[6].split()[0]] for line in lines]
    print("\n".join(table(["voice", "top-1", "top-3", "boundaries within 20 ms",
                           "substitutions: area under curve", "right phonemes under 60", "phonemes"],
                          rows)))


def confusions(lines):
    if not lines:
        return
    print("### What is taken for what most often\n")
    rows = []
    for line in lines:
        truth, said = re.fullmatch(r"(.) taken for (.)", line.fields[0]).groups()
        rows.append([code(truth), code(said), share(line.fields[1])])
    print("\n".join(table(["phoneme", "taken for", "how often"], rows)))


def calibration(lines):
    if not lines:
        return
    print("### How far a phoneme score can be trusted\n")
    print("About one phoneme in six was exchanged for another of its kind. Of those with a score of")
    print("each range, so many were the phoneme that was said:\n")
    rows = []
    for line in lines:
        low, high = re.fullmatch(r"score (\d+) to (\d+)", line.fields[0]).groups()
        right = float(line.fields[1].split()[1])
        rows.append([low if low == high else f"{low} to {high}", f"{100 * right:.1f} %",
                     line.fields[2].split()[0]])
    print("\n".join(table(["score", "right", "phonemes"], rows)))


def goodness(lines):
    if not lines:
        return
    print("### Whether the sentence was read at all\n")
    print("Area under the curve: how well the probability of a good reading tells right readings,")
    print("with and without pauses, from the kind of the row. Factor: what all scores are multiplied")
    print("by. Recordings that cannot be aligned at all get no score and are not counted.\n")
    rows = []
    for line in lines:
        factor = re.search(r"median ([\d.]+), tenth percentile ([\d.]+)(?:, ninetieth ([\d.]+))?",
                           line.figures)
        rows.append([line.speakers, line.measure.removeprefix("goodness, "), area(line),
                     *((value or "") for value in (factor.groups() if factor else ("", "", ""))),
                     line.fields[-1]])
    print("\n".join(table(["voices", "recording", "area under curve", "factor: median",
                           "tenth percentile", "ninetieth", "readings"], rows)))


def grading(lines, orders):
    if lines:
        print("### Grading of readings with one known fault\n")
        print("Voices that were never trained on read short sentences as tutors; the same voices")
        print("read them again with one fault. Medians, before the factor of the section above.\n")
        rows = [[line.measure.removeprefix("grading, "), *re.findall(r"(\d+)", line.fields[0]),
                 line.fields[1].split()[0]] for line in lines]
        print("\n".join(table(["reading", "pronunciation", "pitch", "timing", "intensity", "total",
                               "readings"], rows)))
    for line in orders:
        print(f"- {line.fields[0]}" + (f": {share(line.fields[1])}" if len(line.fields) > 1 else ""))
    if orders:
        print()


def tried():
    text = pathlib.Path(__file__).parent.with_name("tried.md").read_text(encoding="utf-8")
    print(re.sub("^#", "##", text.strip(), flags=re.MULTILINE) + "\n")


def commands():
    print("## Commands\n")
    print("```sh")
    print("training/setup")
    print("cmake --preset training && cmake --build build/training")
    print("training/make-models all       # corpora and models, from nothing")
    print("training/leave-one-out         # models without one speaker each")
    print("training/evaluate --report docs")
    print("```")


def write(lines, date, commit):
    """Prints the page."""
    print(INTRODUCTION.format(date=date, commit=commit))
    for language in evaluation.languages(lines):
        language_page(language, evaluation.of_language(lines, language))
    tried()
    commands()
