#include "support/UndefinedActivation.h"

#include <memory>
#include <stdexcept>
#include <vector>

#include "core/AnalyzedAudio.h"
#include "recognition/keras/KerasModel.h"
#include "recognition/keras/LayerDense.h"
#include "support/SmallEngine.h"

namespace veral3::test {
namespace {

struct Shape {
  const char* file;  // the small engine's own
  std::size_t inputs, outputs;
};

Shape ShapeOf(ModelFileType type) {
  switch (type) {
    case kFrameModelEnglish:
      return {"frame_en.bin", 195, 111};
    case kPhonemeModelEnglish:
      return {"phon_en.bin", 624, 37};
    case kUttGoodnessModel:
      return {"good.bin", 16, 2};
    default:
      throw std::invalid_argument("no such model here");
  }
}

void LoadAs(const std::string& path, ModelFileType type) {
  if (AnalyzedAudio::LoadModelFile(path.c_str(), type) < 0) {
    throw std::runtime_error("cannot load " + path);
  }
}

}  // namespace

UndefinedActivation::UndefinedActivation(ModelFileType type) : m_type(type) {
  LoadSmallEngine();
  const Shape shape = ShapeOf(type);
  std::vector<std::unique_ptr<keras::Layer>> layers;
  layers.push_back(
      std::make_unique<keras::LayerDense>(std::vector<double>(shape.inputs * shape.outputs, 0.0),
                                          std::vector<double>(shape.outputs, 0.0), 'y'));
  if (keras::KerasModel(1, std::move(layers)).save_binary_weights(m_path) != 0) {
    throw std::runtime_error("cannot write " + m_path);
  }
  LoadAs(m_path, type);
}

UndefinedActivation::~UndefinedActivation() {
  LoadAs(VectorPath(std::string("models/") + ShapeOf(m_type).file), m_type);
}

}  // namespace veral3::test
