#include "signal/HShell.h"

#include <array>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <iomanip>
#include <memory>
#include <new>
#include <utility>

#include "common/MessageWriter.h"

namespace veral3 {
namespace {

constexpr std::string_view kProgramName = "Veral3";

std::atomic<bool> g_abort_on_error = false;
std::atomic<bool> g_print_config_at_exit = false;

// Never destroyed: destructors of other static objects may still report.
std::deque<ConfParam>& AllConfig() {
  static std::deque<ConfParam>& all = *new std::deque<ConfParam>;
  return all;
}

// A formatted text. A short one needs no memory, and a long one that finds none is cut: reports
// tell of memory that ran out.
class ReportText {
 public:
  [[gnu::format(printf, 2, 0)]] ReportText(const char* format, std::va_list args) {
    std::va_list again;
    va_copy(again, args);
    const int length = std::vsnprintf(m_short.data(), m_short.size(), format, args);
    const std::size_t size = length > 0 ? static_cast<std::size_t>(length) + 1 : 0;
    if (size > m_short.size()) m_long.reset(new (std::nothrow) char[size]);
    if (m_long) std::vsnprintf(m_long.get(), size, format, again);
    va_end(again);
  }
  const char* Get() const { return m_long ? m_long.get() : m_short.data(); }

 private:
  std::array<char, 1024> m_short{};
  std::unique_ptr<char[]> m_long;
};

// All reports, in one message each so that those of two threads don't mix.
void Report(int code, const ReportText& text) {
  std::fflush(stdout);
  if (code > 0) {
    Message(MessageStream::kError)
        << "  ERROR [" << std::showpos << code << "]" << text.Get()
        << "\n FATAL ERROR - Terminating program " << kProgramName << "\n";
    if (g_abort_on_error) std::abort();
    ExitToolkit(code);
  }
  Message(MessageStream::kOutput) << " WARNING [" << std::showpos << code << "]" << text.Get()
                                  << " in " << kProgramName << "\n";
}

template <typename T>
bool Find(const ConfigList& list, std::string_view name, T* value) {
  for (ConfParam* parameter : list) {
    if (parameter->name != name) continue;
    const T* found = std::get_if<T>(&parameter->value);
    if (found == nullptr) continue;
    *value = *found;
    parameter->seen = true;
    return true;
  }
  return false;
}

}  // namespace

void ReportError(int code, const char* format, ...) {
  std::va_list args;
  va_start(args, format);
  const ReportText text(format, args);
  va_end(args);
  Report(code, text);
}

void FatalError(int code, const char* format, ...) {
  std::va_list args;
  va_start(args, format);
  const ReportText text(format, args);
  va_end(args);
  Report(code, text);
  ExitToolkit(code);
}

void SetAbortOnError(bool abort_on_error) { g_abort_on_error = abort_on_error; }

void AddConfig(ConfParam parameter) { AllConfig().push_back(std::move(parameter)); }

void ClearConfig() { AllConfig().clear(); }

ConfigList GetConfig(const char* module, bool with_globals, int max) {
  ConfigList list;
  for (ConfParam& parameter : AllConfig()) {
    const bool wanted =
        parameter.user ? module != nullptr && *parameter.user == module : with_globals;
    if (!wanted) continue;
    if (static_cast<int>(list.size()) >= max) {
      FatalError(kErrorConfigSize, "GetConfig: more than %d for user %s%s", max,
                 module == nullptr ? "<null>" : module, with_globals ? "with globals" : "");
    }
    list.push_back(&parameter);
  }
  return list;
}

bool GetConfigString(const ConfigList& list, std::string_view name, std::string* value) {
  return Find(list, name, value);
}
bool GetConfigInt(const ConfigList& list, std::string_view name, int* value) {
  return Find(list, name, value);
}
bool GetConfigFloat(const ConfigList& list, std::string_view name, double* value) {
  return Find(list, name, value);
}
bool GetConfigBool(const ConfigList& list, std::string_view name, bool* value) {
  return Find(list, name, value);
}

void PrintConfig() {
  const std::deque<ConfParam>& all = AllConfig();
  Message text(MessageStream::kOutput);
  if (all.empty()) {
    text << "No STISTILA Configuration Parameters Set\n";
  } else {
    const auto names = [&text](std::string_view module, std::string_view name) {
      text << std::left << std::setw(14) << module << "  " << std::setw(14) << name << "  "
           << std::right;
    };
    text << "STISTILA Configuration Parameters[" << all.size() << "]\n  ";
    names("Module/Tool", "Parameter");
    text << std::setw(16) << "Value"
         << "\n"
         << std::fixed << std::setprecision(6);
    for (const ConfParam& parameter : all) {
      text << (parameter.seen ? ' ' : '#') << ' ';
      names(parameter.user.value_or(""), parameter.name);
      if (const bool* flag = std::get_if<bool>(&parameter.value)) {
        text << (*flag ? "TRUE" : "FALSE");
      } else if (const int* number = std::get_if<int>(&parameter.value)) {
        text << std::setw(16) << *number;
      } else if (const double* real = std::get_if<double>(&parameter.value)) {
        text << std::setw(16) << *real;
      } else {
        text << std::setw(16) << std::get<std::string>(parameter.value);
      }
      text << "\n";
    }
  }
}

void SetPrintConfigAtExit(bool print) { g_print_config_at_exit = print; }

void ExitToolkit(int status) {
  if (status == 0 && g_print_config_at_exit) PrintConfig();
  EndProcess(status);
}

}  // namespace veral3
