#include "tools/ModelCheck.h"

#include "recognition/keras/Activation.h"
#include "recognition/keras/KerasModel.h"
#include "recognition/keras/LayerConv2D.h"
#include "recognition/keras/LayerDense.h"
#include "tools/EngineMessages.h"

namespace veral3::tools {
namespace {

bool HasKnownActivation(const keras::Layer* layer) {
  char code = keras::kRelu;
  bool softmax = false;
  if (const auto* dense = dynamic_cast<const keras::LayerDense*>(layer)) {
    code = dense->activation();
    softmax = true;
  } else if (const auto* conv = dynamic_cast<const keras::LayerConv2D*>(layer)) {
    code = conv->activation();
  }
  return code == keras::kRelu || code == keras::kSigmoid || code == keras::kTanh ||
         (softmax && code == keras::kSoftmax);
}

}  // namespace

std::string ModelProblem(const std::filesystem::path& path) {
  const EngineMessages messages;
  keras::KerasModel model;
  if (model.load_binary_weights(path.string(), false) != 0) return messages.OneLine();
  for (std::size_t i = 0; i < model.layer_count(); ++i) {
    if (!HasKnownActivation(model.layer(i))) {
      return "layer " + std::to_string(i + 1) + " has an unknown activation; the file is damaged";
    }
  }
  return "";
}

}  // namespace veral3::tools
