#include "tools/Inspection.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <iterator>
#include <utility>

#include "common/MessageWriter.h"
#include "core/PhonemeDistributions.h"
#include "recognition/CPhonemeSet.h"
#include "recognition/DLCTToneClassifier.h"
#include "recognition/FrameScores.h"
#include "recognition/UGClassifier.h"
#include "recognition/VeralDictionary.h"
#include "recognition/keras/KerasModel.h"
#include "recognition/keras/LayerConv2D.h"
#include "recognition/keras/LayerDense.h"
#include "storage/SavedAlignedAudio.h"
#include "tools/AudioFile.h"
#include "tools/Checksum.h"
#include "tools/EngineMessages.h"
#include "tools/Languages.h"
#include "tools/ModelCheck.h"
#include "tools/Numbers.h"
#include "tools/PrintableText.h"
#include "tools/TutorFile.h"

namespace veral3::tools {
namespace {

constexpr std::array<LanguageType, 3> kLanguages = {kLanguageEnglish, kLanguageChinese,
                                                    kLanguageJapanese};

constexpr std::uintmax_t kMaxFileSize = std::uintmax_t{1} << 30;

std::string DateText(std::uint32_t date) {
  std::string digits = std::to_string(date);
  digits.insert(0, digits.size() < 8 ? 8 - digits.size() : 0, '0');
  return digits.substr(0, digits.size() - 4) + "-" + digits.substr(digits.size() - 4, 2) + "-" +
         digits.substr(digits.size() - 2);
}

const char* VarietyName(HLYFile::SubL2Type variety) {
  switch (variety) {
    case HLYFile::kSubL2American:
      return "American English";
    case HLYFile::kSubL2Taiwan:
      return "Mandarin as spoken in Taiwan";
    case HLYFile::kSubL2Tokyo:
      return "Tokyo Japanese";
    case HLYFile::kSubL2Unknown:
      break;
  }
  return "unknown";
}

void AddTutor(TutorFile& tutor, OrderedJson& json) {
  HLYFile file = AsHLYFile(tutor);
  SavedAlignedAudio audio(tutor.language);
  audio.LoadFromHLY(&file);
  json["format_version"] = kTutorFileVersion;
  json["language"] = LanguageCode(tutor.language);
  json["variety"] = VarietyName(tutor.variety);
  json["teacher"] = tutor.teacher;
  json["date"] = DateText(tutor.date);
  json["sentence"] = tutor.sentence;
  json["num_samples"] = tutor.samples.size();
  json["duration_s"] = RoundedSeconds(static_cast<int>(tutor.samples.size()));
  json["words"] = audio.GetNumOfWords();
  json["syllables"] = audio.GetNumOfSyllables();
  json["phonemes"] = audio.GetNumOfPhonemes();
  json["symbols"] = audio.GetPhonemes();
  json["start_s"] = RoundedSeconds(audio.GetUttStartSampleNum());
  json["end_s"] = RoundedSeconds(audio.GetUttEndSampleNum());
  json["pitch_segments"] = audio.GetUttNumOfPitchSegments();
}

const char* ActivationName(char code) {
  switch (code) {
    case 'r':
      return "relu";
    case 'x':
      return "softmax";
    case 'g':
      return "sigmoid";
    case 't':
      return "tanh";
    default:
      return "unknown";
  }
}

OrderedJson LayerJson(const keras::Layer& layer) {
  OrderedJson json;
  if (const auto* dense = dynamic_cast<const keras::LayerDense*>(&layer)) {
    json["kind"] = "dense";
    json["inputs"] = dense->get_input_cols();
    json["outputs"] = dense->get_output_units();
    json["activation"] = ActivationName(dense->activation());
    return json;
  }
  if (const auto* conv = dynamic_cast<const keras::LayerConv2D*>(&layer)) {
    json["kind"] = "convolution";
    json["rows"] = conv->get_input_rows();
    json["columns"] = conv->get_input_cols();
    json["outputs"] = conv->get_output_units();
    json["activation"] = ActivationName(conv->activation());
    return json;
  }
  json["kind"] = layer.type() == keras::kMaxPooling ? "max pooling"
                 : layer.type() == keras::kFlatten  ? "flatten"
                                                    : "dropout";
  return json;
}

// The models of the engine whose inputs and outputs these are.
OrderedJson UsesOf(const keras::KerasModel& model) {
  OrderedJson uses = OrderedJson::array();
  const auto fits = [&](std::size_t inputs, int outputs) {
    return model.is_dense_chain(static_cast<std::int32_t>(inputs), outputs);
  };
  for (const LanguageType language : kLanguages) {
    const int symbols = PhonemeSetOf(language)->GetSize();
    const std::string name(LanguageName(language));
    if (fits(kFrameInputSize, 3 * symbols)) uses.push_back("frames, " + name);
    if (fits(kPhonemeInputSize, symbols)) uses.push_back("phonemes, " + name);
  }
  if (fits(DLCTToneClassifier::kInputs, DLCTToneClassifier::kTones)) uses.push_back("tones");
  if (fits(UGClassifier::kInputs, UGClassifier::kOutputs)) uses.push_back("utterance goodness");
  return uses;
}

std::string AddModel(const std::filesystem::path& path, OrderedJson& json) {
  if (std::string problem = ModelProblem(path); !problem.empty()) return problem;
  const EngineMessages messages;
  keras::KerasModel model;
  if (model.load_binary_weights(path.string(), false) != 0) return messages.OneLine();
  if (model.layer_count() == 0) return "it has no layers";
  json["version"] = model.version();
  OrderedJson layers = OrderedJson::array();
  std::size_t weights = 0;
  for (std::size_t i = 0; i < model.layer_count(); ++i) {
    layers.push_back(LayerJson(*model.layer(i)));
    if (const auto* dense = dynamic_cast<const keras::LayerDense*>(model.layer(i))) {
      weights += dense->weights().size() + dense->bias().size();
    }
  }
  json["dense_weights"] = weights;
  json["fits"] = UsesOf(model);
  json["layers"] = std::move(layers);
  return "";
}

const char* TagOf(int phoneme_set) {
  switch (phoneme_set) {
    case CPhonemeSet::kEnglish:
      return "EN_KEP5";
    case CPhonemeSet::kChinese:
      return "TW_KCP";
    default:
      return "JP_KJP";
  }
}

std::vector<std::string> FirstFields(std::string_view bytes) {
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  std::string_view line = bytes.substr(0, std::min<std::size_t>(bytes.find('\n'), 256));
  std::vector<std::string> fields;
  constexpr std::string_view kBlanks = " \t\r\v\f";
  while (fields.size() < 4) {
    const std::size_t begin = line.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos) break;
    line.remove_prefix(begin);
    const std::size_t end = std::min(line.find_first_of(kBlanks), line.size());
    fields.emplace_back(line.substr(0, end));
    line.remove_prefix(end);
  }
  return fields;
}

bool IsDictionaryHead(const std::vector<std::string>& fields) {
  return fields.size() == 4 &&
         (fields[2] == "EN_KEP5" || fields[2] == "TW_KCP" || fields[2] == "JP_KJP");
}

// The number that a field begins with, as the engine reads it; null where it has none.
OrderedJson NumberOf(const std::string& field) {
  int value = 0;
  const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
  return error == std::errc() ? OrderedJson(value) : OrderedJson(nullptr);
}

void AddDictionary(const std::filesystem::path& path, const std::vector<std::string>& head,
                   OrderedJson& json) {
  const EngineMessages messages;
  const DictionaryFile file = ReadDictionaryFile(path.c_str());
  int usable = 0;
  int unusable = 0;
  for (std::size_t i = 0; i < file.words.size(); ++i) {
    for (const OwnedWordEntry::Variant& variant : ParseVariants(file, i)) {
      ++(variant.phonemes.empty() ? unusable : usable);
    }
  }
  json["format_version"] = head[1];
  json["phoneme_set"] = TagOf(file.phoneme_set);
  for (const LanguageType language : kLanguages) {
    if (PhonemeSetOf(language)->GetIdentifier() == file.phoneme_set) {
      json["language"] = LanguageCode(language);
    }
  }
  json["announced_words"] = NumberOf(head[3]);
  json["words"] = file.words.size();
  json["pronunciations"] = usable;
  json["unusable_pronunciations"] = unusable;
}

std::string ReadWhole(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string ValueText(const OrderedJson& value) {
  if (value.is_string()) return PrintableText(value.get<std::string>());
  if (value.is_number_float()) return Fixed(value.get<double>(), 3);
  return value.dump();
}

}  // namespace

Result<OrderedJson> Inspect(const std::filesystem::path& path) {
  using Failure = Result<OrderedJson>;
  if (std::string problem = FileProblem(path); !problem.empty()) {
    return Failure::Failure(std::move(problem));
  }
  std::error_code error;
  if (std::filesystem::file_size(path, error) > kMaxFileSize && !error) {
    return Failure::Failure("is larger than any file of the engine's (1 GiB)");
  }
  OrderedJson json;
  json["file"] = path.string();
  json["kind"] = "";
  const std::string bytes = ReadWhole(path);
  json["size_bytes"] = bytes.size();
  json["sha256"] = Hexadecimal(Sha256(bytes));
  if (const auto head = FirstFields(bytes); IsDictionaryHead(head)) {
    json["kind"] = "dictionary";
    AddDictionary(path, head, json);
    return json;
  }
  if (bytes.starts_with("RIFF")) {
    Result<TutorFile> tutor = LoadTutor(path);
    if (!tutor) return Failure::Failure(tutor.Error());
    json["kind"] = "tutor file";
    AddTutor(*tutor, json);
    return json;
  }
  if (const std::string problem = AddModel(path, json); !problem.empty()) {
    return Failure::Failure("is no tutor file, no dictionary and no model (" + problem + ")");
  }
  json["kind"] = "model";
  return json;
}

std::string InspectionTable(const OrderedJson& inspection) {
  constexpr std::size_t kWidth = 26;
  std::string table = PrintableText(inspection["file"].get<std::string>()) + "\n";
  for (const auto& [key, value] : inspection.items()) {
    if (key == "file") continue;
    std::string name = "  " + key;
    std::replace(name.begin(), name.end(), '_', ' ');
    name.resize(std::max(name.size() + 1, kWidth), ' ');
    if (!value.is_array()) {
      table += name + ValueText(value) + "\n";
      continue;
    }
    if (value.empty()) table += name + "-\n";
    for (const OrderedJson& item : value) {
      std::string line;
      if (item.is_object()) {
        for (const auto& [part, of] : item.items()) {
          if (part != "kind") line += ", " + part + " ";
          line += ValueText(of);
        }
      } else {
        line = ValueText(item);
      }
      table += name + line + "\n";
      name.assign(kWidth, ' ');
    }
  }
  return table;
}

}  // namespace veral3::tools
