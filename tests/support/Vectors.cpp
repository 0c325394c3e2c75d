#include "support/Vectors.h"

#include <stdlib.h>

#include <fstream>
#include <map>
#include <sstream>

namespace veral3::test {

std::filesystem::path VectorPath(const std::string& name) {
  return std::filesystem::path(VERAL3_VECTOR_DIR) / name;
}

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot open " + path.string());
  std::ostringstream bytes;
  bytes << file.rdbuf();
  return std::move(bytes).str();
}

void WriteFile(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!file) throw std::runtime_error("cannot write " + path.string());
}

const nlohmann::json& LoadVectorJson(const std::string& name) {
  static std::map<std::string, nlohmann::json> loaded;
  const auto place = loaded.find(name);
  if (place != loaded.end()) return place->second;
  return loaded.emplace(name, nlohmann::json::parse(ReadFile(VectorPath(name)))).first->second;
}

ScratchFolder::ScratchFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "veral3-test-XXXXXX").string();
  if (!mkdtemp(pattern.data())) throw std::runtime_error("cannot make a scratch folder");
  m_path = pattern;
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(m_path, ignored);
}

}  // namespace veral3::test
