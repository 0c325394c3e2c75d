#pragma once

#include <cstring>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

// Reference inputs and outputs in tests/vectors, computed by programs that share no code with the
// engine.
namespace veral3::test {

std::filesystem::path VectorPath(const std::string& name);

// Read once and kept, so that a loop over a part of it is safe.
const nlohmann::json& LoadVectorJson(const std::string& name);

std::string ReadFile(const std::filesystem::path& path);
void WriteFile(const std::filesystem::path& path, const std::string& bytes);

// A whole little-endian binary file as values of T.
template <typename T>
std::vector<T> LoadVector(const std::string& name) {
  const std::string bytes = ReadFile(VectorPath(name));
  if (bytes.size() % sizeof(T) != 0) throw std::runtime_error("odd size of " + name);
  std::vector<T> values(bytes.size() / sizeof(T));
  if (!bytes.empty()) std::memcpy(values.data(), bytes.data(), bytes.size());
  return values;
}

// A folder that is empty at first and gone when the object ends.
class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  const std::filesystem::path& Path() const { return m_path; }

 private:
  std::filesystem::path m_path;
};

}  // namespace veral3::test
