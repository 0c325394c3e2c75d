#include "signal/HShell.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <iomanip>
#include <sstream>
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

[[gnu::format(printf, 1, 0)]] std::string Format(const char* format, std::va_list args) {
  std::va_list again;
  va_copy(again, args);
  const int length = std::vsnprintf(nullptr, 0, format, args);
  std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
  std::vsnprintf(text.data(), text.size() + 1, format, again);
  va_end(again);
  return text;
}

// All reports, in one message each so that those of two threads don't mix.
void Report(int code, const std::string& text) {
  std::fflush(stdout);
  std::ostringstream report;
  report.imbue(std::locale::classic());
  report << std::showpos;
  if (code > 0) {
    report << "  ERROR [" << code << "]" << text << "\n FATAL ERROR - Terminating program "
           << kProgramName << "\n";
    WriteMessage(MessageStream::kError, report.str());
    if (g_abort_on_error) std::abort();
    ExitToolkit(code);
  }
  report << " WARNING [" << code << "]" << text << " in " << kProgramName << "\n";
  WriteMessage(MessageStream::kOutput, report.str());
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
  const std::string text = Format(format, args);
  va_end(args);
  Report(code, text);
}

void FatalError(int code, const char* format, ...) {
  std::va_list args;
  va_start(args, format);
  const std::string text = Format(format, args);
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
  std::ostringstream text;
  text.imbue(std::locale::classic());
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
  WriteMessage(MessageStream::kOutput, text.view());
}

void SetPrintConfigAtExit(bool print) { g_print_config_at_exit = print; }

void ExitToolkit(int status) {
  if (status == 0 && g_print_config_at_exit) PrintConfig();
  EndProcess(status);
}

}  // namespace veral3
