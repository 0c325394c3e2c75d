#include "recognition/keras/Activation.h"

#include <cmath>

#include "common/MessageWriter.h"
#include "recognition/keras/Exp.h"

namespace keras {
namespace {

void Softmax(std::span<double> values) {
  if (values.empty()) return;
  double largest = values[0];
  for (const double value : values) {
    if (value > largest) largest = value;
  }
  double sum = 0.0;
  for (double& value : values) {
    value = Exp(value - largest);
    sum += value;
  }
  for (double& value : values) value /= sum;
}

}  // namespace

void ApplyActivation(char code, std::span<double> values) {
  switch (code) {
    case kRelu:
      for (double& value : values) value = 0.0 > value ? 0.0 : value;
      break;
    case kSoftmax:
      Softmax(values);
      break;
    case kSigmoid:
      for (double& value : values) value = 1.0 / (Exp(-value) + 1.0);
      break;
    case kTanh:
      for (double& value : values) value = std::tanh(value);
      break;
    default:
      UndefinedActivation(code);
  }
}

char ActivationOfWord(std::string_view word) {
  if (word == "relu") return kRelu;
  if (word == "softmax") return kSoftmax;
  if (word == "sigmoid") return kSigmoid;
  if (word == "tanh") return kTanh;
  return 0;
}

void UndefinedActivation(char code) {
  veral3::Message(veral3::MessageStream::kError)
      << "Activation type:[" << code << "] not defined!\n"
      << "Please add its implementation before use.\n";
  veral3::EndProcess(-1);
}

}  // namespace keras
