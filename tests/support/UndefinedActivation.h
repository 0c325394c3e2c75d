#pragma once

#include <string>
#include <utility>

#include "recognition/ModelFileType.h"
#include "support/Vectors.h"

namespace veral3::test {

// While it lives, a model of the small engine has the right shape and an activation code that no
// layer knows: it loads, and ends the process where it is first used.
class UndefinedActivation {
 public:
  explicit UndefinedActivation(ModelFileType type);
  ~UndefinedActivation();  // the small engine's own again
  UndefinedActivation(const UndefinedActivation&) = delete;
  UndefinedActivation& operator=(const UndefinedActivation&) = delete;

  const std::string& Path() const { return m_path; }

 private:
  const ScratchFolder m_folder;
  const std::string m_path = m_folder.Path() / "undefined.model";
  const ModelFileType m_type;
};

// What the engine says before it ends the process.
inline constexpr char kUndefinedActivation[] =
    "Activation type:[y] not defined!\nPlease add its implementation before use.\n";

}  // namespace veral3::test
