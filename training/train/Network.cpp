#include "training/train/Network.h"

#include <array>
#include <cmath>
#include <fstream>
#include <stdexcept>

namespace veral3::training {
namespace {

constexpr std::array<char, 8> kMagic = {'V', '3', 'N', 'E', 'T', 'W', '1', '\n'};

void WriteInt(std::ofstream& file, std::int32_t value) {
  file.write(reinterpret_cast<const char*>(&value), sizeof value);
}

void WriteFloats(std::ofstream& file, std::span<const float> values) {
  file.write(reinterpret_cast<const char*>(values.data()),
             static_cast<std::streamsize>(values.size_bytes()));
}

std::int32_t ReadInt(std::ifstream& file) {
  std::int32_t value = 0;
  file.read(reinterpret_cast<char*>(&value), sizeof value);
  return value;
}

std::vector<float> ReadFloats(std::ifstream& file, std::size_t count) {
  std::vector<float> values(count);
  file.read(reinterpret_cast<char*>(values.data()),
            static_cast<std::streamsize>(count * sizeof(float)));
  return values;
}

void Check(const std::ios& file, const std::filesystem::path& path, const char* what) {
  if (!file) throw std::runtime_error(std::string(what) + " " + path.string());
}

}  // namespace

DenseLayer RandomLayer(int inputs, int outputs, Random& random) {
  DenseLayer layer{inputs, outputs, {}, {}};
  const double deviation = std::sqrt(2.0 / inputs);
  for (int k = 0; k < inputs * outputs; ++k) {
    layer.weights.push_back(static_cast<float>(random.Normal() * deviation));
  }
  layer.bias.assign(static_cast<std::size_t>(outputs), 0.0f);
  return layer;
}

Network FoldScaling(const Network& network) {
  Network folded = network;
  DenseLayer& first = folded.layers.front();
  const auto outputs = static_cast<std::size_t>(first.outputs);
  std::vector<double> bias(first.bias.begin(), first.bias.end());
  for (std::size_t i = 0; i < static_cast<std::size_t>(first.inputs); ++i) {
    const double scale = 1.0 / double{network.input_deviation[i]};
    for (std::size_t j = 0; j < outputs; ++j) {
      const double weight = double{first.weights[i * outputs + j]} * scale;
      bias[j] -= weight * double{network.input_mean[i]};
      first.weights[i * outputs + j] = static_cast<float>(weight);
    }
    folded.input_mean[i] = 0.0f;
    folded.input_deviation[i] = 1.0f;
  }
  for (std::size_t j = 0; j < outputs; ++j) first.bias[j] = static_cast<float>(bias[j]);
  return folded;
}

Network WithTemperature(const Network& network, double temperature) {
  if (!(temperature > 0.0)) throw std::runtime_error("a temperature must be above 0");
  Network result = network;
  DenseLayer& last = result.layers.back();
  for (float& weight : last.weights) weight = static_cast<float>(double{weight} / temperature);
  for (float& bias : last.bias) bias = static_cast<float>(double{bias} / temperature);
  return result;
}

void ExportModel(const Network& network, std::int32_t version, const std::filesystem::path& path) {
  if (version <= 0) throw std::runtime_error("a model's version must be positive");
  const Network folded = FoldScaling(network);
  std::ofstream file(path, std::ios::binary);
  WriteInt(file, version);
  WriteInt(file, static_cast<std::int32_t>(folded.layers.size()));
  for (std::size_t number = 0; number < folded.layers.size(); ++number) {
    const DenseLayer& layer = folded.layers[number];
    WriteInt(file, static_cast<std::int32_t>(number));
    file.put('D').put(number + 1 == folded.layers.size() ? 'x' : 'r');
    WriteInt(file, layer.inputs);
    WriteInt(file, layer.outputs);
    const auto outputs = static_cast<std::size_t>(layer.outputs);
    for (std::size_t i = 0; i < static_cast<std::size_t>(layer.inputs); ++i) {
      file.put('[');
      WriteFloats(file, std::span(layer.weights).subspan(i * outputs, outputs));
      file.put(']');
    }
    file.put('[');
    WriteFloats(file, layer.bias);
    file.put(']');
  }
  file.close();
  Check(file, path, "cannot write");
}

Network ImportModel(const std::filesystem::path& path) {
  constexpr std::int32_t kLargest = 1 << 14;  // of a layer; more is damage
  std::ifstream file(path, std::ios::binary);
  const auto expect = [&](bool good) {
    if (!file || !good) {
      throw std::runtime_error(path.string() + " holds no network that can be trained further");
    }
  };
  expect(true);
  ReadInt(file);  // version
  const std::int32_t count = ReadInt(file);
  expect(count >= 1 && count <= 16);
  Network network;
  for (std::int32_t number = 0; number < count; ++number) {
    DenseLayer layer;
    ReadInt(file);  // number
    expect(file.get() == 'D');
    expect(file.get() == (number + 1 == count ? 'x' : 'r'));
    layer.inputs = ReadInt(file);
    layer.outputs = ReadInt(file);
    expect(layer.inputs > 0 && layer.inputs <= kLargest && layer.outputs > 0 &&
           layer.outputs <= kLargest && (number == 0 || layer.inputs == network.NumOutputs()));
    const auto outputs = static_cast<std::size_t>(layer.outputs);
    for (std::int32_t i = 0; i < layer.inputs; ++i) {
      expect(file.get() == '[');
      const std::vector<float> row = ReadFloats(file, outputs);
      layer.weights.insert(layer.weights.end(), row.begin(), row.end());
      expect(file.get() == ']');
    }
    expect(file.get() == '[');
    layer.bias = ReadFloats(file, outputs);
    expect(file.get() == ']');
    network.layers.push_back(std::move(layer));
  }
  network.input_mean.assign(static_cast<std::size_t>(network.NumInputs()), 0.0f);
  network.input_deviation.assign(static_cast<std::size_t>(network.NumInputs()), 1.0f);
  return network;
}

void SaveCheckpoint(const Network& network, const std::filesystem::path& path) {
  const std::filesystem::path unfinished = path.string() + ".part";
  std::ofstream file(unfinished, std::ios::binary);
  file.write(kMagic.data(), kMagic.size());
  WriteInt(file, static_cast<std::int32_t>(network.layers.size()));
  for (const DenseLayer& layer : network.layers) {
    WriteInt(file, layer.inputs);
    WriteInt(file, layer.outputs);
    WriteFloats(file, layer.weights);
    WriteFloats(file, layer.bias);
  }
  WriteFloats(file, network.input_mean);
  WriteFloats(file, network.input_deviation);
  file.close();
  Check(file, path, "cannot write");
  std::filesystem::rename(unfinished, path);
}

Network LoadCheckpoint(const std::filesystem::path& path) {
  constexpr std::int32_t kLargest = 1 << 14;  // of a layer; more is damage
  std::ifstream file(path, std::ios::binary);
  std::array<char, 8> magic{};
  file.read(magic.data(), magic.size());
  if (!file || magic != kMagic) throw std::runtime_error("no network in " + path.string());
  Network network;
  const std::int32_t count = ReadInt(file);
  if (count < 1 || count > 16) throw std::runtime_error("no network in " + path.string());
  for (std::int32_t i = 0; i < count; ++i) {
    DenseLayer layer;
    layer.inputs = ReadInt(file);
    layer.outputs = ReadInt(file);
    if (layer.inputs < 1 || layer.outputs < 1 || layer.inputs > kLargest ||
        layer.outputs > kLargest) {
      throw std::runtime_error("no network in " + path.string());
    }
    const auto outputs = static_cast<std::size_t>(layer.outputs);
    layer.weights = ReadFloats(file, static_cast<std::size_t>(layer.inputs) * outputs);
    layer.bias = ReadFloats(file, outputs);
    network.layers.push_back(std::move(layer));
  }
  const auto inputs = static_cast<std::size_t>(network.NumInputs());
  network.input_mean = ReadFloats(file, inputs);
  network.input_deviation = ReadFloats(file, inputs);
  Check(file, path, "cut short:");
  return network;
}

}  // namespace veral3::training
