#pragma once

#include <span>
#include <string_view>

namespace keras {

// Activation codes as the model file has them.
inline constexpr char kRelu = 'r';
inline constexpr char kSoftmax = 'x';  // dense layers only
inline constexpr char kSigmoid = 'g';
inline constexpr char kTanh = 't';

constexpr bool IsActivation(char code) {
  return code == kRelu || code == kSoftmax || code == kSigmoid || code == kTanh;
}

// Applies the activation in place. Relu keeps NaN and -0.0. Softmax subtracts the largest value
// first, so large values do not overflow; its sum runs in index order. Any other code ends the
// process: it can only come from a damaged model file.
void ApplyActivation(char code, std::span<double> values);

// "relu" and so on to its code; 0 for a word that names none.
char ActivationOfWord(std::string_view word);

// Reports an activation code that the layer does not have, and ends the process.
[[noreturn]] void UndefinedActivation(char code);

}  // namespace keras
