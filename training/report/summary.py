"""docs/quality.md: what the figures mean for somebody who uses the engine."""

import re

from . import evaluation
from .evaluation import find, is_foreign_technology, samples, speakers_of
from .markdown import NO_FIGURE, code, percent, table
from .wanted import AIMS, HELD_OUT_AIMS, aims_table, missed

INTRODUCTION = """# How good the models are

Every figure here is of synthesised speech: nobody was recorded. `training/evaluate --report docs`
measures and writes this page and [quality-details.md](quality-details.md), which has all the rest; it was
written on {date} from commit {commit}. The models and what they were made of are listed in
`resources/MANIFEST`.
"""

VOICES = """## Whose voices

| voices | what they are |
|---|---|
| held-out espeak | ten variants of espeak-ng that were never trained on, reading sentences that were not either. Most of the training speech comes from this synthesiser: its variants differ in pitch, formants and voice quality, not in how a phoneme is made. An upper bound |
| flite, festival | voices cut together from recordings of one speaker each, by models that never heard that speaker in any form (left out). The nearest thing here to a new person |
| HMM voice | another technology again, a statistical model of a speaker's recordings, by models that never heard her |
| virtual speakers | held-out espeak voices, their formants bent and their sound roughened, each sentence another way |

The factor of left-out voices comes from the shipped goodness model, which heard rms, kal16 and awb read right
and wrong sentences, but never slt or the HMM voice.

Chinese and Japanese have no second synthesiser here. Where English is measured on speakers who were left
out, **these two stay with held-out espeak voices and virtual speakers made of them**, which says less. How
scores of people relate to the judgement of teachers is not known from any of this; faults are made, too (the
text is made to expect another phoneme than was said), and learners err in softer ways.
"""

MEANING = """## What a score of 60 means

The score of a phoneme is how probable the classifier finds it that the phoneme was said which should have
been: 100 for certainty, 25 points less for every power of ten. **60 stands for 1 in 40**; of a phoneme that is
rare in the language less is asked. Take a score under 60 as "listen to this one again", not as "wrong". At the
end all scores of a reading are multiplied by a factor from 0 to 1, which falls when the sentence was not
what was read."""

CAUGHT = r"caught ([\d.]+)"
UNDER_60 = r"under 60 ([\d.]+)"
TOP_1 = r"top-1 ([\d.]+)"

FACTOR_NOTE = """The factor is what all scores of a reading are multiplied by: 1 leaves them, .5 halves them. The first
figure is the median of right readings, the second what nine in ten of them keep at least."""


def title_of(language):
    """How the columns of a language call its speakers."""

    def title(speakers):
        if language != "English" and speakers == evaluation.HELD_OUT:
            return "held-out espeak (for want of another synthesiser)"
        if language != "English" and speakers == evaluation.VIRTUAL:
            return "virtual speakers of espeak"
        return speakers

    return title


def column_of(language):
    """The same, short enough to stand above a column."""
    title = title_of(language)
    return lambda speakers: title(speakers).removeprefix(evaluation.LEFT_OUT + " ")


def one_in(share):
    return f"{percent(share)}, 1 in {round(1 / share)}" if share > 0 else "none"


def calibration(lines):
    """Of phonemes scored under 60, and of the others: how many were the ones said."""
    low, high = [0.0, 0], [0.0, 0]
    for line in find(lines, evaluation.HELD_OUT, "calibration"):
        first = int(re.match(r"score (\d+)", line.fields[0])[1])
        count = int(line.fields[2].split()[0])
        bin_ = low if first < 60 else high
        bin_[0] += line.number(r"right ([\d.]+)") * count
        bin_[1] += count
    return [right / count if count else None for right, count in (low, high)]


def meaning(lines):
    print(MEANING)
    english = evaluation.of_language(lines, "English")
    low, high = calibration(english)
    if low is not None and high is not None:
        print("\nWith held-out espeak voices and one phoneme in six exchanged for another, of English phonemes")
        print(f"under 60 {percent(1 - low)} were wrong indeed, of those from 60 on {percent(1 - high)}.")
    print()


def note_of(speakers):
    if speakers.startswith(evaluation.DEVELOPMENT):
        return " (settings were chosen on this voice)"
    if speakers == evaluation.SHIPPED:
        return " (they heard her through flite)"
    return ""


def right_phonemes(lines):
    print("## How often a right phoneme falls under 60\n")
    print("And how often it is the one that is most probable to the classifier, of all phonemes, of plosives that")
    print("end a word and of phonemes shorter than 40 ms; how well scores tell phonemes that were exchanged for")
    print("another of their kind (area under the curve); the factor of right readings (median, and what nine in")
    print("ten keep); and how often the right one of eight sentences is found that differ in one word.\n")
    rows = []
    for language in evaluation.languages(lines):
        own = evaluation.of_language(lines, language)
        for speakers in speakers_of(own, bool):
            if not find(own, speakers, "right phonemes"):
                continue

            def first(measure, pattern, shown="{}".format):
                for line in find(own, speakers, measure):
                    match = re.search(pattern, line.figures)
                    if match:
                        return shown(match[1])
                return NO_FIGURE

            def share(text):
                return f"{float(text):.2f}"

            clean = find(own, speakers, "condition, clean")
            rows.append([
                f"{language}: {title_of(language)(speakers)}{note_of(speakers)}",
                first("right phonemes", UNDER_60, lambda text: one_in(float(text))),
                first("right phonemes", TOP_1, share),
                first("right plosives at the end of a word", TOP_1, share),
                first("right phonemes under 40 ms", TOP_1, share),
                first("substituted phonemes, clean", r"area under curve ([\d.]+)", share),
                factor(clean[0]) if clean else NO_FIGURE,
                first("right sentence of 8, one word changed", r"(\d+ of \d+)"),
            ])
    print("\n".join(table(["voices", "right ones under 60", "on top", "final plosives", "under 40 ms",
                           "exchanged", "factor", "sentence of 8"], rows)))


def unheard(lines):
    """Errors that are caught less than three times in ten, phonemes that others pass for."""
    print("## What the engine can't hear\n")
    for language in evaluation.languages(lines):
        own = evaluation.of_language(lines, language)
        groups = speakers_of(own, is_foreign_technology) or speakers_of(own)
        groups = [name for name in groups if find(own, name, "learner's error")]
        if not groups:
            continue
        weak = {}
        fooled = set()
        for name in groups:
            for line in find(own, name, "learner's error"):
                caught = line.number(CAUGHT)
                if samples(line.figures) >= evaluation.FEW and caught < 0.30:
                    weak.setdefault(line.fields[0], []).append(caught)
            for line in find(own, name, "expected phoneme"):
                if samples(line.figures) >= evaluation.FEW and (
                        line.number(r"another said: median ([\d.]+)") >= 50
                        or line.number(r"full marks ([\d.]+)") > 0.10):
                    fooled.add(line.fields[0])
        of = " and ".join([", ".join(map(title_of(language), groups[:-1]))] * (len(groups) > 1)
                          + [title_of(language)(groups[-1])])
        if weak:
            worst = sorted(weak.items(), key=lambda one: min(one[1]))
            print(f"- **{language}** ({of}): caught less than three times in ten with some of these voices, in the worst case: "
                  + "; ".join(f"{name}, {percent(min(caught))}" for name, caught in worst)
                  + ".")
        else:
            print(f"- **{language}** ({of}): every error of learners that is listed below and has "
                  f"{evaluation.FEW} samples is caught at least three times in ten.")
        if fooled:
            print(f"- {language}: with these expected, another phoneme said in their place scores 50 or more "
                  "in half of all cases, or full marks in one of ten: "
                  + ", ".join(map(code, sorted(fooled))) + ".")
    print()


def wanted(lines):
    print("## Wanted and reached\n")
    print("Bold is missed. The first table of a language is of all voices that the models never heard, the")
    print("second of held-out espeak voices alone. Where a figure is the worst of many, the one is named.\n")
    for language in evaluation.languages(lines):
        own = evaluation.of_language(lines, language)
        names = speakers_of(own)
        print(f"### {language}\n")
        for aims, groups in ((AIMS, names), (HELD_OUT_AIMS, [evaluation.HELD_OUT])):
            rows = aims_table(own, language, aims, groups, column_of(language))
            if not rows:
                continue
            print("\n".join(rows))
            count, missing = missed(own, language, aims, groups)
            print(f"{count - missing} of {count} figures are reached.\n")
    if not speakers_of(lines, is_foreign_technology):
        print("No models that were made without a speaker were there to be measured (`training/leave-one-out`")
        print("makes them).\n")


def learners_errors(lines):
    print("## Errors of learners\n")
    print("How many are caught, that is, scored under 60. Each stands as \"what should be said > what is said\" in the")
    print("symbols of the language's set ([dictionary.md](formats/dictionary.md)). * has fewer than 50 samples.")
    print("A dropped consonant was cut out of the recording.\n")
    for language in evaluation.languages(lines):
        own = evaluation.of_language(lines, language)
        groups = [name for name in speakers_of(own) if find(own, name, "learner's error")]
        if not groups:
            continue
        print(f"### {language}\n")
        cells = {}
        for name in groups:
            for line in find(own, name, "learner's error"):
                few = samples(line.figures) < evaluation.FEW
                caught = f"{line.number(CAUGHT):.2f}" + "*" * few
                cells.setdefault(line.fields[0], {})[name] = caught
        rows = [[code_pair(error), *(found.get(name, NO_FIGURE) for name in groups)]
                for error, found in cells.items()]
        print("\n".join(table(["said instead", *map(column_of(language), groups)], rows)))


def code_pair(error):
    """"r said as l (r > l)", its symbols as code."""
    match = re.fullmatch(r"(.*) \((.) > (.)\)", error)
    return f"{match[1]}, {code(match[2])} > {code(match[3])}" if match else error


def by_measure(lines, measure, heading, cell_of, name_of):
    """For each language a table with a row a measure and a column a group of speakers."""
    for language in evaluation.languages(lines):
        own = evaluation.of_language(lines, language)
        groups = [name for name in speakers_of(own) if find(own, name, measure)]
        if not groups:
            continue
        print(f"### {language}\n")
        cells = {}
        for name in groups:
            for line in find(own, name, measure):
                cells.setdefault(name_of(line), {})[name] = cell_of(line)
        rows = [[what, *(found.get(name, NO_FIGURE) for name in groups)]
                for what, found in cells.items()]
        print("\n".join(table([heading, *map(column_of(language), groups)], rows)))


def factor(line):
    median = line.number(r"factor: median ([\d.]+)")
    tenth = line.number(r"tenth percentile ([\d.]+)")
    return f"{median:.2f}, {tenth:.2f}"


def conditions(lines):
    if not any(line.measure.startswith("condition, ") for line in lines):
        return
    print("## By condition of the recording\n")
    for what, cell_of in ((FACTOR_NOTE, factor),
                          ("The share of right phonemes that fall under 60.",
                           lambda line: percent(line.number(UNDER_60)))):
        print(what + "\n")
        by_measure(lines, r"condition, .*", "condition", cell_of,
                   lambda line: line.measure.removeprefix("condition, "))


LENGTHS = r"goodness, .*, (1 word|\d+ to \d+ (words|phonemes))"
SHARES = r"goodness, (\d+ of \d+ words wrong.*|cut off, \d+ of .*)"


def sentences(lines):
    if any(re.fullmatch(LENGTHS, line.measure) for line in lines):
        print("## By length of the text\n")
        print(FACTOR_NOTE.replace("right readings", "the readings of the row") + "\n")
        by_measure(lines, LENGTHS, "reading", factor,
                   lambda line: line.measure.removeprefix("goodness, "))
    if any(re.fullmatch(SHARES, line.measure) for line in lines):
        print("## By how much of the sentence is wrong\n")
        print("Median of the factor, and between what eight of ten readings lie.\n")
        by_measure(lines, SHARES, "reading", spread,
                   lambda line: line.measure.removeprefix("goodness, "))


def spread(line):
    high = line.number(r"ninetieth ([\d.]+)")
    median, tenth = factor(line).split(", ")
    return f"{median} ({tenth} to {high:.2f})" if high is not None else median


def tones(lines):
    rows = []
    for line in lines:
        if not line.measure.startswith("tones, "):
            continue
        syllables = int(re.search(r"(\d+) syllables", line.figures)[1])
        right = line.number(r"right ([\d.]+)")
        rows.append([line.measure.removeprefix("tones, "), f"{right:.3f}",
                     f"{syllables}{'*' if syllables < evaluation.FEW else ''}"])
    if rows:
        print("## Chinese tones\n")
        print("Held-out espeak voices, for want of another synthesiser. The pitch tracker hears nothing below")
        print("75 Hz. * has fewer than 50 samples.\n")
        print("\n".join(table(["syllables", "right", "how many"], rows)))


def write(lines, date, commit):
    """Prints the page."""
    print(INTRODUCTION.format(date=date, commit=commit))
    meaning(lines)
    right_phonemes(lines)
    unheard(lines)
    print(VOICES)
    wanted(lines)
    learners_errors(lines)
    conditions(lines)
    sentences(lines)
    tones(lines)
