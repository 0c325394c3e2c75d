#include "recognition/keras/Tensor.h"

#include <iomanip>
#include <locale>
#include <sstream>

#include "common/MessageWriter.h"

namespace keras {

void Cube::resize(std::int32_t x, std::int32_t y, std::int32_t z) {
  const auto rows = static_cast<std::size_t>(x);
  const auto columns = static_cast<std::size_t>(y);
  const auto channels = static_cast<std::size_t>(z);
  // One spare element each keeps data() a pointer when a size is 0.
  m_values.assign(rows * columns * channels + 1, 0.0);
  m_columns.assign(rows * columns + 1, m_values.data());
  m_rows.assign(rows + 1, m_columns.data());
  for (std::size_t i = 0; i < rows * columns; ++i) m_columns[i] = m_values.data() + i * channels;
  for (std::size_t i = 0; i < rows; ++i) m_rows[i] = m_columns.data() + i * columns;
}

void Tensor::view1(double* data, std::int32_t x) {
  release();
  dims = 1;
  data1 = data;
  size_x = x;
}

void Tensor::view3(double*** data, std::int32_t x, std::int32_t y, std::int32_t z) {
  release();
  dims = 3;
  data3 = data;
  size_x = x;
  size_y = y;
  size_z = z;
}

void Tensor::allocate3(std::int32_t x, std::int32_t y, std::int32_t z) {
  auto cube = std::make_shared<Cube>();
  cube->resize(x, y, z);
  view3(cube->data(), x, y, z);
  m_owned = std::move(cube);
  owns_data3 = true;
}

void Tensor::release() {
  if (!owns_data3) return;
  m_owned.reset();
  data3 = nullptr;
  owns_data3 = false;
}

std::string Tensor::to_string() const {
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text.exceptions(std::ios::badbit);  // memory that runs out
  if (dims == 1) {
    text << "1-Dimension Tensor: size_x=" << size_x << "\n[";
    for (std::int32_t x = 0; x < size_x && data1; ++x) text << data1[x] << " ";
    text << "]\n";
  } else if (dims == 2) {
    text << "2-Dimension Tensor: size_x=" << size_x << ", size_y=" << size_y << "\n";
    for (std::int32_t x = 0; x < size_x && data2; ++x) {
      text << "[";
      for (std::int32_t y = 0; y < size_y; ++y) text << data2[x][y] << " ";
      text << "]\n";
    }
  } else if (dims == 3) {
    text << "3-Dimension Tensor: size_x=" << size_x << ", size_y=" << size_y
         << ", size_z=" << size_z << "\n";
    for (std::int32_t x = 0; x < size_x && data3; ++x) {
      text << "Row:" << x << "\n";
      for (std::int32_t y = 0; y < size_y; ++y) {
        text << "[";
        for (std::int32_t z = 0; z < size_z; ++z) text << std::setw(12) << data3[x][y][z] << " ";
        text << "]";
        if (size_z > 1) text << "\n";
      }
      if (size_z <= 1) text << "\n";
    }
  }
  return std::move(text).str();
}

void Tensor::print() const { veral3::Message(veral3::MessageStream::kOutput) << to_string(); }

}  // namespace keras
