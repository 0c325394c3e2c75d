#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

// The front end's toolkit, module HShell: configuration parameters and the error reporter.
//
//   ReportError(-1, "odd size %d", n);           // code <= 0: a warning, comes back
//   FatalError(5105, "New: memory exhausted");   // code > 0: ends the process with the code
//
//   int trace = 0;
//   GetConfigInt(GetConfig("HMEM", true, kMaxConfig), "TRACE", &trace);
//
// The engine itself sets no parameter, so every look-up finds nothing and defaults apply.
namespace veral3 {

// Error codes of the toolkit; each is the exit status of the process that it ends.
enum ToolkitError {
  kErrorConfigSize = 5071,      // too many configuration parameters
  kErrorAllocation = 5105,      // a block, record or element could not be allocated
  kErrorHeapParameters = 5170,  // bad parameters of a new heap
  kErrorHeapNotFound = 5171,    // heap not recorded
  kErrorCHeap = 5172,           // reset or deletion of a C heap
  kErrorElementSize = 5173,     // request of the wrong size from an MHEAP
  kErrorHeapNotReady = 5174,    // heap not initialised
  kErrorHeapKind = 5190,        // unknown heap kind
  kErrorHeapState = 5191,       // inconsistent block after its allocation
  kErrorParmKind = 6321,        // unknown coding style, impossible target or conversion
  kErrorParmQualifier = 6370,   // unknown parameter-kind qualifier
};

// Reports `format` (with %s, %d, %u as in printf). A code above 0 is an error: the report goes to
// standard error and the process ends with the code (or aborts, see SetAbortOnError). Any other
// code is a warning on standard output.
[[gnu::format(printf, 2, 3)]] void ReportError(int code, const char* format, ...);

// ReportError for a code above 0, which never comes back.
[[noreturn, gnu::format(printf, 2, 3)]] void FatalError(int code, const char* format, ...);

// With the flag set an error aborts the process. Clear at first.
void SetAbortOnError(bool abort_on_error);

// One configuration parameter.
struct ConfParam {
  std::optional<std::string> user;  // the module it is for; none: for every module
  std::string name;
  std::variant<std::string, int, double, bool> value;
  bool seen = false;  // a look-up has found it
};
using ConfigList = std::vector<ConfParam*>;

inline constexpr int kMaxConfig = 20;  // parameters that a module of the toolkit can take

// Adds a parameter at the end of the process-wide list, or empties it. Not while other threads use
// the toolkit.
void AddConfig(ConfParam parameter);
void ClearConfig();

// The parameters of `module` (null: of none), with those for every module when `with_globals`.
// More than `max` of them is a fatal error. Valid until ClearConfig.
ConfigList GetConfig(const char* module, bool with_globals, int max);

// Look-ups by name: true, with the value stored and the parameter marked as seen, when the list
// has one of that name and type.
bool GetConfigString(const ConfigList& list, std::string_view name, std::string* value);
bool GetConfigInt(const ConfigList& list, std::string_view name, int* value);
bool GetConfigFloat(const ConfigList& list, std::string_view name, double* value);
bool GetConfigBool(const ConfigList& list, std::string_view name, bool* value);

// Lists all parameters on standard output; '#' marks those that nobody has read.
void PrintConfig();

// With the switch on, a toolkit exit with status 0 lists the parameters first. Off at first.
void SetPrintConfigAtExit(bool print);

// The toolkit's way to end the process.
[[noreturn]] void ExitToolkit(int status);

}  // namespace veral3
