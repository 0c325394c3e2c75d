#include "MadeModel.h"

#include <bit>
#include <cstdint>
#include <limits>
#include <string_view>
#include <vector>

namespace veral3::fuzz {
namespace {

void AppendInt(std::string& bytes, std::uint32_t value) {
  for (int i = 0; i < 4; ++i) bytes += static_cast<char>(value >> (8 * i) & 0xFF);
}

// Weights of one kind from a seed.
class Weights {
 public:
  explicit Weights(ByteSource& source) : m_kind(source.Below(8)), m_state(source.Byte()) {}

  float Next() {
    m_state = m_state * 1664525u + 1013904223u;
    const float fraction = static_cast<float>(m_state >> 8) / 8388608.0f - 1.0f;  // -1 to 1
    constexpr float kInfinite = std::numeric_limits<float>::infinity();
    switch (m_kind) {
      case 0:
        return 0.0f;
      case 1:
        return fraction * 1e30f;
      case 2:
        return m_state >> 28 == 0 ? std::numeric_limits<float>::quiet_NaN() : fraction;
      case 3:
        return m_state >> 28 == 0 ? kInfinite : m_state >> 28 == 1 ? -kInfinite : fraction;
      case 4:
        return std::bit_cast<float>(m_state);
      default:
        return fraction * 0.2f;
    }
  }

 private:
  std::size_t m_kind;
  std::uint32_t m_state;
};

}  // namespace

std::string MadeModel(ByteSource& source, std::size_t inputs, std::size_t outputs) {
  // Softmax, ReLU, sigmoid, tanh; now and then one that no layer has, which ends the process.
  constexpr std::string_view kActivations = "xrgtxrgtxrgtxrg?";
  std::vector<std::size_t> sizes = {inputs};
  for (std::size_t hidden = source.Below(3); hidden > 0; --hidden) {
    sizes.push_back(1 + source.Below(8));
  }
  sizes.push_back(outputs);
  std::string bytes;
  AppendInt(bytes, source.Byte());
  AppendInt(bytes, static_cast<std::uint32_t>(sizes.size() - 1));
  for (std::size_t layer = 0; layer + 1 < sizes.size(); ++layer) {
    AppendInt(bytes, 0);
    bytes += 'D';
    bytes += kActivations[source.Below(kActivations.size())];
    AppendInt(bytes, static_cast<std::uint32_t>(sizes[layer]));
    AppendInt(bytes, static_cast<std::uint32_t>(sizes[layer + 1]));
    Weights weights(source);
    for (std::size_t group = 0; group <= sizes[layer]; ++group) {  // the last one is the bias
      bytes += '[';
      for (std::size_t i = 0; i < sizes[layer + 1]; ++i) {
        AppendInt(bytes, std::bit_cast<std::uint32_t>(weights.Next()));
      }
      bytes += ']';
    }
  }
  return bytes;
}

}  // namespace veral3::fuzz
