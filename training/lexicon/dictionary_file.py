"""What the three lexicon builders share: entries, their checks, writing the dictionary file.

A dictionary is a mapping from words to lists of Pronunciation, the canonical one first. The file
format is described in docs/formats/dictionary.md.
"""

import dataclasses
import hashlib
import pathlib
import subprocess
import sys
import tarfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
WORK = ROOT / "training" / "work" / "lexicon"

MAX_ALTERNATIVES = 3
MAX_SYLLABLES = 12
MAX_LINE = 255


@dataclasses.dataclass(frozen=True)
class Pronunciation:
    """Syllables in the compact notation, one mark for each, and the field the engine skips."""

    syllables: tuple
    marks: tuple
    field: str = "?"

    def line(self):
        starts = []
        place = 0
        for syllable in self.syllables:
            starts.append(str(place))
            place += len(syllable)
        marks = "".join(str(mark) for mark in self.marks)
        return " ".join(
            [self.field, str(len(self.syllables)), marks, *starts, "".join(self.syllables)])


def alternatives(pronunciations, expand):
    """The pronunciations that a word keeps: at most three, none with more than twelve syllables,
    all with as many syllables as the first, no two alike once expanded."""
    kept = []
    phonemes = set()
    for one in pronunciations:
        if not 1 <= len(one.syllables) <= MAX_SYLLABLES:
            continue
        if kept and len(one.syllables) != len(kept[0].syllables):
            continue
        expanded = expand("".join(one.syllables))
        if expanded not in phonemes:
            phonemes.add(expanded)
            kept.append(one)
    return kept[:MAX_ALTERNATIVES]


def write(path, tag, entries):
    """Writes the words that have a pronunciation, in ascending order of their characters."""
    words = sorted(word for word, pronunciations in entries.items() if pronunciations)
    lines = [f"VERAL 3 {tag} {len(words)}"]
    for word in words:
        first, *others = entries[word]
        lines.append(f"{word} {len(entries[word])} {first.line()}")
        lines.extend(one.line() for one in others)
    longest = max(len(line) for line in lines)
    if longest > MAX_LINE:
        sys.exit(f"a line of {longest} characters would be cut at {MAX_LINE}")
    text = "\n".join(lines) + "\n"
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(text.encode())
    print(f"{path}: {len(words)} words, {len(lines) - 1} pronunciations, {path.stat().st_size} "
          f"bytes, sha256 {hashlib.sha256(text.encode()).hexdigest()}")


def npm_package(name, version, sha256):
    """The unpacked package of this version, fetched once into training/work/lexicon."""
    folder = WORK / f"{name}-{version}"
    if folder.is_dir():
        return folder / "package"
    WORK.mkdir(parents=True, exist_ok=True)
    subprocess.run(["npm", "pack", "--silent", f"{name}@{version}"], cwd=WORK, check=True,
                   stdout=subprocess.DEVNULL)
    archive = WORK / f"{name}-{version}.tgz"
    found = hashlib.sha256(archive.read_bytes()).hexdigest()
    if found != sha256:
        sys.exit(f"{archive} has the checksum {found}, not {sha256}")
    with tarfile.open(archive) as tar:
        tar.extractall(folder)
    return folder / "package"
