#include "grading/LiteralGrading.h"

#include <cmath>
#include <map>
#include <sstream>

namespace veral3::test {
namespace {

enum { kEnglish = 1, kChinese = 2, kJapanese = 3 };

// "symbol normaliser" a phoneme, in the order of the language's set.
const char* const kNormalisers[] = {
    "",
    "i 1.441442837 I 3.3567579 E 1.740521152 { 1.054765259 A 1.666678817 O 0.501318646 u "
    "0.836070563 U 1.019631144 V 0.611846122 @ 2.665809441 3 0.760677202 p 0.71077462 b "
    "0.624928691 t 2.678487394 d 1.295578937 k 1.19779685 g 0.463824273 m 0.97289805 n "
    "2.256203649 N 0.404210918 l 1.474891055 f 0.721159752 v 0.525663014 T 0.322411144 D "
    "0.645496647 s 1.765067828 z 1.02664448 S 0.254031119 Z 0.01422898 r 0.987666517 c "
    "0.651026393 h 0.66909922 C 0.204937768 J 0.158744161 j 0.600314579 w 0.718394879 - "
    "3.527908933",
    "a 3.527908933 o 2.187787772 @ 2.589778985 E 0.647686541 M 1.497480942 R 0.10451965 i "
    "4.256129121 u 4.287497912 U 0.702009678 ( 0.24901597 ) 0.606130147 b 0.552451795 p 0.1728991 "
    "m 0.392964223 f 0.16990085 d 1.198365177 t 0.304241806 n 2.517820978 l 0.79482648 g "
    "0.521469875 k 0.248081032 h 1.106676749 j 0.595813587 q 0.394060358 x 0.617413885 Z "
    "0.536267691 C 0.449286194 S 0.761587812 r 0.19053397 z 0.466695389 c 0.169191586 s "
    "0.183505813 - 4.146558508",
    "a 4.146558508 e 1.72386343 i 2.689478782 o 2.944064411 u 1.560960107 b 0.195169199 p "
    "0.060596888 d 0.842454144 t 0.910920758 X 0.184938556 Y 0.383255645 g 0.573703009 k "
    "1.924147951 f 0.021641746 h 0.145589927 c 0.042890005 s 1.445668624 C 0.795235789 r "
    "0.954597736 j 0.552848235 Z 0.284884073 z 0.074762395 m 1.30716145 n 1.892275561 w "
    "0.342333071 - 1.0"};

// Vowels stand first in each set: 11 of English, 11 of Chinese, 5 of Japanese.
constexpr int kVowels[] = {0, 11, 11, 5};

struct Symbols {
  std::map<char, int> place;
  std::vector<double> normaliser;
};

const Symbols& SymbolsOf(int language) {
  static const std::vector<Symbols> all = [] {
    std::vector<Symbols> made;
    for (const char* const text : kNormalisers) {
      Symbols symbols;
      std::istringstream in(text);
      in.imbue(std::locale::classic());
      std::string symbol;
      double value = 0.0;
      while (in >> symbol >> value) {
        symbols.place[symbol[0]] = static_cast<int>(symbols.normaliser.size());
        symbols.normaliser.push_back(value);
      }
      made.push_back(symbols);
    }
    return made;
  }();
  return all[static_cast<std::size_t>(language)];
}

template <typename T>
T Get(const std::vector<T>& values, int i, T otherwise) {
  return i >= 0 && i < static_cast<int>(values.size()) ? values[static_cast<std::size_t>(i)]
                                                       : otherwise;
}

template <typename T>
T& Ref(std::vector<T>& values, int i) {
  return values.at(static_cast<std::size_t>(i));
}

int Cut(double value) { return static_cast<int>(value); }

// The three best; of equals the later with `or_equal`, else the earlier.
template <typename T>
std::array<int, 3> BestThree(const std::vector<T>& values, int count, bool or_equal) {
  std::array<int, 3> found = {-1, -1, -1};
  for (std::size_t rank = 0; rank < 3; ++rank) {
    double best = -1.0;
    for (int s = 0; s < count; ++s) {
      if (rank > 0 && s == found[0]) continue;
      if (rank > 1 && s == found[1]) continue;
      const auto value = static_cast<double>(Get(values, s, T{}));
      if (value > best || (or_equal && value == best)) {
        best = value;
        found[rank] = s;
      }
    }
  }
  return found;
}

// One of pitch, timing and intensity: what is taken off, and the letters.
struct Rules {
  int first_second, first_third, first_none, second_first, second_other;  // points off
  int u_second, u_third, u_none;                                          // on the penalty
  char first_letter, none_letter, second_first_letter, second_other_letter;
  char missing_letter, second_missing_letter;
  int missing, second_missing;  // points off, -1: all
  double word_bound;
  int word_points;
  char word_learner, word_tutor;
};

constexpr Rules kPitch = {11,  22,  44,  8,   30, 4,  8,       16, 'h', 'H',
                          'l', 'h', 'L', 'l', 43, 21, 1.48588, 30, 'h', 'l'};
constexpr Rules kTiming = {11,  22,  44,  3,   12, 4,  8,       16, 'l', 'L',
                           's', 'l', 'S', 's', -1, -1, 1.78571, 25, 'l', 's'};
constexpr Rules kIntensity = {11,  22,  44,  8,   30, 5,  10,      20, 'h', 'H',
                              'l', 'h', 'L', 'l', 44, 22, 3.55139, 20, 'h', 'l'};

struct Syllables {
  std::vector<int> score;
  std::string advice;

  void Off(int s, int points, char letter) {
    if (s < 0 || s >= static_cast<int>(score.size())) return;
    Ref(score, s) = points < 0 ? 0 : Ref(score, s) - points;
    advice.at(static_cast<std::size_t>(s)) = letter;
  }
};

int UtterancePenalty(const Rules& rules, const std::array<int, 3>& mine, std::array<int, 3> theirs,
                     int count, Syllables& syllables) {
  int u = 0;
  if (mine[0] != theirs[0]) {
    if (mine[0] == theirs[1]) {
      syllables.Off(mine[0], rules.first_second, rules.first_letter);
      u = rules.u_second;
    } else if (mine[0] != theirs[2]) {
      syllables.Off(mine[0], rules.first_none, rules.none_letter);
      u = rules.u_none;
    } else {
      syllables.Off(mine[0], rules.first_third, rules.first_letter);
      u = rules.u_third;
    }
  }
  if (count >= 2 && mine[1] != theirs[1]) {
    if (mine[1] == theirs[0]) {
      syllables.Off(mine[1], rules.second_first, rules.second_first_letter);
      u += 1;
    } else {
      syllables.Off(mine[1], rules.second_other, rules.second_other_letter);
      u += 4;
    }
  }
  if (count >= 4) {
    for (int& theirs_at : theirs) {
      if (theirs_at > count - 1) theirs_at = count - 1;
    }
    const auto missing = [&](int s) { return s != mine[0] && s != mine[1] && s != mine[2]; };
    if (missing(theirs[0])) syllables.Off(theirs[0], rules.missing, rules.missing_letter);
    if (missing(theirs[1])) {
      syllables.Off(theirs[1], rules.second_missing, rules.second_missing_letter);
    }
  }
  return u;
}

template <typename T>
int WordPenalty(const Rules& rules, const LearnerView& learner, const std::vector<T>& mine,
                const std::vector<T>& theirs, Syllables& syllables, std::vector<double>& contrast) {
  const int words = static_cast<int>(learner.words.num_syllables.size());
  int count = 0;
  for (int w = 0; w < words; ++w) {
    Ref(contrast, w) = 1.0;
    const int first = Get(learner.words.first_syllable, w, 0);
    const int n = Get(learner.words.num_syllables, w, 0);
    if (n < 2) continue;
    int a = first;
    int b = first;
    for (int s = first; s < first + n; ++s) {
      if (Get(mine, s, T{}) >= Get(mine, a, T{})) a = s;
      if (Get(theirs, s, T{}) >= Get(theirs, b, T{})) b = s;
    }
    const auto divisor = static_cast<double>(Get(theirs, a, T{}));
    Ref(contrast, w) = divisor == 0.0 ? 1e10 : static_cast<double>(Get(theirs, b, T{})) / divisor;
    if (a == b) continue;
    if (Ref(contrast, w) > rules.word_bound) count += 1;
    syllables.Off(a, rules.word_points, rules.word_learner);
    syllables.Off(b, rules.word_points, rules.word_tutor);
  }
  return words == 0 ? 0 : count * 100 / words;
}

void Weigh(std::vector<int>& scores, const std::vector<double>& goodness) {
  for (int s = 0; s < static_cast<int>(scores.size()); ++s) {
    Ref(scores, s) = Cut(Ref(scores, s) * Get(goodness, s, 0.0));
  }
}

void NotBelowZero(std::vector<int>& scores) {
  for (int& score : scores) {
    if (score < 0) score = 0;
  }
}

double PositionOf(const RecordingView& view, int phoneme) {
  if (view.phoneme_start.empty()) return 0.0;
  const int start = view.phoneme_start.front();
  const int end = view.phoneme_end.back();
  if (start == end) return 0.0;
  const int at = Get(view.phoneme_start, phoneme, end);
  return (static_cast<double>(at) - start) / (static_cast<double>(end) - start);
}

class Grading {
 public:
  Grading(const Pair& pair, LiteralGrades& grades)
      : m_learner(pair.learner),
        m_tutor(pair.tutor),
        m_probability(pair.probability),
        m_language(static_cast<int>(pair.learner.language)),
        m_count(static_cast<int>(pair.learner.syllable_start.size())),
        m(grades) {}

  void Run() {
    if (m_learner.language != m_tutor.language) {
      m.messages =
          "ERROR in GradedAudio::GradeAgainstTutor(): the language types of tutor and student do "
          "not match.\n";
      m.refused = true;
      return;
    }
    const std::size_t words = m_learner.words.num_syllables.size();
    m.pitch_contrast.assign(words, 0.0);
    m.timing_contrast.assign(words, 0.0);
    m.intensity_contrast.assign(words, 0.0);
    Rhythm();
    Timing();
    Intensity();
    if (m_language == kChinese) {
      ChinesePitch();
    } else {
      EnglishPitch();
    }
    m.segment_ratio = m_tutor.pitch_segments >= 1
                          ? double(m_learner.pitch_segments / m_tutor.pitch_segments)
                          : 100.0;
    if (!Pronunciation()) {
      m.result = -1;
      m.failed = true;
      return;
    }
    Words();
    Total();
  }

 private:
  void Rhythm() {
    m.agreement = {1.0, 1.0, 1.0};
    m.good_timing = 1.0;
    const int n = static_cast<int>(m_tutor.phonemes.size());
    if (n <= 6) return;
    const int quartile[] = {n / 4, n / 2, n * 3 / 4};
    double product = 1.0;
    for (std::size_t i = 0; i < 3; ++i) {
      const double a = PositionOf(m_learner, quartile[i]);
      const double b = PositionOf(m_tutor, quartile[i]);
      if (a < b) m.agreement[i] = a / b;
      if (b < a) m.agreement[i] = b / a;
      product *= m.agreement[i];
    }
    const double bounds[] = {0.0, 0.38418, 0.403479, 0.399598};
    const double bound = static_cast<double>(static_cast<float>(bounds[m_language]));
    if (product <= bound) m.good_timing = product / bound;
  }

  void Timing() {
    Syllables syllables{std::vector<int>(std::size_t(m_count), 100),
                        std::string(std::size_t(m_count), '-')};
    TimingPercent();
    int u = UtterancePenalty(
        kTiming,
        BestThree(m_learner.syllable_duration, Measured(m_learner.syllable_duration), false),
        BestThree(m_tutor.syllable_duration, Measured(m_tutor.syllable_duration), false), m_count,
        syllables);
    Weigh(syllables.score, m_learner.goodness);
    m.pause.assign(std::size_t(m_count), false);
    for (int s = 1; s < m_count; ++s) {
      const int k = m_learner.syllable_start[std::size_t(s)];
      if (k < 1) continue;
      if (Gap(m_learner, k) <= 11025) continue;
      if (Gap(m_tutor, k) > 5512) continue;
      m.pause[std::size_t(s)] = true;
      Ref(syllables.score, s) = 0;
      u += 30;
    }
    const int w = m_language == kEnglish
                      ? WordPenalty(kTiming, m_learner, m_learner.syllable_duration,
                                    m_tutor.syllable_duration, syllables, m.timing_contrast)
                      : 0;
    Weigh(syllables.score, m_learner.goodness);
    NotBelowZero(syllables.score);
    m.timing = Cut((100 - w - u) * m.good_timing);
    if (m.timing < 0) m.timing = 0;
    m.syllable_timing = syllables.score;
    m.timing_advice = syllables.advice;
  }

  template <typename T>
  static int Measured(const std::vector<T>& values) {
    return static_cast<int>(values.size());
  }

  static int UttEnd(const RecordingView& view) {
    return view.phoneme_end.empty() ? 0 : view.phoneme_end.back();
  }

  static int Gap(const RecordingView& view, int k) {
    return Get(view.phoneme_start, k, UttEnd(view)) - Get(view.phoneme_end, k - 1, UttEnd(view));
  }

  void TimingPercent() {
    long mine = 0;
    long theirs = 0;
    for (std::size_t i = 0; i < m_learner.phoneme_start.size(); ++i) {
      mine += m_learner.phoneme_end[i] - m_learner.phoneme_start[i];
    }
    for (std::size_t i = 0; i < m_tutor.phoneme_start.size(); ++i) {
      theirs += m_tutor.phoneme_end[i] - m_tutor.phoneme_start[i];
    }
    float r = 1.0F;
    if (theirs == 0) {
      m.messages += "ERROR! nTutorUttLength==0 in GradedAudio::CalculateSylTimingPercent()\n";
    } else {
      r = static_cast<float>(mine) / static_cast<float>(theirs);
      if (r == 0.0F) r = 0.0001F;
    }
    for (int s = 0; s < m_count; ++s) {
      const int duration = Get(m_tutor.syllable_duration, s, 0);
      if (duration == 0) {
        m.timing_percent.push_back(1000);
      } else {
        const int p = Get(m_learner.syllable_duration, s, 0) * 100 / duration;
        m.timing_percent.push_back(static_cast<int>(static_cast<float>(p) / r));
      }
    }
  }

  void Intensity() {
    Syllables syllables{std::vector<int>(std::size_t(m_count), 100),
                        std::string(std::size_t(m_count), '-')};
    IntensityPercent();
    int u = 0;
    int w = 0;
    if (m_language == kChinese) {
      u = Loudness(syllables);
    } else {
      const auto& mine = m_learner.syllable_intensity;
      const auto& theirs = m_tutor.syllable_intensity;
      u = UtterancePenalty(kIntensity, BestThree(mine, Measured(mine), false),
                           BestThree(theirs, Measured(theirs), false), m_count, syllables);
      if (m_language == kEnglish) {
        w = WordPenalty(kIntensity, m_learner, mine, theirs, syllables, m.intensity_contrast);
      }
    }
    Weigh(syllables.score, m_learner.goodness);
    NotBelowZero(syllables.score);
    m.intensity = 100 - w - u < 0 ? 0 : 100 - w - u;
    m.syllable_intensity = syllables.score;
    m.intensity_advice = syllables.advice;
  }

  void IntensityPercent() {
    double mine = 0.0;
    double theirs = 0.0;
    for (const double value : m_learner.syllable_intensity) mine += value;
    for (const double value : m_tutor.syllable_intensity) theirs += value;
    double r = 1.0;
    if (theirs == 0.0) {
      m.messages += "ERROR! nTutorUttTotalIntensity==0 in GradedAudio::GradeIntensity()\n";
    } else {
      r = mine / theirs;
      if (r == 0.0) r = 0.0001;
    }
    for (int s = 0; s < m_count; ++s) {
      const double divisor = Get(m_tutor.syllable_intensity, s, 0.0);
      const double percent = Get(m_learner.syllable_intensity, s, 0.0) * 100 / divisor / r;
      m.intensity_percent.push_back(divisor == 0.0          ? 1000
                                    : percent >= 2147483647 ? 2147483647
                                                            : Cut(percent));
    }
  }

  int Loudness(Syllables& syllables) {
    if (m_count == 0) return 0;
    int sum = 0;
    for (int s = 0; s < m_count; ++s) {
      const double p = m.intensity_percent[std::size_t(s)];
      const double q = p <= 100 ? p / 100 : 100 / p;
      char& letter = syllables.advice[std::size_t(s)];
      if (q > 0.015152) {
        sum += 100;
      } else if (q < 0.00065) {
        letter = p <= 100 ? 'L' : 'H';
      } else {
        const double value = (q - 0.00065) * 100 / (0.015152 - 0.00065);
        sum += Cut(value);
        if (value < 60) letter = p <= 100 ? 'l' : 'h';
      }
    }
    return 100 - sum / m_count;
  }

  void EnglishPitch() {
    Syllables syllables{std::vector<int>(std::size_t(m_count), 100),
                        std::string(std::size_t(m_count), '-')};
    const auto& mine = m_learner.syllable_pitch;
    const auto& theirs = m_tutor.syllable_pitch;
    int u = UtterancePenalty(kPitch, BestThree(mine, Measured(mine), true),
                             BestThree(theirs, Measured(theirs), true), m_count, syllables);
    int w = 0;
    if (m_language == kEnglish) {
      w = WordPenalty(kPitch, m_learner, mine, theirs, syllables, m.pitch_contrast);
      if (m_learner.words.num_syllables.size() < 2) u *= m_count == 2 ? 16 : 4;
    }
    Weigh(syllables.score, m_learner.goodness);
    NotBelowZero(syllables.score);
    m.pitch = 100 - w - u < 0 ? 0 : 100 - w - u;
    m.syllable_pitch = syllables.score;
    m.pitch_advice = syllables.advice;
  }

  static int Tone(const ToneRow& row) {
    int best = 0;
    for (int k = 0; k < 5; ++k) {
      if (row[std::size_t(k)] > row[std::size_t(best)]) best = k;
    }
    return best;
  }

  void ChinesePitch() {
    const int n = static_cast<int>(m_tutor.syllable_start.size());
    m.syllable_pitch.assign(std::size_t(m_count), 0);
    int sum = 0;
    for (int s = 0; s < n; ++s) {
      ToneRow mine = Get(m_learner.tone_probability, s, ToneRow{});
      ToneRow theirs = Get(m_tutor.tone_probability, s, ToneRow{});
      m.pitch_advice += static_cast<char>('0' + Tone(mine));
      m.student_tone.push_back(Tone(mine));
      m.correct_tone.push_back(Tone(theirs));
      if (s >= m_count) continue;
      double divergence = 0.0;
      for (std::size_t k = 0; k < 5; ++k) {
        if (mine[k] == 0.0) mine[k] = 1e-10;
        if (theirs[k] == 0.0) theirs[k] = 1e-10;
        divergence += theirs[k] * std::log(theirs[k] / mine[k]);
      }
      const int score = Cut(100 - 10 * divergence);
      Ref(m.syllable_pitch, s) = score < 0 ? 0 : score;
      sum += Ref(m.syllable_pitch, s);
    }
    m.pitch = n == 0 ? 0 : sum / n;
  }

  bool Pronunciation() {
    const Symbols& symbols = SymbolsOf(m_language);
    const int phonemes = static_cast<int>(m_learner.phonemes.size());
    for (int i = 0; i < phonemes; ++i) {
      const int k = symbols.place.at(m_learner.phonemes[std::size_t(i)]);
      const double t = symbols.normaliser[std::size_t(k)];
      double x = m_learner.distributions.at(std::size_t(i * 64 + k));
      if (t < 1.0) x /= t * t;
      int score = 100;
      if (x < 1.0) {
        const double value = 100 + 25 * std::log10(x);
        score = value < 0 ? 0 : Cut(value);
      }
      m.phoneme_pronunciation.push_back(score);
    }
    int total = 0;
    for (int s = 0; s < m_count; ++s) {
      const int first = m_learner.syllable_start[std::size_t(s)];
      const int end = s + 1 < m_count ? m_learner.syllable_start[std::size_t(s + 1)] : phonemes;
      int n = end - first;
      if (n > 7) {
        m.messages += "WARNING! Too many phonemes in a syllable:" + std::to_string(n) + "\n";
        n = 7;
      }
      int sum[3] = {};  // onset, vowels, coda
      int count[3] = {};
      for (int i = first; i < first + n; ++i) {
        const int place = symbols.place.at(m_learner.phonemes[std::size_t(i)]);
        const int part = place < kVowels[m_language] ? 1 : count[1] == 0 ? 0 : 2;
        sum[part] += m.phoneme_pronunciation[std::size_t(i)];
        count[part] += 1;
      }
      int average[3] = {};
      for (int part = 0; part < 3; ++part) {
        if (count[part] > 0) average[part] = sum[part] / count[part];
      }
      int score = 0;
      if (count[1] == 0) {
        const bool allowed =
            (m_language == kJapanese && count[0] == 1) || (m_language == kEnglish && count[0] >= 1);
        if (!allowed) return false;
        score = average[0];
      } else if (count[0] > 0 && count[2] > 0) {
        score = Cut(0.25 * average[0] + 0.5 * average[1] + 0.25 * average[2]);
      } else if (count[0] > 0) {
        score = Cut(0.4 * average[0] + 0.6 * average[1]);
      } else if (count[2] > 0) {
        score = Cut(0.4 * average[2] + 0.6 * average[1]);
      } else {
        score = average[1];
      }
      score = Cut(score * Get(m_learner.goodness, s, 0.0));
      m.syllable_pronunciation.push_back(score);
      total += score;
    }
    if (m_count == 0) return false;
    m.pronunciation = total / m_count;
    return true;
  }

  static int WordValue(const std::vector<int>& syllables, int first, int n) {
    if (n == 0) return 0;
    int sum = 0;
    for (int s = first; s < first + n; ++s) sum += Get(syllables, s, 0);
    if (n == 1) return sum;
    const int value = 2 * sum / n - 100;
    return value < 0 ? 0 : value;
  }

  void Words() {
    for (std::size_t w = 0; w < m_learner.words.num_syllables.size(); ++w) {
      const int first = m_learner.words.first_syllable[w];
      const int n = m_learner.words.num_syllables[w];
      const int p = WordValue(m.syllable_pronunciation, first, n);
      const int pi = WordValue(m.syllable_pitch, first, n);
      const int ti = WordValue(m.syllable_timing, first, n);
      const int in = WordValue(m.syllable_intensity, first, n);
      m.word_pronunciation.push_back(p);
      m.word_pitch.push_back(pi);
      m.word_timing.push_back(ti);
      m.word_intensity.push_back(in);
      m.word_total.push_back(n == 1 ? p : Cut(0.5 * p + 0.2 * pi + 0.2 * ti + 0.1 * in));
    }
  }

  void Total() {
    const double chinese[4][4] = {
        {0.5, 0.2, 0.2, 0.1}, {0.7, 0.3, 0, 0}, {0.7, 0.2, 0.05, 0.05}, {0.65, 0.2, 0.1, 0.05}};
    const double others[4][4] = {
        {0.5, 0.2, 0.2, 0.1}, {1, 0, 0, 0}, {0.85, 0.05, 0.05, 0.05}, {0.75, 0.1, 0.1, 0.05}};
    const int row = m_count <= 3 ? m_count : 0;
    const double* const w = m_language == kChinese ? chinese[row] : others[row];
    double total = m.pronunciation * w[0] + m.pitch * w[1] + m.timing * w[2] + m.intensity * w[3];
    m.factor = m_probability > 0.0 ? 1.0 / (1.0 - std::log(m_probability)) : 0.0;
    if (m.factor < 1.0) {
      total *= m.factor;
      for (int* const score : {&m.pronunciation, &m.pitch, &m.timing, &m.intensity}) {
        *score = Cut(*score * m.factor);
      }
      for (auto* const scores :
           {&m.word_pronunciation, &m.word_pitch, &m.word_timing, &m.word_intensity, &m.word_total,
            &m.syllable_pitch, &m.syllable_timing, &m.syllable_intensity,
            &m.phoneme_pronunciation}) {
        for (int& score : *scores) score = Cut(score * m.factor);
      }
    }
    m.total = Cut(total);
    m.result = m.total;
  }

  const LearnerView& m_learner;
  const RecordingView& m_tutor;
  const double m_probability;
  const int m_language;
  const int m_count;
  LiteralGrades& m;
};

}  // namespace

LiteralGrades GradeLiterally(const Pair& pair) {
  LiteralGrades grades;
  Grading(pair, grades).Run();
  return grades;
}

const std::vector<double>& LiteralNormalisers(LanguageType language) {
  return SymbolsOf(static_cast<int>(language)).normaliser;
}

}  // namespace veral3::test
