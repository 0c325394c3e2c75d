#pragma once

#include <optional>
#include <string>
#include <utility>

namespace veral3::tools {

// A value, or one sentence for the user that says why there is none (no line end, no file name).
template <typename T>
class Result {
 public:
  Result(T value) : m_value(std::move(value)) {}
  static Result Failure(std::string error) {
    Result result;
    result.m_error = std::move(error);
    return result;
  }

  explicit operator bool() const { return m_value.has_value(); }
  T& operator*() { return *m_value; }
  const T& operator*() const { return *m_value; }
  T* operator->() { return &*m_value; }
  const T* operator->() const { return &*m_value; }
  const std::string& Error() const { return m_error; }

 private:
  Result() = default;

  std::optional<T> m_value;
  std::string m_error;
};

}  // namespace veral3::tools
