#include "tools/Inspection.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <utility>

#include "common/MessageWriter.h"
#include "recognition/Languages.h"
#include "recognition/ModelFit.h"
#include "recognition/VeralDictionary.h"
#include "recognition/keras/Layer.h"
#include "recognition/keras/ModelOutline.h"
#include "storage/SavedAlignedAudio.h"
#include "tools/AudioFile.h"
#include "tools/Checksum.h"
#include "tools/EngineMessages.h"
#include "tools/Numbers.h"
#include "tools/PrintableText.h"
#include "tools/TutorFile.h"

namespace veral3::tools {
namespace {

constexpr std::uintmax_t kMaxFileSize = std::uintmax_t{1} << 30;
constexpr std::uintmax_t kMaxDictionarySize = std::uintmax_t{1} << 26;  // it is read whole
constexpr std::size_t kHeadSize = 512;  // tells the kinds of file apart

std::string DateText(std::uint32_t date) {
  std::string digits = std::to_string(date);
  digits.insert(0, digits.size() < 8 ? 8 - digits.size() : 0, '0');
  return digits.substr(0, digits.size() - 4) + "-" + digits.substr(digits.size() - 4, 2) + "-" +
         digits.substr(digits.size() - 2);
}

const char* VarietyName(HLYFile::SubL2Type variety) {
  const auto& rows = Languages();
  const auto row = std::ranges::find(rows, variety, &LanguageRow::variety);
  return row == rows.end() ? "unknown" : row->variety_name;
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

OrderedJson LayerJson(const keras::LayerOutline& layer) {
  OrderedJson json;
  switch (layer.kind) {
    case keras::kDense:
      json["kind"] = "dense";
      json["inputs"] = layer.cols;
      json["outputs"] = layer.outputs;
      json["activation"] = ActivationName(layer.activation);
      break;
    case keras::kConv2D:
      json["kind"] = "convolution";
      json["rows"] = layer.rows;
      json["columns"] = layer.cols;
      json["outputs"] = layer.outputs;
      json["activation"] = ActivationName(layer.activation);
      break;
    case keras::kMaxPooling:
      json["kind"] = "max pooling";
      break;
    case keras::kFlatten:
      json["kind"] = "flatten";
      break;
    default:
      json["kind"] = "dropout";
  }
  return json;
}

std::string UseName(const ModelNeeds& needs) {
  switch (needs.use) {
    case ModelUse::kFrames:
      return std::string("frames, ") + needs.language->name;
    case ModelUse::kPhonemes:
      return std::string("phonemes, ") + needs.language->name;
    case ModelUse::kTones:
      return "tones";
    case ModelUse::kGoodness:
      break;
  }
  return "utterance goodness";
}

std::string AddModel(const std::filesystem::path& path, OrderedJson& json) {
  std::ifstream file(path, std::ios::binary);
  keras::ModelOutline model;
  if (const keras::ModelFault fault = keras::ReadModelOutline(file, model)) return fault.fault;
  OrderedJson layers = OrderedJson::array();
  std::uint64_t weights = 0;
  for (const keras::LayerOutline& layer : model.layers) {
    layers.push_back(LayerJson(layer));
    if (layer.kind == keras::kDense) weights += layer.numbers;
  }
  OrderedJson uses = OrderedJson::array();
  for (const ModelNeeds& needs : AllModelNeeds()) {
    if (!Misfit(model, needs)) uses.push_back(UseName(needs));
  }
  json["version"] = model.version;
  json["dense_weights"] = weights;
  json["fits"] = std::move(uses);
  json["layers"] = std::move(layers);
  return "";
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
  return fields.size() == 4 && FindLanguageOfTag(fields[2]) != nullptr;
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
  const LanguageRow* const row = FindLanguageOfTag(head[2]);
  json["phoneme_set"] = row->phoneme_tag;
  json["language"] = row->code;
  json["announced_words"] = NumberOf(head[3]);
  json["words"] = file.words.size();
  json["pronunciations"] = usable;
  json["unusable_pronunciations"] = unusable;
}

std::string ReadHead(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::string head(kHeadSize, '\0');
  file.read(head.data(), static_cast<std::streamsize>(head.size()));
  head.resize(static_cast<std::size_t>(file.gcount()));
  return head;
}

// Names the kind, and tells the bytes by their checksum.
void AddKind(const std::filesystem::path& path, const char* kind, OrderedJson& json) {
  std::ifstream file(path, std::ios::binary);
  json["kind"] = kind;
  json["size_bytes"] = std::filesystem::file_size(path);
  json["sha256"] = Hexadecimal(Sha256(file));
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
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (size > kMaxFileSize && !error) {
    return Failure::Failure("is larger than any file of the engine's (1 GiB)");
  }
  OrderedJson json;
  json["file"] = path.string();
  const std::string bytes = ReadHead(path);
  if (const auto head = FirstFields(bytes); IsDictionaryHead(head)) {
    if (size > kMaxDictionarySize) {
      return Failure::Failure("begins as a dictionary, but is larger than any (64 MiB)");
    }
    AddKind(path, "dictionary", json);
    AddDictionary(path, head, json);
    return json;
  }
  if (bytes.starts_with("RIFF")) {
    Result<TutorFile> tutor = LoadTutor(path);
    if (!tutor) return Failure::Failure(tutor.Error());
    AddKind(path, "tutor file", json);
    AddTutor(*tutor, json);
    return json;
  }
  OrderedJson model;
  if (const std::string problem = AddModel(path, model); !problem.empty()) {
    return Failure::Failure("is no tutor file, no dictionary and no model (" + problem + ")");
  }
  AddKind(path, "model", json);
  json.update(model);
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
