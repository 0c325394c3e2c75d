#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace keras {

// A block of [rows][columns][channels] doubles that can be indexed as data()[x][y][z]. It owns its
// values; the pointers stay valid until the next resize. Movable, not copyable.
class Cube {
 public:
  Cube() = default;
  Cube(Cube&&) = default;
  Cube& operator=(Cube&&) = default;

  // Makes room for x * y * z values, all 0.0. Sizes are not negative.
  void resize(std::int32_t x, std::int32_t y, std::int32_t z);
  double*** data() { return m_rows.data(); }  // never null after a resize

 private:
  std::vector<double> m_values;
  std::vector<double*> m_columns;
  std::vector<double**> m_rows;
};

// The value that layers hand on to one another: a view of 1-D, 2-D or 3-D data and its sizes. A
// layer reads it and then points it at its own result, so a tensor is good only until the same
// layers (or the same Workspace) are used again.
//
//   keras::Tensor tensor;
//   tensor.view1(values, n);            // the caller's array, not owned
//   tensor.allocate3(rows, cols, ch);   // 3-D input that the tensor itself holds
//   tensor.data3[x][y][z] = ...;
//
// Copies of a tensor share the 3-D data that it holds.
class Tensor {
 public:
  std::int32_t dims = 0;      // 1, 2 or 3; 0 when nothing was set
  double* data1 = nullptr;    // [size_x]
  double** data2 = nullptr;   // [size_x][size_y]
  double*** data3 = nullptr;  // [size_x][size_y][size_z]
  bool owns_data3 = false;    // data3 was made by allocate3 and is held by this tensor
  std::int32_t size_x = 0;    // rows, or length of 1-D data
  std::int32_t size_y = 0;    // columns
  std::int32_t size_z = 0;    // channels

  void view1(double* data, std::int32_t x);
  void view3(double*** data, std::int32_t x, std::int32_t y, std::int32_t z);

  // Holds x * y * z zeros of its own. What it held before is freed.
  void allocate3(std::int32_t x, std::int32_t y, std::int32_t z);

  // Frees the 3-D data that the tensor holds; without owns_data3 it leaves everything as it is.
  void release();

  // The sizes and all values as text, several lines.
  std::string to_string() const;

  // Writes to_string() to standard output.
  void print() const;

 private:
  std::shared_ptr<Cube> m_owned;
};

}  // namespace keras
