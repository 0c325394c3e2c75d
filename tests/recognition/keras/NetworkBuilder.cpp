#include "recognition/keras/NetworkBuilder.h"

#include <bit>
#include <cmath>
#include <sstream>

#include "recognition/keras/LayerDense.h"

namespace veral3::test {

ModelBytes& ModelBytes::Int(std::int32_t value) {
  for (int i = 0; i < 4; ++i) {
    m_bytes += static_cast<char>(static_cast<std::uint32_t>(value) >> (8 * i) & 0xFF);
  }
  return *this;
}

ModelBytes& ModelBytes::Char(char value) {
  m_bytes += value;
  return *this;
}

ModelBytes& ModelBytes::Group(const std::vector<float>& values) {
  Char('[');
  for (const float value : values) Int(std::bit_cast<std::int32_t>(value));
  return Char(']');
}

int LoadBytes(keras::KerasModel& model, const std::string& bytes) {
  std::istringstream file(bytes);
  return model.load_binary_weights(file, false);
}

std::string AllKindsModel() {
  ModelBytes model;
  model.Header(7, 6);
  model.Layer('C').Char('r').Int(5).Int(4).Int(2).Int(2).Int(3).Int(2).Int(2).Char('s');
  for (int i = 0; i < 12; ++i) {
    model.Group({0.25f * static_cast<float>(i - 5), 0.5f - 0.125f * static_cast<float>(i)});
  }
  model.Group({0.5f, -0.25f});
  model.Layer('M').Int(5).Int(4).Int(2).Int(2).Int(2);
  model.Layer('F').Int(2).Int(2).Int(2);
  model.Layer('O');
  model.Layer('D').Char('t').Int(8).Int(2);
  for (int i = 0; i < 8; ++i) model.Group({0.0625f * static_cast<float>(i), -0.03125f});
  model.Group({0.125f, 1.0f});
  model.Layer('D').Char('x').Int(2).Int(3);
  model.Group({1.0f, -1.0f, 0.5f}).Group({0.25f, 0.75f, -2.0f}).Group({0.0f, 0.125f, 0.25f});
  return model.Bytes();
}

std::vector<double> RandomValues(std::size_t count, std::mt19937& random) {
  std::normal_distribution<double> normal;
  std::vector<double> values(count);
  for (double& value : values) value = normal(random);
  return values;
}

keras::KerasModel RandomDenseModel(const std::vector<int>& sizes, const std::string& activations,
                                   std::mt19937& random) {
  std::vector<std::unique_ptr<keras::Layer>> layers;
  for (std::size_t i = 0; i + 1 < sizes.size(); ++i) {
    const auto inputs = static_cast<std::size_t>(sizes[i]);
    const auto neurons = static_cast<std::size_t>(sizes[i + 1]);
    std::vector<double> weights = RandomValues(inputs * neurons, random);
    for (double& weight : weights) weight /= std::sqrt(static_cast<double>(inputs));
    layers.push_back(std::make_unique<keras::LayerDense>(weights, RandomValues(neurons, random),
                                                         activations[i]));
  }
  return keras::KerasModel(1, std::move(layers));
}

std::vector<std::uint64_t> Bits(const std::vector<double>& values) {
  std::vector<std::uint64_t> bits;
  for (const double value : values) bits.push_back(std::bit_cast<std::uint64_t>(value));
  return bits;
}

}  // namespace veral3::test
