"""The words of ICU's Chinese and Japanese break dictionary, listed by ListCjkWords.cpp."""

import hashlib
import pathlib
import shlex
import subprocess
import sys

from dictionary_file import WORK

# Of the list that ICU 72.1 gives. Another version makes other dictionaries.
SHA256 = "03a227d01b5f612487416448f36ab795f54843c551935e0b1ddc6cd20661a952"


def load():
    """Words to (cost, simplified form)."""
    WORK.mkdir(parents=True, exist_ok=True)
    program = WORK / "list-cjk-words"
    source = pathlib.Path(__file__).with_name("ListCjkWords.cpp")
    flags = subprocess.run(["pkg-config", "--cflags", "--libs", "icu-i18n", "icu-uc"], check=True,
                           capture_output=True, text=True).stdout
    subprocess.run(["c++", "-std=c++20", "-O1", source, "-o", program, *shlex.split(flags)],
                   check=True)
    listing = subprocess.run([program], check=True, capture_output=True).stdout
    if hashlib.sha256(listing).hexdigest() != SHA256:
        print("warning: these are not the words of ICU 72.1", file=sys.stderr)
    words = {}
    for line in listing.decode().splitlines():
        word, cost, simplified = line.split("\t")
        words[word] = (int(cost), simplified)
    return words
