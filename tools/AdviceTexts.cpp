#include "tools/AdviceTexts.h"

#include "recognition/Languages.h"

namespace veral3::tools {

std::string_view NameOf(AdviceKind kind) {
  switch (kind) {
    case AdviceKind::kPitch:
      return "pitch";
    case AdviceKind::kTiming:
      return "timing";
    case AdviceKind::kIntensity:
      break;
  }
  return "loudness";
}

std::vector<AdviceText> AdviceTextsOf(AdviceKind kind, LanguageType language) {
  switch (kind) {
    case AdviceKind::kPitch:
      if (HasTones(language)) {
        std::vector<AdviceText> tones;
        for (char tone = '0'; tone <= '4'; ++tone) {
          tones.push_back({tone, "said most like " + ToneText(tone - '0')});
        }
        return tones;
      }
      return {{'-', "pitch is fine here"},
              {'h', "pitch too high"},
              {'H', "pitch much too high"},
              {'l', "pitch should be higher"},
              {'L', "pitch should be much higher"}};
    case AdviceKind::kTiming:
      return {{'-', "length is fine here"},
              {'l', "too long"},
              {'L', "much too long"},
              {'s', "too short"},
              {'S', "much too short"}};
    case AdviceKind::kIntensity:
      break;
  }
  return {{'-', "loudness is fine here"},
          {'h', "too loud"},
          {'H', "much too loud"},
          {'l', "too soft"},
          {'L', "much too soft"}};
}

std::string ToneText(int tone_class) {
  return tone_class == 0 ? "the neutral tone" : "tone " + std::to_string(tone_class);
}

bool ContradictsLengths(char timing_letter, int learner, int tutor) {
  switch (timing_letter) {
    case 'l':
    case 'L':
      return learner <= tutor;
    case 's':
    case 'S':
      return learner >= tutor;
    default:
      return false;
  }
}

std::string AdviceOf(AdviceKind kind, LanguageType language, char letter) {
  if (letter == '-') return "";
  for (const AdviceText& advice : AdviceTextsOf(kind, language)) {
    if (advice.letter == letter) return advice.text;
  }
  return "";
}

}  // namespace veral3::tools
