#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "recognition/keras/KerasModel.h"

// Model files and networks made in memory.
namespace veral3::test {

// The bytes of a model file, piece by piece.
class ModelBytes {
 public:
  ModelBytes& Int(std::int32_t value);
  ModelBytes& Char(char value);
  ModelBytes& Group(const std::vector<float>& values);  // "[" values "]"
  ModelBytes& Header(std::int32_t version, std::int32_t layers) { return Int(version).Int(layers); }
  ModelBytes& Layer(char code) { return Int(0).Char(code); }
  const std::string& Bytes() const { return m_bytes; }

 private:
  std::string m_bytes;
};

// Loads from bytes; returns the loader's result.
int LoadBytes(keras::KerasModel& model, const std::string& bytes);

// A model file in which every layer kind takes part: 5 x 4 x 2 to 3 values.
std::string AllKindsModel();

// Chain of dense layers of the given sizes, weights normal, activations as given.
keras::KerasModel RandomDenseModel(const std::vector<int>& sizes, const std::string& activations,
                                   std::mt19937& random);

std::vector<double> RandomValues(std::size_t count, std::mt19937& random);

// The bits of the values, for comparisons to the last bit.
std::vector<std::uint64_t> Bits(const std::vector<double>& values);

}  // namespace veral3::test
