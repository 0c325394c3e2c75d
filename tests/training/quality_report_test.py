#!/usr/bin/env python3
"""Tests the pages of training/quality_report.py on evaluations written by hand."""

import contextlib
import io
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

TRAINING = Path(__file__).resolve().parents[2] / "training"
sys.path.insert(0, str(TRAINING))

from report import details, evaluation, summary, wanted  # noqa: E402

ENGLISH = """\
English, held-out espeak | right phonemes | top-1 0.9324 | top-3 0.9888 | under 60 0.0080 | median score 99 | 15957 phonemes
English, held-out espeak | calibration | score 0 to 0 | right 0.1000 | 100 phonemes
English, held-out espeak | calibration | score 40 to 59 | right 0.3000 | 100 phonemes
English, held-out espeak | calibration | score 60 to 99 | right 0.9000 | 100 phonemes
English, held-out espeak | calibration | score 100 to 100 | right 0.9900 | 200 phonemes
English, HMM voice, shipped models | right phonemes | top-1 0.8000 | top-3 0.9500 | under 60 0.0100 | median score 97 | 900 phonemes
English, left-out flite rms | right phonemes | top-1 0.7600 | top-3 0.9100 | under 60 0.0500 | median score 97 | 900 phonemes
English, left-out flite rms | right plosives at the end of a word | top-1 0.5314 | top-3 0.8954 | under 60 0.0628 | median score 87 | 239 phonemes
English, left-out flite rms | right phonemes under 40 ms | top-1 0.4922 | top-3 0.8189 | under 60 0.0698 | median score 89 | 2678 phonemes
English, left-out flite rms | substituted phonemes, clean | area under curve 0.9064 | right ones under 60 0.0275 | 7120 right, 1714 wrong
English, left-out flite rms | right sentence of 8, one word changed | 78 of 80
English, left-out flite rms | learner's error | th said as f (T > f) | caught 0.290 | area under curve 0.811 | 147 samples
English, left-out flite rms | learner's error | r said as l (r > l) | caught 0.813 | area under curve 0.990 | 150 samples
English, left-out flite rms | learner's error | jh said as zh (J > Z) | caught 0.000 | area under curve 0.533 | 5 samples
English, left-out flite rms | learner's error | final g said as k (g > k) | caught 0.000 | 60 samples
English, left-out flite rms | expected phoneme | N | another said: median 20, full marks 0.000, under 60 1.000, 90 samples | said: 0 samples
English, left-out flite rms | expected phoneme | Z | another said: median 100, full marks 0.814, under 60 0.007, 140 samples | said: median 99, under 60 0.250, 12 samples
English, left-out flite rms | expected phoneme | T | another said: median 50, full marks 0.036, under 60 0.643, 140 samples | said: median 98, under 60 0.010, 118 samples
English, left-out flite rms | expected phoneme | s | another said: median 29, full marks 0.000, under 60 0.850, 140 samples | said: median 97, under 60 0.020, 513 samples
English, left-out flite rms | condition, clean | top-1 0.7243 | under 60 0.0300 | factor: median 0.995, tenth percentile 0.856 | right sentence of 8 39 of 40 | 1567 phonemes
English, left-out flite rms | condition, reverb | top-1 0.4135 | under 60 0.1774 | factor: median 0.491, tenth percentile 0.175 | right sentence of 8 33 of 40 | 1567 phonemes
English, left-out flite rms | condition, babble 5 dB | top-1 0.2719 | under 60 0.3363 | factor: median 0.136, tenth percentile 0.089 | right sentence of 8 8 of 40 | 1567 phonemes
English, left-out flite rms | goodness, right reading, 100 to 200 phonemes | factor: median 0.970, tenth percentile 0.800, ninetieth 1.000 | 60 readings
English, left-out flite rms | goodness, 1 of 5 words wrong, words replaced | factor: median 0.950, tenth percentile 0.500, ninetieth 1.000 | 60 readings
English | grading, flat pitch | pronunciation 98, pitch 75, timing 100, intensity 100, total 93 | 28 readings
English, development flite awb | right phonemes | top-1 0.6000 | top-3 0.8000 | under 60 0.2000 | median score 90 | 900 phonemes
"""

CHINESE = """\
Chinese, held-out espeak | right phonemes | top-1 0.9700 | top-3 0.9990 | under 60 0.0000 | median score 99 | 9078 phonemes
Chinese, held-out espeak | tones, clean, mean pitch 85 to 110 Hz | 571 syllables, right 0.9250, macro F1 0.9000
  spoken     as:  neutral       1
  neutral           183       8
Chinese, held-out espeak | tones, clean, mean pitch below 85 Hz | 12 syllables, right 0.5000, macro F1 0.4000
Chinese, virtual speakers | right phonemes | top-1 0.7000 | top-3 0.9990 | under 60 0.0100 | median score 99 | 9078 phonemes
"""


def read(text):
    with tempfile.NamedTemporaryFile("w", suffix=".txt") as file:
        file.write(text)
        file.flush()
        return evaluation.read(file.name)


def page(module, text):
    out = io.StringIO()
    with contextlib.redirect_stdout(out):
        module.write(read(text), "2026-01-01", "abcdef")
    return out.getvalue()


def row(text, start):
    """The cells of the first table row that begins so."""
    for line in text.splitlines():
        if line.startswith(f"| {start} |"):
            return [cell.strip() for cell in line.strip("|").split("|")]
    raise AssertionError(f"no row {start} in\n{text}")


class Reading(unittest.TestCase):
    def test_a_table_belongs_to_the_line_above_it(self):
        tones = read(CHINESE)[1]
        self.assertEqual(tones.measure, "tones, clean, mean pitch 85 to 110 Hz")
        self.assertEqual(tones.table, ["spoken     as:  neutral       1", "neutral           183       8"])

    def test_speakers_may_have_a_comma(self):
        self.assertEqual(read(ENGLISH)[5].speakers, "HMM voice, shipped models")

    def test_who_is_reported(self):
        self.assertFalse(evaluation.is_reported("HMM voice, shipped models"))
        self.assertFalse(evaluation.is_reported("development flite awb"))
        self.assertTrue(evaluation.is_foreign_technology("HMM voice"))
        self.assertTrue(evaluation.is_foreign_technology("left-out festival kal"))
        self.assertFalse(evaluation.is_foreign_technology("held-out espeak"))


class Summary(unittest.TestCase):
    def setUp(self):
        self.page = page(summary, ENGLISH + CHINESE)

    def test_how_often_a_right_phoneme_falls_under_60(self):
        espeak = row(self.page, "English: held-out espeak")
        self.assertEqual(espeak[1:3], ["0.8 %, 1 in 125", "0.93"])
        rms = row(self.page, "English: left-out flite rms")
        self.assertEqual(rms[1:], ["5.0 %, 1 in 20", "0.76", "0.53", "0.49", "0.91", "0.99, 0.86", "78 of 80"])
        self.assertEqual(
            row(self.page, "Chinese: held-out espeak (for want of another synthesiser)")[1], "none")
        self.assertEqual(row(self.page, "Chinese: virtual speakers of espeak")[1], "1.0 %, 1 in 100")

    def test_who_chose_settings_and_who_was_heard_is_marked(self):
        awb = row(self.page, "English: development flite awb (settings were chosen on this voice)")
        self.assertEqual(awb[1], "20.0 %, 1 in 5")
        shipped = row(self.page, "English: HMM voice, shipped models (they heard her through flite)")
        self.assertEqual(shipped[1], "1.0 %, 1 in 100")

    def test_what_a_score_under_60_means_is_counted(self):
        # Under 60 10 of 100 and 30 of 100 are right; from 60 on 90 of 100 and 198 of 200.
        self.assertIn("under 60 80.0 % were wrong indeed, of those from 60 on 4.0 %.", self.page)

    def test_what_is_not_heard_leaves_out_what_has_few_samples(self):
        unheard = self.page.split("## What the engine can't hear")[1].split("##")[0]
        self.assertIn("th said as f (T > f), 29.0 %", unheard)
        self.assertNotIn("jh said", unheard)
        self.assertNotIn("r said", unheard)
        self.assertIn("full marks in one of ten: `T`, `Z`.", unheard)

    def test_development_and_shipped_figures_do_not_count(self):
        self.assertNotIn("development flite awb", self.page.split("## Wanted")[1])
        self.assertNotIn("shipped models", self.page.split("## Wanted")[1])

    def test_wanted_and_reached(self):
        heading = row(self.page, "figure")
        self.assertEqual(heading[1:], ["wanted", "held-out espeak", "flite rms"])
        self.assertEqual(row(self.page, "right phonemes on top"),
                         ["right phonemes on top", "at least .75", "–", "0.760"])
        self.assertEqual(row(self.page, "right phonemes among the three highest")[3], "**0.910**")
        self.assertEqual(row(self.page, "right phonemes scored under 60")[2:], ["0.008", "**0.050**"])
        self.assertEqual(row(self.page, "learner's error that is caught least")[3],
                         "**0.000, final g said as k**")
        # T reaches 50. Z has few samples of its own, but enough of others.
        self.assertEqual(
            row(self.page, "phoneme that others pass for most: their median score")[3],
            "**100, `Z`**")
        self.assertEqual(row(self.page, "factor under any condition but 5 dB: lowest median")[3],
                         "**0.491, reverb**")
        self.assertEqual(row(self.page, "factor at 5 dB: lowest median")[3], "**0.136, babble 5 dB**")
        self.assertEqual(row(self.page, "factor with one word of five replaced, median")[3], "**0.950**")
        self.assertEqual(row(self.page, "tones of voices of 85 to 110 Hz")[2], "**0.925**")
        # Reached are espeak's right phonemes under 60 and, of rms, top-1, the area under the curve,
        # the sentence of 8 and the medians of clean and of long readings. Ten are missed: top-3, under
        # 60, the error, Z in both ways, two tenth percentiles, both conditions, one of five.
        self.assertIn("6 of 16 figures are reached.", self.page)

    def test_errors_of_learners(self):
        self.assertEqual(row(self.page, "jh said as zh, `J` > `Z`")[1], "0.00*")
        self.assertEqual(row(self.page, "r said as l, `r` > `l`")[1], "0.81")
        self.assertEqual(row(self.page, "final g said as k, `g` > `k`")[1], "0.00")

    def test_an_error_that_one_group_has_no_recordings_of(self):
        both = page(summary, ENGLISH + "English, HMM voice | learner's error | r said as l (r > l) | "
                    "caught 0.500 | area under curve 0.500 | 60 samples\n")
        self.assertEqual(row(both, "r said as l, `r` > `l`")[1:], ["0.50", "0.81"])
        self.assertEqual(row(both, "th said as f, `T` > `f`")[1:], ["–", "0.29"])

    def test_conditions_and_shares(self):
        self.assertEqual(row(self.page, "reverb")[1], "0.49, 0.17")
        self.assertIn("| reverb | 17.7 % |", self.page)
        self.assertEqual(row(self.page, "1 of 5 words wrong, words replaced")[1], "0.95 (0.50 to 1.00)")

    def test_tones_by_pitch(self):
        self.assertEqual(row(self.page, "clean, mean pitch below 85 Hz")[1:], ["0.500", "12*"])

    def test_without_left_out_voices_it_says_so(self):
        self.assertIn("No models that were made without a speaker", page(summary, CHINESE))
        self.assertNotIn("No models that were made without a speaker", self.page)


class Details(unittest.TestCase):
    def setUp(self):
        self.page = page(details, ENGLISH + CHINESE)

    def test_every_phoneme_has_its_row_and_few_samples_are_marked(self):
        self.assertEqual(row(self.page, "`Z`*")[1:], ["100", "0.814", "0.007", "140", "99", "0.250", "12"])
        self.assertEqual(row(self.page, "`N`*")[1:], ["20", "0.000", "1.000", "90", "–", "–", "0"])
        self.assertEqual(row(self.page, "`s`")[1:], ["29", "0.000", "0.850", "140", "97", "0.020", "513"])

    def test_every_group_of_speakers_is_there(self):
        for speakers in ("Held-out espeak", "HMM voice, shipped models", "Left-out flite rms",
                         "Development flite awb", "Virtual speakers"):
            self.assertIn(f"### {speakers}\n", self.page)

    def test_grading_is_of_no_speakers(self):
        self.assertEqual(row(self.page, "flat pitch")[1:], ["98", "75", "100", "100", "93", "28"])

    def test_tables_below_a_line_are_kept(self):
        self.assertIn("neutral           183       8", self.page)


class Program(unittest.TestCase):
    def run_on(self, text, folder):
        figures = Path(folder) / "evaluation.txt"
        figures.write_text(text, encoding="utf-8")
        return subprocess.run([sys.executable, TRAINING / "quality_report.py", figures, folder],
                              capture_output=True, text=True, check=False, cwd=folder)

    def test_both_pages_are_written(self):
        with tempfile.TemporaryDirectory() as folder:
            self.assertEqual(self.run_on(ENGLISH, folder).returncode, 0)
            names = sorted(path.name for path in Path(folder).glob("*.*"))
            self.assertEqual(names, ["evaluation.txt", "quality-details.md", "quality.md"])

    def test_no_figures_is_an_error_and_writes_nothing(self):
        with tempfile.TemporaryDirectory() as folder:
            ran = self.run_on("nothing here\n", folder)
            self.assertEqual(ran.returncode, 1)
            self.assertIn("no figures in", ran.stderr)
            self.assertFalse((Path(folder) / "quality.md").exists())


if __name__ == "__main__":
    unittest.main()
