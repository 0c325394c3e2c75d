#pragma once

#include <string>
#include <vector>

namespace veral3::tools {

// A file that a run of the command reads or writes.
struct RunFile {
  std::string what;  // "the recording"
  std::string path;  // "-" among what is read is standard input, among what is written output
};

// What is wrong with the files of a run, as a sentence that names both that do not go together;
// "" when nothing is. To be asked before anything is written: no result may take the place of
// something that is read or of another result, whatever path, link or hard link it is named by; and
// what can be read once only, standard input or a pipe, may be named once.
std::string RunFilesProblem(const std::vector<RunFile>& read, const std::vector<RunFile>& written);

}  // namespace veral3::tools
