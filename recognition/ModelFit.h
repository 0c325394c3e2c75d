#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "recognition/Languages.h"
#include "recognition/ModelFileType.h"
#include "recognition/keras/ModelOutline.h"

// Which networks are fit for which use.
namespace veral3 {

// What a model is for.
enum class ModelUse { kFrames, kPhonemes, kTones, kGoodness };

// What the engine asks of a model of one type. No two types have the same inputs and outputs, so
// that a network tells by its shape what it was made for.
struct ModelNeeds {
  ModelFileType type;
  ModelUse use;
  const LanguageRow* language;  // null for the model of all languages
  std::int32_t inputs;
  std::int32_t outputs;
  bool sums_to_one;  // the outputs must, which only softmax sees to; else sigmoid will do as well
};

// "English frame model".
std::string NameOf(const ModelNeeds& needs);

// All types, in the order of their numbers.
std::span<const ModelNeeds> AllModelNeeds();

// Those of a type; null for a value that names no model.
const ModelNeeds* NeedsOf(ModelFileType type);

// Why a network of this outline, which was read without a fault, is not fit for `needs`.
keras::ModelFault Misfit(const keras::ModelOutline& outline, const ModelNeeds& needs);

}  // namespace veral3
