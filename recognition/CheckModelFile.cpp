#include "recognition/CheckModelFile.h"

#include <filesystem>
#include <fstream>

#include "recognition/ModelFit.h"

namespace veral3 {
namespace {

using keras::ModelFault;

constexpr const char* kGiveModel = "give the path of a model file";
constexpr const char* kGiveReadable = "give a file that can be read";

// Why there is no file to read. Only a regular file says how long it is, and ends.
ModelFault NoFile(const char* path) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  if (status.type() == std::filesystem::file_type::not_found) {
    return {"it does not exist", kGiveModel};
  }
  if (status.type() == std::filesystem::file_type::none) {
    return {"it cannot be opened (" + error.message() + ")", kGiveReadable};
  }
  if (!std::filesystem::is_regular_file(status)) return {"it is not a regular file", kGiveModel};
  return {};
}

ModelFault FaultOf(const char* path, const ModelNeeds& needs) {
  if (ModelFault fault = NoFile(path)) return fault;
  std::ifstream file(path, std::ios::binary);
  if (!file) return {"it cannot be opened", kGiveReadable};
  keras::ModelOutline outline;
  if (ModelFault fault = keras::ReadModelOutline(file, outline)) return fault;
  return Misfit(outline, needs);
}

std::string Check(const char* path, ModelFileType type) {
  if (path == nullptr) return std::string("no model file was named; ") + kGiveModel;
  const std::string name = path;
  const ModelNeeds* const needs = NeedsOf(type);
  if (needs == nullptr) {
    return name + " cannot be loaded as model type " + std::to_string(type) +
           ", which names no model; give one of ModelFileType";
  }
  const ModelFault fault = FaultOf(path, *needs);
  if (!fault) return "";
  return name + " cannot be used as the " + NameOf(*needs) + ": " + fault.fault + "; " +
         fault.remedy;
}

}  // namespace

std::string CheckModelFile(const char* path, ModelFileType type) noexcept {
  try {
    return Check(path, type);
  } catch (...) {
    return "out of memory";  // short enough for a string to hold without allocating
  }
}

}  // namespace veral3
