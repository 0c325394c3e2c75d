"""What the figures should reach, and whether they do."""

import re
from dataclasses import dataclass

from . import evaluation
from .markdown import NO_FIGURE, code, table


@dataclass
class Reached:
    text: str
    good: bool


@dataclass
class Aim:
    label: str
    wanted: str
    measure: object  # of lines and speakers: Reached, or None where it was not measured
    applies: object = staticmethod(lambda language, speakers: True)


def at_least(bound):
    return lambda value: value >= bound


def at_most(bound):
    return lambda value: value <= bound


def figure(measure, pattern, good, digits=3):
    """One figure of one line."""

    def of(lines, speakers):
        for line in evaluation.find(lines, speakers, measure):
            value = line.number(pattern)
            if value is not None:
                of_trials = re.search(r"\d+ of \d+", line.figures) if " of " in pattern else None
                return Reached(of_trials[0] if of_trials else f"{value:.{digits}f}", good(value))
        return None

    return of


def worst(measure, pattern, good, choose, name, enough=0, digits=3):
    """The worst of many lines, and which one it is."""

    def of(lines, speakers):
        values = [
            (line.number(pattern), line)
            for line in evaluation.find(lines, speakers, measure)
            if line.number(pattern) is not None
            and (not enough or evaluation.samples(line.figures) >= enough)
        ]
        if not values:
            return None
        value, line = choose(values, key=lambda pair: pair[0])
        return Reached(f"{value:.{digits}f}, {name(line)}", good(value))

    return of


def condition(line):
    return line.measure.removeprefix("condition, ")


def error(line):
    return line.fields[0].split(" (")[0]


def symbol(line):
    return code(line.fields[0])


def foreign(_language, speakers):
    return evaluation.is_foreign_technology(speakers)


def foreign_or_virtual(_language, speakers):
    return foreign(_language, speakers) or speakers == evaluation.VIRTUAL


FACTOR = r"factor: median ([\d.]+)"
TENTH = r"tenth percentile ([\d.]+)"
NOISE_5_DB = r"condition, (?:white|babble) 5 dB"
LONG = r"goodness, right reading, \d+ to \d+ phonemes"

# For every group of speakers that the models never heard. Chinese and Japanese have espeak-ng alone.
AIMS = [
    Aim("right phonemes on top", "at least .75",
        figure("right phonemes", r"top-1 ([\d.]+)", at_least(0.75)), foreign_or_virtual),
    Aim("right phonemes among the three highest", "at least .94",
        figure("right phonemes", r"top-3 ([\d.]+)", at_least(0.94)), foreign_or_virtual),
    Aim("right phonemes scored under 60", "at most .03",
        figure("right phonemes", r"under 60 ([\d.]+)", at_most(0.03))),
    Aim("substituted phonemes: area under the curve", "at least .90",
        figure("substituted phonemes, clean", r"area under curve ([\d.]+)", at_least(0.90)),
        foreign_or_virtual),
    Aim("learner's error that is caught least", "at least .30",
        worst("learner's error", r"caught ([\d.]+)", at_least(0.30), min, error, evaluation.FEW)),
    Aim("phoneme that others pass for most: their median score", "below 50",
        worst("expected phoneme", r"another said: median ([\d.]+)", lambda v: v < 50, max, symbol,
              evaluation.FEW, 0)),
    Aim("phoneme that others get full marks for most: share of them", "at most .10",
        worst("expected phoneme", r"full marks ([\d.]+)", at_most(0.10), max, symbol,
              evaluation.FEW)),
    Aim("factor of right readings, clean: median", "at least .98",
        figure("condition, clean", FACTOR, at_least(0.98))),
    Aim("the same: tenth percentile", "at least .90",
        figure("condition, clean", TENTH, at_least(0.90))),
    Aim("factor in babble at 20 dB: median", "at least .90",
        figure("condition, babble 20 dB", FACTOR, at_least(0.90))),
    Aim("the same: tenth percentile", "at least .80",
        figure("condition, babble 20 dB", TENTH, at_least(0.80))),
    Aim("factor under any condition but 5 dB: lowest median", "at least .90",
        worst(r"condition, (?!white 5 |babble 5 ).*", FACTOR, at_least(0.90), min, condition)),
    Aim("factor at 5 dB: lowest median", "at least .70",
        worst(NOISE_5_DB, FACTOR, at_least(0.70), min, condition)),
    Aim("right sentence of 8, one word changed", "39 of 40",
        figure("right sentence of 8, one word changed", r"(\d+) of (\d+)", at_least(0.975))),
    Aim("the same in babble at 20 dB", "30 of 32",
        figure("condition, babble 20 dB", r"sentence of 8 (\d+) of (\d+)", at_least(30 / 32))),
    Aim("the same in white noise at 10 dB", "30 of 32",
        figure("condition, white 10 dB", r"sentence of 8 (\d+) of (\d+)", at_least(30 / 32))),
    Aim("factor of right readings of 100 to 500 phonemes: lowest median", "at least .95",
        worst(LONG, FACTOR, at_least(0.95), min, lambda line: line.measure.split(", ")[2])),
    Aim("the same: lowest tenth percentile", "at least .85",
        worst(LONG, TENTH, at_least(0.85), min, lambda line: line.measure.split(", ")[2])),
    Aim("factor of a right one-word text, median", "at least .90",
        figure(r"goodness, right reading, 1 word", FACTOR, at_least(0.90))),
    Aim("factor of a wrong one-word text, median", "at most .50",
        figure(r"goodness, words replaced, 1 word", FACTOR, at_most(0.50))),
    Aim("factor with one word of ten replaced, median", "at least .85",
        figure(r"goodness, 1 of 10 words wrong, words replaced", FACTOR, at_least(0.85))),
    Aim("factor with one word of five replaced, median", ".6 to .9",
        figure(r"goodness, 1 of 5 words wrong, words replaced", FACTOR,
               lambda v: 0.6 <= v <= 0.9)),
    Aim("factor with half of the words replaced, median", "at most .50",
        figure(r"goodness, 5 of 10 words wrong, words replaced", FACTOR, at_most(0.50))),
    Aim("factor with all words replaced, median", "at most .30",
        figure(r"goodness, 10 of 10 words wrong, words replaced", FACTOR, at_most(0.30))),
]


def english(language, _speakers):
    return language == "English"


def others(language, _speakers):
    return language != "English"


def chinese(language, _speakers):
    return language == "Chinese"


# For the synthesiser that most was learnt from, its voices held out.
HELD_OUT_AIMS = [
    Aim("frames of the right phoneme, augmented (how a sound is divided is a convention)",
        "at least .88",
        figure("frame phoneme accuracy, augmented", r"top-1 ([\d.]+)", at_least(0.88))),
    Aim("aligned phonemes by frames, augmented: top-1", "at least .89",
        figure("aligned phonemes by frames, augmented", r"top-1 ([\d.]+)", at_least(0.89)), english),
    Aim("aligned phonemes by frames, augmented: top-3", "at least .97",
        figure("aligned phonemes by frames, augmented", r"top-3 ([\d.]+)", at_least(0.97)), english),
    Aim("aligned phonemes by the phoneme model, augmented: top-1", "at least .89",
        figure("aligned phonemes by the phoneme model, augmented", r"top-1 ([\d.]+)",
               at_least(0.89)), english),
    Aim("aligned phonemes by the phoneme model, augmented: top-1", "at least .88",
        figure("aligned phonemes by the phoneme model, augmented", r"top-1 ([\d.]+)",
               at_least(0.88)), others),
    Aim("aligned phonemes by the phoneme model, augmented: top-3", "at least .97",
        figure("aligned phonemes by the phoneme model, augmented", r"top-3 ([\d.]+)",
               at_least(0.97))),
    Aim("boundaries within 20 ms, clean", "at least .96",
        figure("boundaries, clean", r"within 20 ms ([\d.]+)", at_least(0.96)), english),
    Aim("boundaries within 20 ms, clean", "at least .92",
        figure("boundaries, clean", r"within 20 ms ([\d.]+)", at_least(0.92)), others),
    Aim("boundaries, clean: median error in ms", "at most 3.5",
        figure("boundaries, clean", r"median ([\d.]+) ms", at_most(3.5), 2), english),
    Aim("right sentence of 8, unrelated ones", "all",
        figure("right sentence of 8, unrelated", r"(\d+) of (\d+)", at_least(1.0))),
    Aim("substituted phonemes, clean: area under the curve", "at least .95",
        figure("substituted phonemes, clean", r"area under curve ([\d.]+)", at_least(0.95))),
    Aim("substituted phonemes, augmented: area under the curve", "at least .95",
        figure("substituted phonemes, augmented", r"area under curve ([\d.]+)", at_least(0.95))),
    Aim("right phonemes scored under 60, clean", "at most .015",
        figure("substituted phonemes, clean", r"under 60 ([\d.]+)", at_most(0.015))),
    Aim("right phonemes scored under 60, augmented", "at most .015",
        figure("substituted phonemes, augmented", r"under 60 ([\d.]+)", at_most(0.015))),
    Aim("annotation without a sentence, clean: phoneme error rate", "at most .25",
        figure("annotation, clean", r"phoneme error rate ([\d.]+)", at_most(0.25))),
    Aim("right readings from unrelated sentences: area under the curve", "at least .995",
        figure("goodness, unrelated sentence", r"area under curve ([\d.]+)", at_least(0.995), 4)),
    Aim("right readings from those with one third of the words changed", "at least .95",
        figure("goodness, one third of the words changed", r"area under curve ([\d.]+)",
               at_least(0.95), 4)),
    Aim("right readings from those cut off halfway", "at least .97",
        figure("goodness, cut off halfway", r"area under curve ([\d.]+)", at_least(0.97), 4)),
    Aim("factor of right readings, augmented: median", "at least .95",
        figure("goodness, right reading", FACTOR, at_least(0.95))),
    Aim("the same: tenth percentile", "at least .85",
        figure("goodness, right reading", TENTH, at_least(0.85))),
    Aim("factor of unrelated sentences: median", "at most .35",
        figure("goodness, unrelated sentence", FACTOR, at_most(0.35))),
    Aim("tones, clean", "at least .95",
        figure("tones, clean", r"right ([\d.]+)", at_least(0.95)), chinese),
    Aim("tones of voices of 85 to 110 Hz", "at least .93",
        figure("tones, clean, mean pitch 85 to 110 Hz", r"right ([\d.]+)", at_least(0.93)), chinese),
]


def shown(reached):
    if reached is None:
        return NO_FIGURE
    return reached.text if reached.good else f"**{reached.text}**"


def aims_table(lines, language, aims, speakers, title_of):
    """A row an aim, a column a group of speakers; what is missed is bold. Nothing where nothing was
    measured."""
    rows = []
    for aim in aims:
        cells = [
            aim.measure(lines, name) if aim.applies(language, name) else None for name in speakers
        ]
        if any(cells):
            rows.append([aim.label, aim.wanted, *map(shown, cells)])
    return table(["figure", "wanted", *map(title_of, speakers)], rows) if rows else []


def missed(lines, language, aims, speakers):
    """How many aims were measured of these speakers, and how many of them were missed."""
    cells = [
        aim.measure(lines, name)
        for aim in aims
        for name in speakers
        if aim.applies(language, name)
    ]
    measured = [reached for reached in cells if reached]
    return len(measured), sum(not reached.good for reached in measured)
