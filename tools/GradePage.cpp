#include "tools/GradePage.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "recognition/Languages.h"
#include "tools/AdviceTexts.h"
#include "tools/GradeFigures.h"
#include "tools/HtmlText.h"
#include "tools/Numbers.h"
#include "tools/PageStyle.h"

namespace veral3::tools {
namespace {

// Scores from `from` on are of a band.
struct Band {
  int from;
  const char* css_class;
  const char* name;
};
constexpr std::array<Band, 4> kBands = {
    Band{80, "good", "80 to 100: good"}, Band{60, "fair", "60 to 79: fair"},
    Band{40, "weak", "40 to 59: weak"}, Band{0, "poor", "0 to 39: poor"}};

const char* BandOf(const std::optional<int>& score) {
  if (!score) return "none";
  for (const Band& band : kBands) {
    if (*score >= band.from) return band.css_class;
  }
  return kBands.back().css_class;
}

constexpr const char* kDash = "\xE2\x80\x93";

std::string OrDash(const std::optional<int>& score) {
  return score ? std::to_string(*score) : kDash;
}

std::string Element(const char* name, const std::string& css_class, const std::string& content) {
  std::string text = std::string("<") + name;
  if (!css_class.empty()) text += " class=\"" + css_class + "\"";
  return text + ">" + content + "</" + name + ">";
}

// Whether `measures` heard another phoneme than the one asked for.
bool IsStranger(const PhonemeMeasures& measures, const std::string& symbol) {
  return !measures.sounds_like.empty() && measures.sounds_like != symbol;
}

std::string HeardText(const PhonemeMeasures& measures) {
  return measures.sounds_like == "-" ? "a pause" : measures.sounds_like;
}

// One learner's part of the page.
class Article {
 public:
  Article(const GradeReport& report, const DrawnRecording* tutor)
      : m_report(report),
        m_alignment(report.analysis.alignment),
        m_tutor(report.pronunciation_only ? nullptr : tutor) {}

  std::string Text() const {
    return Element("article", "", Head() + Scores() + Lowered() + Words() + Whole() + Advice()) +
           "\n";
  }

 private:
  std::string Head() const {
    std::string about = HtmlText(m_alignment.file) + ", " +
                        Fixed(Seconds(m_alignment.num_samples), 2) + " s, " +
                        std::string(LanguageName(m_alignment.language));
    if (m_report.pronunciation_only) {
      about += "; the pronunciation alone was graded";
    } else {
      about += ". Tutor: " + HtmlText(m_report.tutor_file);
      if (!m_report.teacher.empty()) about += " (" + HtmlText(m_report.teacher) + ")";
    }
    return "<h2 lang=\"" + std::string(LanguageCode(m_alignment.language)) + "\">" +
           HtmlText(m_alignment.sentence) + "</h2>" + Element("p", "about", about);
  }

  std::string Scores() const {
    const std::pair<const char*, std::optional<int>> scores[] = {
        {"Total", m_report.scores.total},
        {"Pronunciation", m_report.scores.pronunciation},
        {"Pitch", m_report.scores.pitch},
        {"Timing", m_report.scores.timing},
        {"Loudness", m_report.scores.intensity}};
    std::string items;
    for (const auto& [name, score] : scores) {
      std::string item = std::string(name) + Element("span", "number", OrDash(score));
      item += score ? "<span class=\"bar\"><span style=\"width:" +
                          std::to_string(std::clamp(*score, 0, 100)) + "%\"></span></span>"
                    : "not measured";
      items += Element("li", "", item);
    }
    return Element("ul", "scores", items);
  }

  // That the scores are lowered, and what speaks for why.
  std::string Lowered() const {
    std::string said = LoweredText(m_report);
    if (said.empty()) return "";
    said[0] = static_cast<char>(said[0] - 'a' + 'A');
    std::string text = Element("p", "", HtmlText(said) + ".");
    if (!m_report.reasons.empty()) {
      std::string items;
      for (const ScoreHint& hint : m_report.reasons)
        items += Element("li", "", HtmlText(hint.text));
      text += Element("p", "", "What speaks for it:") + Element("ul", "told", items);
    }
    return Element("div", "lowered", text);
  }

  std::string Words() const {
    std::string legend;
    for (const Band& band : kBands) {
      legend += Element(
          "li", "",
          Element("span", std::string("chip ") + band.css_class, std::to_string(band.from)) +
              band.name);
    }
    if (m_tutor != nullptr) {
      legend += Element("li", "", "<span class=\"key learner\"></span>learner") +
                Element("li", "", "<span class=\"key tutor\"></span>tutor");
    }
    std::string cards;
    std::size_t syllable = 0;
    std::size_t phoneme = 0;
    for (std::size_t i = 0; i < m_alignment.words.size(); ++i) {
      cards += Card(i, syllable, phoneme);
    }
    return "<h3>Words and sounds</h3>" +
           Element("p", "about",
                   "Each sound with its score, 0 to 100, and below it what it sounds like where "
                   "that is another sound.") +
           Element("ul", "legend", legend) + Element("ol", "words", cards);
  }

  // The card of a word; moves on the numbers of the next syllable and phoneme.
  std::string Card(std::size_t i, std::size_t& syllable, std::size_t& phoneme) const {
    const Segment& word = m_alignment.words[i];
    const std::optional<int> score = m_report.words[i].scores.total;
    std::string text = "<h4><span><span class=\"count\">" + std::to_string(i + 1) +
                       "</span> <span lang=\"" + std::string(LanguageCode(m_alignment.language)) +
                       "\">" + HtmlText(word.text) + "</span></span>";
    if (score) {
      text += Element("span", std::string("chip ") + BandOf(score), std::to_string(*score));
    }
    text += "</h4>";
    for (int part = 0; part < word.parts && syllable < m_alignment.syllables.size();
         ++part, ++syllable) {
      text += Syllable(syllable, phoneme);
    }
    text += WordWaves(i);
    return Element("li", "word", text) + "\n";
  }

  std::string WordWaves(std::size_t i) const {
    const std::string word = m_alignment.words[i].text;
    std::string text;
    if (i < m_report.drawn.words.size()) {
      text += WaveFigure(m_report.drawn, m_report.drawn.words[i], false, "learner",
                         "Waveform of the learner's " + word);
    }
    if (m_tutor != nullptr && i < m_tutor->words.size()) {
      text += WaveFigure(*m_tutor, m_tutor->words[i], false, "tutor",
                         "Waveform of the tutor's " + word);
    }
    return text;
  }

  std::string Syllable(std::size_t s, std::size_t& phoneme) const {
    const Segment& part = m_alignment.syllables[s];
    const SyllableGrade& grade = m_report.syllables[s];
    std::string chips;
    for (int k = 0; k < part.parts && phoneme < m_alignment.phonemes.size(); ++k, ++phoneme) {
      chips += Sound(phoneme);
    }
    std::string text = Element("div", "sounds", chips);
    std::string scores = "Pronunciation " + OrDash(grade.scores.pronunciation);
    if (!m_report.pronunciation_only) {
      scores += ", pitch " + OrDash(grade.scores.pitch) + ", timing " +
                OrDash(grade.scores.timing) + ", loudness " + OrDash(grade.scores.intensity);
    }
    text += Element("p", "", scores);
    for (const std::string& advice : AdviceOfSyllable(s)) {
      text += Element("p", "advice", HtmlText(advice));
    }
    return Element("div", "syllable", text + Lengths(s));
  }

  std::string Sound(std::size_t p) const {
    const std::string& symbol = m_alignment.phonemes[p].text;
    const PhonemeMeasures& measures = m_report.analysis.phonemes[p];
    std::string text = Element("span", "symbol", HtmlText(symbol)) + OrDash(m_report.phonemes[p]);
    if (IsStranger(measures, symbol)) {
      text += Element("span", "heard", "like " + HtmlText(HeardText(measures)));
    }
    return Element("span", std::string("chip ") + BandOf(m_report.phonemes[p]), text);
  }

  // How long the syllable lasts, with bars that are full for the longest of both recordings.
  std::string Lengths(std::size_t s) const {
    const auto seconds = [](const DrawnRecording& recording, std::size_t i) {
      return Seconds(recording.syllables[i].end - recording.syllables[i].start);
    };
    if (s >= m_report.drawn.syllables.size()) return "";
    const double own = seconds(m_report.drawn, s);
    if (m_tutor == nullptr || s >= m_tutor->syllables.size()) {
      return Element("p", "", "Length " + Fixed(own, 2) + " s");
    }
    const double theirs = seconds(*m_tutor, s);
    double longest = 0.001;
    for (std::size_t i = 0; i < m_report.drawn.syllables.size(); ++i) {
      longest = std::max(longest, seconds(m_report.drawn, i));
    }
    for (std::size_t i = 0; i < m_tutor->syllables.size(); ++i) {
      longest = std::max(longest, seconds(*m_tutor, i));
    }
    const std::string label = "Length " + Fixed(own, 2) + " s, tutor " + Fixed(theirs, 2) + " s";
    return Element("p", "", label) + BarsFigure(own / longest, theirs / longest, label);
  }

  // The advice on a syllable's length. It rests on which syllables of a reading are its longest, so
  // it may be the other way round than the lengths beside it: then it says so.
  std::string TimingAdvice(std::size_t s) const {
    const char letter = m_report.syllables[s].timing_advice;
    std::string text = AdviceOf(AdviceKind::kTiming, m_alignment.language, letter);
    if (text.empty() || m_tutor == nullptr || s >= m_report.drawn.syllables.size() ||
        s >= m_tutor->syllables.size()) {
      return text;
    }
    const auto printed = [s](const DrawnRecording& recording) {
      const DrawnRecording::Span span = recording.syllables[s];
      return static_cast<int>(std::lround(100.0 * Seconds(span.end - span.start)));
    };
    if (ContradictsLengths(letter, printed(m_report.drawn), printed(*m_tutor))) {
      text += kAgainstOwnReading;
    }
    return text;
  }

  // The advice on a syllable, in words.
  std::vector<std::string> AdviceOfSyllable(std::size_t s) const {
    const SyllableGrade& grade = m_report.syllables[s];
    const LanguageType language = m_alignment.language;
    std::vector<std::string> told;
    if (grade.unnecessary_pause.value_or(false)) {
      told.push_back("a long pause before it where the tutor makes none");
    }
    if (HasTones(language)) {
      if (grade.learner_tone && grade.tutor_tone && *grade.tutor_tone != *grade.learner_tone) {
        told.push_back("said like " + ToneText(*grade.learner_tone) + ", the tutor like " +
                       ToneText(*grade.tutor_tone));
      } else if (!grade.learner_tone && !m_report.pronunciation_only) {
        told.push_back("the pitch is too broken to tell a tone");
      }
    } else if (std::string pitch = AdviceOf(AdviceKind::kPitch, language, grade.pitch_advice);
               !pitch.empty()) {
      told.push_back(std::move(pitch));
    }
    if (std::string timing = TimingAdvice(s); !timing.empty()) told.push_back(std::move(timing));
    if (std::string loudness = AdviceOf(AdviceKind::kIntensity, language, grade.intensity_advice);
        !loudness.empty()) {
      told.push_back(std::move(loudness));
    }
    return told;
  }

  // The whole utterance: sound, pitch, loudness.
  std::string Whole() const {
    if (m_report.drawn.samples.empty()) return "";
    const auto figure = [](const std::string& caption, const std::string& drawing,
                           const std::string& ends) {
      return Element("figure", "", Element("figcaption", "", caption) + drawing + ends) + "\n";
    };
    const auto ends = [](const DrawnRecording& recording) {
      return Element("div", "ends",
                     Element("span", "", Fixed(Seconds(recording.utterance.start), 2) + " s") +
                         Element("span", "", Fixed(Seconds(recording.utterance.end), 2) + " s"));
    };
    std::string text = "<h3>The whole sentence</h3>" +
                       Element("p", "about", "Upright lines stand where words begin.");
    text += figure("Waveform of the learner",
                   WaveFigure(m_report.drawn, m_report.drawn.utterance, true, "learner",
                              "Waveform of the learner"),
                   ends(m_report.drawn));
    if (m_tutor == nullptr) return text;
    text += figure("Waveform of the tutor",
                   WaveFigure(*m_tutor, m_tutor->utterance, true, "tutor", "Waveform of the tutor"),
                   ends(*m_tutor));
    const std::string key =
        ": <span class=\"key learner\"></span> learner, <span class=\"key tutor\"></span> tutor, "
        "whose words are stretched to lie under the learner\xE2\x80\x99s";
    text += figure("Pitch" + key + ". Each between its own lowest and highest; gaps are voiceless.",
                   CurveFigure(m_report.drawn, m_tutor, Curve::kPitch,
                               "Pitch of the learner over the tutor's"),
                   "");
    text += figure("Loudness" + key + ". Each up to its own loudest.",
                   CurveFigure(m_report.drawn, m_tutor, Curve::kIntensity,
                               "Loudness of the learner over the tutor's"),
                   "");
    return text;
  }

  // All advice in one list, and what each letter of the other outputs stands for.
  std::string Advice() const {
    std::string items;
    std::size_t s = 0;
    std::size_t p = 0;
    for (const Segment& word : m_alignment.words) {
      for (int part = 0; part < word.parts && s < m_alignment.syllables.size(); ++part, ++s) {
        const Segment& syllable = m_alignment.syllables[s];
        std::string told;
        for (const std::string& advice : AdviceOfSyllable(s)) {
          told += (told.empty() ? "" : "; ") + advice;
        }
        for (int k = 0; k < syllable.parts && p < m_alignment.phonemes.size(); ++k, ++p) {
          const PhonemeMeasures& measures = m_report.analysis.phonemes[p];
          const std::string& symbol = m_alignment.phonemes[p].text;
          if (!IsStranger(measures, symbol)) continue;
          told += told.empty() ? "" : "; ";
          told += symbol + " sounds like " + HeardText(measures);
        }
        if (told.empty()) continue;
        items +=
            Element("li", "", HtmlText(word.text + ", syllable " + syllable.text + ": " + told));
      }
    }
    std::string text = "<h3>Advice</h3>";
    text += items.empty() ? Element("p", "", "None: nothing stands out.")
                          : Element("ul", "told", items);
    return m_report.pronunciation_only ? text : text + Letters();
  }

  std::string Letters() const {
    std::string rows = "<tr><th>Letter</th><th>of</th><th>says</th></tr>";
    for (const AdviceKind kind :
         {AdviceKind::kPitch, AdviceKind::kTiming, AdviceKind::kIntensity}) {
      for (const AdviceText& advice : AdviceTextsOf(kind, m_alignment.language)) {
        rows += "<tr><td>" + std::string(1, advice.letter) + "</td><td>" +
                std::string(NameOf(kind)) + "</td><td>" + HtmlText(advice.text) + "</td></tr>";
      }
    }
    return "<h3>What the letters mean</h3><table><caption class=\"about\">The table, CSV and JSON "
           "of "
           "veral3 grade give advice as letters, one a syllable.</caption>" +
           rows + "</table>";
  }

  const GradeReport& m_report;
  const AlignmentReport& m_alignment;
  const DrawnRecording* m_tutor;
};

}  // namespace

std::string GradePage(const std::vector<GradeReport>& reports, const DrawnRecording* tutor) {
  std::string text =
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<title>How the sentence was read</title>\n<style>";
  text += kPageStyle;
  text += "</style>\n</head>\n<body>\n<main>\n<h1>How the sentence was read</h1>\n";
  for (const GradeReport& report : reports) {
    const AlignmentReport& alignment = report.analysis.alignment;
    text += alignment.error.empty()
                ? Article(report, tutor).Text()
                : Element("article", "",
                          "<h2>" + HtmlText(alignment.file) + "</h2>" +
                              Element("p", "error", HtmlText("Not graded: " + alignment.error))) +
                      "\n";
  }
  return text + "</main>\n</body>\n</html>\n";
}

}  // namespace veral3::tools
