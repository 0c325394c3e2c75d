#pragma once

#include <cstdint>
#include <iosfwd>
#include <vector>

#include "recognition/keras/Tensor.h"

namespace keras {

// Type codes of the layers, as the model file has them.
inline constexpr char kConv2D = 'C';
inline constexpr char kMaxPooling = 'M';
inline constexpr char kDense = 'D';
inline constexpr char kFlatten = 'F';
inline constexpr char kDropout = 'O';

// Where a layer puts its result: 1-D results in `values`, 3-D results in `cube`.
struct LayerBuffer {
  std::vector<double> values;
  Cube cube;
};

// One layer of a network: its sizes and weights, read from a model file and constant afterwards.
// compute_output writes to a buffer that belongs to the layer, so one thread at a time may call it;
// evaluate is const and writes to the caller's buffer, so any number of threads may.
class Layer {
 public:
  virtual ~Layer() = default;
  Layer(const Layer&) = delete;
  Layer& operator=(const Layer&) = delete;

  // Reads the text form: tokens separated by white space. Returns 0, or -1 after a message when it
  // stopped early (unknown word, impossible sizes, numbers that lack); a wrong bracket is reported
  // and passed over. A layer that stopped early refuses to be evaluated.
  virtual int load_weights(std::istream& text, bool verbose) = 0;

  // Reads the binary form from a stream that can tell how much of it is left. Returns 0, or -1
  // after a message: a wrong bracket, a negative size, arrays that the rest of the file can't hold.
  virtual int load_binary_weights(std::istream& file, bool verbose) = 0;

  // Writes what load_binary_weights reads; weights become 32-bit floats. Returns 0.
  virtual int save_binary_weights(std::ostream& file) const = 0;

  // Evaluates the layer on `tensor` and points the tensor at the result, which lives in the layer.
  // Returns 0, or -1 without a message when the tensor has other dimensions than the layer takes,
  // no data, or fewer values than the layer needs; the tensor is then unchanged.
  int compute_output(Tensor& tensor) { return evaluate(tensor, m_output); }

  virtual std::int32_t get_input_rows() const = 0;
  virtual std::int32_t get_input_cols() const = 0;
  virtual std::int32_t get_output_units() const = 0;

  // Prints the weights to standard output.
  virtual void print_weights() const = 0;

  // As compute_output, with the result in `buffer`.
  virtual int evaluate(Tensor& tensor, LayerBuffer& buffer) const = 0;

  char type() const { return m_type; }

 protected:
  explicit Layer(char type) : m_type(type) {}

  char m_type;

 private:
  LayerBuffer m_output;
};

}  // namespace keras
