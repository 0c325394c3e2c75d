// What the documents show of the command is what it prints.
#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "Process.h"
#include "SampleReport.h"
#include "support/Vectors.h"
#include "tools/AlignmentFormats.h"

namespace veral3::tools {
namespace {

using testing::HasSubstr;
using veral3::test::ReadFile;
using veral3::test::WriteFile;

const std::filesystem::path kSource(VERAL3_SOURCE_DIR);

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

// The fenced blocks of a document, without the fences.
std::vector<std::string> BlocksOf(const std::string& document) {
  std::vector<std::string> blocks;
  bool inside = false;
  for (const std::string& line : LinesOf(document)) {
    if (line.starts_with("```")) {
      inside = !inside;
      if (inside) blocks.emplace_back();
    } else if (inside) {
      blocks.back() += line + "\n";
    }
  }
  return blocks;
}

struct Shown {
  std::string command;  // for the shell
  std::string output;   // "" where none is shown
};

// What blocks show behind "$ ".
std::vector<Shown> CommandsOf(const std::string& document) {
  std::vector<Shown> commands;
  for (const std::string& block : BlocksOf(document)) {
    bool goes_on = false;
    bool started = false;
    for (const std::string& line : LinesOf(block)) {
      if (!goes_on && line.starts_with("$ ")) {
        commands.push_back({line.substr(2) + "\n", ""});
        started = true;
      } else if (goes_on) {
        commands.back().command += line + "\n";
      } else if (started) {
        commands.back().output += line + "\n";
      }
      goes_on = line.ends_with('\\') && (goes_on || line.starts_with("$ "));
    }
  }
  return commands;
}

// A folder as an installation's root is, with the examples in it.
class Documents : public testing::Test {
 protected:
  Documents() {
    std::filesystem::create_directory(Folder() / "share");
    std::filesystem::create_symlink(kSource / "resources", Folder() / "share/veral3");
    std::filesystem::create_symlink(kSource / "examples", Folder() / "examples");
  }

  const std::filesystem::path& Folder() const { return m_folder.Path(); }

  // Runs every command in order and compares what it shows. Gives how many there were.
  std::pair<int, int> Check(const std::string& document) const {
    const std::string bin = std::filesystem::path(VERAL3_COMMAND).parent_path();
    std::pair<int, int> counts;
    for (const Shown& shown : CommandsOf(document)) {
      WriteFile(Folder() / "script",
                "cd '" + Folder().string() + "'\nPATH='" + bin + "':$PATH\n" + shown.command);
      const std::string run = "sh '" + (Folder() / "script").string() + "' >'" +
                              (Folder() / "out").string() + "' 2>'" + (Folder() / "err").string() +
                              "' </dev/null";
      EXPECT_EQ(std::system(run.c_str()), 0) << shown.command << ReadFile(Folder() / "err");
      ++counts.first;
      if (shown.output.empty()) continue;
      EXPECT_EQ(ReadFile(Folder() / "out"), shown.output) << shown.command;
      ++counts.second;
    }
    return counts;
  }

 private:
  const veral3::test::ScratchFolder m_folder;
};

TEST_F(Documents, TheManualShowsWhatTheCommandPrints) {
  std::filesystem::create_symlink(kSource / "examples/audio/english-weather.wav",
                                  Folder() / "noisy.mp3");
  const auto [commands, outputs] = Check(ReadFile(kSource / "docs/command.md"));
  EXPECT_GE(commands, 9);
  EXPECT_GE(outputs, 3);
}

TEST_F(Documents, TheFirstPageShowsCommandsThatWork) {
  for (const char* name : {"tutor.wav", "learner.wav"}) {
    std::filesystem::create_symlink(kSource / "examples/audio/english-train.wav", Folder() / name);
  }
  EXPECT_GE(Check(ReadFile(kSource / "README.md")).first, 2);
}

// Every line of the samples under "### FORMAT" but "..." stands in what the format makes.
TEST_F(Documents, TheManualShowsWhatTheFormatsAre) {
  AlignmentReport report = test::SampleReport();
  report.sentence = "Go away";
  report.sentence_index = 0;
  const std::string document = ReadFile(kSource / "docs/command.md");
  for (const auto& [name, text] :
       {std::pair{"table", Table(report)}, std::pair{"json", Json(report)},
        std::pair{"ctm", Ctm(report, "a", Tier::kWords)},
        std::pair{"csv", CsvHeader() + Csv(report, std::nullopt)},
        std::pair{"audacity", AudacityLabels(report, Tier::kWords)}}) {
    const std::size_t begin = document.find("\n### " + std::string(name) + "\n");
    ASSERT_NE(begin, std::string::npos) << name;
    const std::string section = document.substr(begin, document.find("\n##", begin + 1) - begin);
    const std::vector<std::string> blocks = BlocksOf(section);
    ASSERT_EQ(blocks.size(), 1u) << name;
    std::string plain = "\n" + text + "\n";
    std::erase(plain, '\r');
    int compared = 0;
    for (std::string line : LinesOf(blocks.front())) {
      const std::size_t first = line.find_first_not_of(' ');
      if (first == std::string::npos || line.substr(first) == "...") continue;
      // A sample of JSON closes what it does not show whole.
      if (std::string(name) == "json") line = line.substr(0, line.find_last_not_of(',') + 1);
      EXPECT_THAT(plain, HasSubstr("\n" + line)) << name;
      ++compared;
    }
    EXPECT_GT(compared, 0) << name;
  }
}

// Every document of the source tree, as paths within it.
std::vector<std::filesystem::path> AllDocuments() {
  std::vector<std::filesystem::path> documents = {"resources/MANIFEST"};
  for (const char* folder : {".", "docs", "docs/formats", "training", "examples/audio"}) {
    for (const auto& entry : std::filesystem::directory_iterator(kSource / folder)) {
      if (entry.path().extension() == ".md") {
        documents.push_back(std::filesystem::relative(entry.path(), kSource));
      }
    }
  }
  return documents;
}

std::vector<std::smatch> MatchesIn(const std::string& text, const std::regex& pattern) {
  const std::sregex_iterator first(text.begin(), text.end(), pattern);
  return std::vector<std::smatch>(first, std::sregex_iterator());
}

// What a link's # names, of every heading.
std::set<std::string> AnchorsOf(const std::string& document) {
  std::set<std::string> anchors;
  for (const std::string& line : LinesOf(document)) {
    if (!line.starts_with('#')) continue;
    std::string anchor;
    for (const char c : line.substr(line.find_first_not_of("# "))) {
      if (std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-') {
        anchor += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
      } else if (c == ' ') {
        anchor += '-';
      }
    }
    anchors.insert(anchor);
  }
  return anchors;
}

TEST_F(Documents, LinksLeadSomewhere) {
  const std::regex link_of_markdown(R"(\]\(([^)#\s]*)(#([^)\s]+))?\))");
  int links = 0;
  for (const std::filesystem::path& document : AllDocuments()) {
    const std::string text = ReadFile(kSource / document);
    for (const std::smatch& link : MatchesIn(text, link_of_markdown)) {
      if (link.str(1).starts_with("http")) continue;
      const std::filesystem::path target =
          kSource / (link.str(1).empty() ? document : document.parent_path() / link.str(1));
      EXPECT_TRUE(std::filesystem::exists(target)) << document << ": " << link.str();
      if (link[3].matched && std::filesystem::exists(target)) {
        EXPECT_TRUE(AnchorsOf(ReadFile(target)).contains(link.str(3)))
            << document << ": " << link.str();
      }
      ++links;
    }
  }
  EXPECT_GE(links, 15);
}

// Paths that begin with a folder of the tree; a part in capitals stands for any name, and what the
// training makes is not there before.
TEST_F(Documents, NamedFilesAreThere) {
  const std::regex path(
      "(^|[^\\w/"
      ".-])((benchmarks|cmake|common|core|docs|examples|fuzz|grading|recognition|resources|"
      "scripts|signal|storage|tests|tools|training)/[\\w./-]*\\w)");
  int names = 0;
  for (const std::filesystem::path& document : AllDocuments()) {
    const std::string text = ReadFile(kSource / document);
    for (const std::smatch& match : MatchesIn(text, path)) {
      const std::string name =
          std::regex_replace(match.str(2), std::regex("/[A-Z]{4,}(\\.|/|$).*"), "");
      if (name.starts_with("training/work")) continue;
      EXPECT_TRUE(std::filesystem::exists(kSource / name)) << document << ": " << match.str(2);
      ++names;
    }
  }
  EXPECT_GE(names, 60);
}

TEST_F(Documents, ContributorsAreToldOfEveryPreset) {
  const std::string text = ReadFile(kSource / "CONTRIBUTING.md");
  const auto presets = nlohmann::json::parse(ReadFile(kSource / "CMakePresets.json"));
  for (const auto& preset : presets.at("configurePresets")) {
    if (preset.value("hidden", false)) continue;
    EXPECT_THAT(text, HasSubstr("`" + preset["name"].get<std::string>() + "`"));
  }
}

TEST_F(Documents, TheManualHasTheOptionsThatThereAre) {
  const std::regex option("(^|[^-\\w])(--[a-z][a-z-]*)");
  std::set<std::string> helped;
  for (const char* command :
       {"", "align", "analyze", "grade", "annotate", "denoise", "check-text", "tutor", "inspect"}) {
    std::vector<std::string> arguments = {"--help"};
    if (*command != '\0') arguments.insert(arguments.begin(), command);
    const std::string help = test::RunVeral3(arguments).out;
    // A help that names no options would leave nothing to compare.
    ASSERT_THAT(help, HasSubstr("--help")) << command;
    for (const std::smatch& match : MatchesIn(help, option)) helped.insert(match.str(2));
  }
  std::set<std::string> shown;
  const std::string manual = ReadFile(kSource / "docs/command.md");
  for (const std::smatch& match : MatchesIn(manual, option)) shown.insert(match.str(2));
  EXPECT_EQ(shown, helped);
}

}  // namespace
}  // namespace veral3::tools
