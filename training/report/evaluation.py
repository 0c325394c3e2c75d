"""Reads what training/evaluate printed.

A line reads "LANGUAGE, SPEAKERS | MEASURE | FIGURES | ..."; indented lines below it are a table of it.
"""

import re
from dataclasses import dataclass, field

# What the speakers are, by how their name begins, in the order in which pages show them.
HELD_OUT = "held-out espeak"
VIRTUAL = "virtual speakers"
HMM = "HMM voice"
LEFT_OUT = "left-out"
DEVELOPMENT = "development"
SHIPPED = "HMM voice, shipped models"

FEW = 50  # samples below which a figure is marked


@dataclass
class Line:
    language: str
    speakers: str
    measure: str
    fields: list
    table: list = field(default_factory=list)

    @property
    def figures(self):
        return " | ".join(self.fields)

    def number(self, pattern):
        """The first group of `pattern` in the figures, or None; "n of m" is a share."""
        match = re.search(pattern, self.figures)
        if not match:
            return None
        if len(match.groups()) == 2:
            return int(match[1]) / max(int(match[2]), 1)
        return float(match[1])


def read(path):
    lines = []
    with open(path, encoding="utf-8") as file:
        for text in file:
            text = text.rstrip("\n")
            if text.startswith("  ") and lines:
                lines[-1].table.append(text[2:])
                continue
            fields = text.split(" | ")
            if len(fields) < 3:
                continue
            language, _, speakers = fields[0].partition(", ")
            lines.append(Line(language, speakers, fields[1], fields[2:]))
    return lines


def languages(lines):
    return list(dict.fromkeys(line.language for line in lines))


def of_language(lines, language):
    return [line for line in lines if line.language == language]


def is_reported(speakers):
    """Whether figures of these speakers count: settings were not chosen on them, and the models never
    heard them."""
    return speakers not in ("", SHIPPED) and not speakers.startswith(DEVELOPMENT)


def is_foreign_technology(speakers):
    """Whether the voice comes from another synthesiser than the one most was learnt from."""
    return is_reported(speakers) and speakers.startswith((HMM, LEFT_OUT))


def speakers_of(lines, wanted=is_reported):
    """The names of the speakers, the held-out ones first."""
    names = list(dict.fromkeys(line.speakers for line in lines if wanted(line.speakers)))
    order = (HELD_OUT, VIRTUAL, SHIPPED, HMM, LEFT_OUT, DEVELOPMENT)

    def place(name):
        return next((i for i, kind in enumerate(order) if name.startswith(kind)), len(order))

    return sorted(names, key=place)


def find(lines, speakers, measure):
    """The lines of these speakers whose measure is matched as a whole."""
    return [
        line for line in lines if line.speakers == speakers and re.fullmatch(measure, line.measure)
    ]


def samples(figures):
    """How many samples stand behind a figure, 0 where it does not say."""
    match = re.search(r"(\d+) samples", figures)
    return int(match[1]) if match else 0
