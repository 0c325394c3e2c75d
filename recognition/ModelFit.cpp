#include "recognition/ModelFit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>

#include "recognition/CPhonemeSet.h"
#include "recognition/DLCTToneClassifier.h"
#include "recognition/DLPhonClassifier.h"
#include "recognition/FrameScores.h"
#include "recognition/UGClassifier.h"
#include "recognition/keras/Activation.h"
#include "recognition/keras/Layer.h"

namespace veral3 {
namespace {

using keras::LayerOutline;
using keras::ModelFault;
using keras::ModelOutline;

const char* KindName(char kind) {
  switch (kind) {
    case keras::kConv2D:
      return "a convolution";
    case keras::kMaxPooling:
      return "a max pooling layer";
    case keras::kFlatten:
      return "a flatten layer";
    default:
      return "a dropout layer";
  }
}

const char* ActivationName(char code) {
  switch (code) {
    case keras::kSigmoid:
      return "sigmoid";
    case keras::kTanh:
      return "tanh";
    default:
      return "relu";
  }
}

std::string Shape(std::int32_t inputs, std::int32_t outputs) {
  return std::to_string(inputs) + " inputs and " + std::to_string(outputs) + " outputs";
}

// A chain of dense layers with nothing but dropout between, each taking what the one before gives:
// other kinds take 3-D values, which no classifier hands in.
ModelFault NoChain(const ModelOutline& outline) {
  const LayerOutline* before = nullptr;
  for (std::size_t i = 0; i < outline.layers.size(); ++i) {
    const LayerOutline& layer = outline.layers[i];
    const std::string name = "layer " + std::to_string(i + 1);
    if (layer.kind == keras::kDropout && before != nullptr) continue;
    if (layer.kind != keras::kDense) {
      return {name + " is " + KindName(layer.kind) +
                  (before == nullptr ? " where a dense layer must be"
                                     : " where only dense and dropout layers may be"),
              "give a network of dense layers"};
    }
    if (before != nullptr && layer.cols != before->outputs) {
      return {name + " has " + std::to_string(layer.cols) + " inputs where " +
                  std::to_string(before->outputs) + " values come to it",
              "make the file again"};
    }
    before = &layer;
  }
  return {};
}

// Whether no sum can pass what a double holds, whatever floats the input has. Results that are not
// finite would come of it.
bool StaysFinite(const ModelOutline& outline) {
  double largest = static_cast<double>(std::numeric_limits<float>::max());
  for (const LayerOutline& layer : outline.layers) {
    if (layer.kind != keras::kDense) continue;
    largest = layer.gain * largest + layer.offset;
    if (!std::isfinite(largest)) return false;
    if (layer.activation != keras::kRelu) largest = 1.0;
  }
  return true;
}

ModelFault WrongShape(std::int32_t inputs, std::int32_t outputs, const ModelNeeds& needs) {
  const auto all = AllModelNeeds();
  const auto other = std::ranges::find_if(all, [&](const ModelNeeds& candidate) {
    return candidate.inputs == inputs && candidate.outputs == outputs;
  });
  std::string fault = "it has " + Shape(inputs, outputs);
  const std::string wanted = ", not " + Shape(needs.inputs, needs.outputs);
  if (other == all.end()) {
    return {fault + wanted, "give a file that was made as the " + NameOf(needs)};
  }
  return {fault + " like the " + NameOf(*other) + wanted,
          "load it as what it is, or give a file that was made as the " + NameOf(needs)};
}

}  // namespace

std::span<const ModelNeeds> AllModelNeeds() {
  // Up to three a language, and the goodness model of all.
  struct List {
    std::array<ModelNeeds, 3 * kNumLanguages + 1> needs{};
    std::size_t count = 0;
  };
  static const List all = [] {
    List list;
    const auto add = [&](const ModelNeeds& needs) { list.needs[list.count++] = needs; };
    for (const LanguageRow& row : Languages()) {
      const int phonemes = row.phonemes->GetSize();
      add({row.frame_model.type, ModelUse::kFrames, &row, kFrameInputSize, 3 * phonemes, true});
      // What a phoneme sounds like is a share of the sum of all, whatever that is.
      add({row.phoneme_model.type, ModelUse::kPhonemes, &row, DLPhonClassifier::kInputs, phonemes,
           false});
      if (row.tone_model) {
        add({row.tone_model->type, ModelUse::kTones, &row, DLCTToneClassifier::kInputs,
             DLCTToneClassifier::kTones, true});
      }
    }
    add({kUttGoodnessModel, ModelUse::kGoodness, nullptr, UGClassifier::kInputs,
         UGClassifier::kOutputs, false});
    std::ranges::sort(std::span(list.needs).first(list.count), {}, &ModelNeeds::type);
    return list;
  }();
  return std::span(all.needs).first(all.count);
}

std::string NameOf(const ModelNeeds& needs) {
  const std::string language = needs.language == nullptr ? "" : needs.language->name;
  switch (needs.use) {
    case ModelUse::kFrames:
      return language + " frame model";
    case ModelUse::kPhonemes:
      return language + " phoneme model";
    case ModelUse::kTones:
      return language + " tone model";
    case ModelUse::kGoodness:
      break;
  }
  return "utterance goodness model";
}

const ModelNeeds* NeedsOf(ModelFileType type) {
  const auto all = AllModelNeeds();
  const auto found = std::ranges::find(all, type, &ModelNeeds::type);
  return found == all.end() ? nullptr : &*found;
}

ModelFault Misfit(const ModelOutline& outline, const ModelNeeds& needs) {
  if (outline.version < 0) {
    return {"its version is " + std::to_string(outline.version) +
                ", which is how a failure to load looks",
            "give it a version of 0 or more"};
  }
  if (ModelFault fault = NoChain(outline)) return fault;
  const LayerOutline& first = outline.layers.front();
  const LayerOutline& last = *std::ranges::find(outline.layers.rbegin(), outline.layers.rend(),
                                                keras::kDense, &LayerOutline::kind);
  if (first.cols != needs.inputs || last.outputs != needs.outputs) {
    return WrongShape(first.cols, last.outputs, needs);
  }
  const bool gives_probabilities = last.activation == keras::kSoftmax ||
                                   (last.activation == keras::kSigmoid && !needs.sums_to_one);
  if (!gives_probabilities) {
    return {std::string("its outputs are made by ") + ActivationName(last.activation) +
                (last.activation == keras::kSigmoid ? ", so that they need not sum to 1"
                                                    : ", so that they are no probabilities"),
            std::string("train it with softmax in its last layer") +
                (needs.sums_to_one ? "" : ", or sigmoid")};
  }
  if (!StaysFinite(outline)) {
    return {"its numbers are so large that results may become infinite", "train it again"};
  }
  return {};
}

}  // namespace veral3
