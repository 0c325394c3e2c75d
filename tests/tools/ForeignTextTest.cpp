// What names, sentences and words of others do to a terminal, a table and the files that other
// programs read: nothing.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "SmallResources.h"
#include "common/Unicode.h"
#include "support/SmallEngine.h"

namespace veral3::tools {
namespace {

using nlohmann::json;
using test::ProcessResult;
using test::RunVeral3;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using veral3::test::ReadFile;

// Sets a terminal's title, and looks like a table of its own where its line ends count.
constexpr const char* kTeacher =
    "A\x1B]0;owned\x07\nlearner.wav: 1.000 s, English, against t.wav\nsentence: x\ntotal 100   "
    "pronunciation 100\r\xC2\x9B"
    "2J\xE2\x80\xAE"
    "B\xE2\x80\xA8"
    "C\x7F";

// The code points of `text` that a terminal obeys, line ends aside.
std::string Obeyed(const std::string& text) {
  std::ostringstream found;
  for (const wchar_t c : WideFromUtf8(text)) {
    const auto code = static_cast<unsigned>(c);
    if (c == L'\n') continue;
    if (code < 0x20 || (code >= 0x7F && code < 0xA0) || (code >= 0x2028 && code <= 0x202E) ||
        (code >= 0x2066 && code <= 0x2069)) {
      found << std::hex << code << " ";
    }
  }
  return found.str();
}

bool IsUtf8Text(const std::string& text) { return Utf8FromWide(WideFromUtf8(text)) == text; }

int LinesThatBegin(const std::string& text, const std::string& beginning) {
  std::istringstream lines(text);
  int count = 0;
  for (std::string line; std::getline(lines, line);) count += line.starts_with(beginning);
  return count;
}

class ForeignText : public test::SmallResources {
 protected:
  ForeignText() {
    WriteWav("learner.wav", veral3::test::ChainRecording("en_learner"));
    WriteWav("plain.wav", veral3::test::ChainRecording("en_tutor"));
  }

  // tutor.wav of kTeacher, whose sentence has control characters too.
  void MakeTutor() const {
    const ProcessResult made =
        Run("tutor", "en",
            {"--text",
             "I read\n\x1B the \xE2\x80\xAE"
             "cat",
             "--teacher", kTeacher, Path("plain.wav"), "-o", Path("tutor.wav")});
    ASSERT_EQ(made.status, 0) << made.err;
    EXPECT_EQ(Obeyed(made.out + made.err), "");
  }

  ProcessResult Grade(std::vector<std::string> more) const {
    more.insert(more.begin(), {"--tutor", Path("tutor.wav"), Path("learner.wav")});
    return Run("grade", "en", more);
  }
};

TEST_F(ForeignText, OfATutorFileStandsInATableAsText) {
  MakeTutor();
  const ProcessResult result = Grade({});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(Obeyed(result.out + result.err), "");
  EXPECT_EQ(LinesThatBegin(result.out, "total "), 1) << result.out;
  EXPECT_EQ(LinesThatBegin(result.out, "sentence: "), 1) << result.out;
  EXPECT_EQ(LinesThatBegin(result.out, "learner.wav: "), 0) << result.out;
  EXPECT_THAT(result.out, HasSubstr("(A\xEF\xBF\xBD]0;owned\xEF\xBF\xBD learner.wav: 1.000 s"));

  const ProcessResult inspected = RunVeral3({"inspect", Path("tutor.wav")});
  EXPECT_EQ(inspected.status, 0);
  EXPECT_EQ(Obeyed(inspected.out), "");
  EXPECT_EQ(LinesThatBegin(inspected.out, "total "), 0) << inspected.out;
}

TEST_F(ForeignText, OfATutorFileIsWholeInJson) {
  MakeTutor();
  const ProcessResult result = Grade({"--format", "json"});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(Obeyed(result.out), "");
  EXPECT_EQ(json::parse(result.out)["tutor"]["teacher"], kTeacher);
}

TEST_F(ForeignText, OfATutorFileStandsInThePageAsText) {
  MakeTutor();
  const ProcessResult result = Grade({"--report", Path("page.html")});
  ASSERT_EQ(result.status, 0) << result.err;
  const std::string page = ReadFile(Path("page.html"));
  EXPECT_EQ(Obeyed(page), "");
  EXPECT_THAT(page, HasSubstr("owned\xEF\xBF\xBD learner.wav"));
}

TEST_F(ForeignText, OfATutorFileAddsNoMessages) {
  MakeTutor();
  // Another sentence than the tutor's, whose sentence is told.
  const ProcessResult result = Grade({"--text", "apple"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(Obeyed(result.err), "");
  EXPECT_EQ(std::ranges::count(result.err, '\n'), 1) << result.err;
  EXPECT_THAT(result.err, HasSubstr("who reads \"I read \xEF\xBF\xBD the"));
}

// A name with a line end, an escape, a byte that is no UTF-8.
TEST_F(ForeignText, OfAFileNameReachesNobodyRaw) {
  const std::string name = Path("n\nveral3: b.wav: fine\x1B[2J\t\"\xFF.wav");
  std::filesystem::copy_file(Path("learner.wav"), name);
  const std::vector<std::string> of_file = {"--text", "I read the cat", name};
  for (const std::string format : {"table", "json", "textgrid", "ctm", "csv", "audacity"}) {
    std::vector<std::string> arguments = of_file;
    arguments.insert(arguments.end(), {"--format", format});
    const ProcessResult result = Run("align", "en", arguments);
    ASSERT_EQ(result.status, 0) << result.err;
    std::string text = result.out;
    if (format == "csv") std::erase(text, '\r');       // its line ends are CR LF
    if (format == "audacity") std::erase(text, '\t');  // its fields are parted so
    EXPECT_EQ(Obeyed(text), "") << format;
    EXPECT_TRUE(IsUtf8Text(result.out)) << format;
    EXPECT_EQ(LinesThatBegin(result.out, "veral3: "), 0) << format;
  }
  for (const std::string command : {"analyze", "grade"}) {
    for (const std::string format : {"table", "json", "csv"}) {
      std::vector<std::string> arguments = of_file;
      arguments.insert(arguments.end(), {"--format", format});
      if (command == "grade") arguments.push_back("--pronunciation-only");
      const ProcessResult result = Run(command, "en", arguments);
      ASSERT_EQ(result.status, 0) << result.err;
      std::string text = result.out;
      if (format == "csv") std::erase(text, '\r');
      EXPECT_EQ(Obeyed(text + result.err), "") << command << format;
      EXPECT_TRUE(IsUtf8Text(result.out)) << command << format;
    }
  }
  const ProcessResult annotated = Run("annotate", "en", {name});
  EXPECT_EQ(Obeyed(annotated.out), "");

  std::filesystem::remove(name);
  for (const std::string command : {"align", "analyze"}) {
    const ProcessResult missing = Run(command, "en", of_file);
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(Obeyed(missing.err), "");
    EXPECT_EQ(std::ranges::count(missing.err, '\n'), 1) << missing.err;
    EXPECT_THAT(missing.err, StartsWith("veral3: " + Path("n veral3: b.wav: fine")));
  }
  for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
           {"inspect", name}, {"denoise", name, Path("out.wav")}}) {
    const ProcessResult missing = RunVeral3(arguments);
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(Obeyed(missing.err), "");
    EXPECT_EQ(std::ranges::count(missing.err, '\n'), 1) << missing.err;
  }
  // A folder of resources, a text file and a tutor of such a name.
  for (const std::vector<std::string>& more :
       std::vector<std::vector<std::string>>{{"--resources", name, "--text", "apple"},
                                             {"--text-file", name},
                                             {"--list", name},
                                             {"--tutor", name}}) {
    std::vector<std::string> arguments = {more[0] == "--tutor" ? "grade" : "align", "--lang", "en"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    arguments.push_back(Path("learner.wav"));
    const ProcessResult result = RunVeral3(arguments);
    EXPECT_NE(result.status, 0);
    EXPECT_EQ(Obeyed(result.err), "") << more[0];
    EXPECT_EQ(std::ranges::count(result.err, '\n'), 1) << result.err;
  }
}

TEST_F(ForeignText, OfAFolderAddsNoLinesToWhatWasLoaded) {
  const std::string folder = Path("res\nveral3: all is well");
  std::filesystem::rename(Path("res"), folder);
  for (const std::vector<std::string>& more : std::vector<std::vector<std::string>>{
           {"align", Path("plain.wav")}, {"tutor", Path("plain.wav"), "-o", Path("t.wav")}}) {
    std::vector<std::string> arguments = more;
    arguments.insert(arguments.end(),
                     {"--lang", "en", "--text", "apple", "--verbose", "--resources", folder});
    const ProcessResult result = RunVeral3(arguments);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(Obeyed(result.err), "");
    EXPECT_THAT(result.err, HasSubstr("words loaded from <" + Path("res veral3: all is well")));
    EXPECT_EQ(LinesThatBegin(result.err, "veral3: veral3: all is well"), 0) << result.err;
    EXPECT_EQ(LinesThatBegin(result.err, "veral3: all is well"), 0) << result.err;
  }
}

TEST_F(ForeignText, OfASentenceAddsNoMessages) {
  const ProcessResult result =
      Run("align", "en", {"--text", "bl\x1B[2Jorf\nveral3: all is well", Path("learner.wav")});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(Obeyed(result.err), "");
  EXPECT_EQ(LinesThatBegin(result.err, "veral3: all is well"), 0) << result.err;
  const ProcessResult checked = Run("check-text", "en",
                                    {"apple\x1B[2J\nfine",
                                     "a\x9B"
                                     "b"});
  EXPECT_EQ(Obeyed(checked.out + checked.err), "");
  const ProcessResult texts = Run("check-text", "en", {"apple\nword  forged", "apple"});
  EXPECT_EQ(LinesThatBegin(texts.out, "word  forged"), 0) << texts.out;
}

TEST_F(ForeignText, OfTheCommandLineIsToldAsText) {
  for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
           {"f\x1B]0;x\x07\noo"},
           {"--b\x1B[2J\nar"},
           {"check-text", "--lang", "e\x1B[2J\nn", "a"},
           {"inspect", "--format", "j\x1B[2J\nson", "a"},
           {"align", "--lang", "en", "--jobs", "\x1B[2J\n", "--text", "a", "b"},
           {"align", "--lang", "en", "--b\x1B[2J\nogus"}}) {
    const ProcessResult result = RunVeral3(arguments);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(Obeyed(result.err), "") << result.err;
    EXPECT_EQ(std::ranges::count(result.err, '\n'), 2) << result.err;
    EXPECT_EQ(LinesThatBegin(result.err, "veral3: "), 2) << result.err;
  }
}

TEST_F(ForeignText, OfAWordIsDefusedInASpreadsheet) {
  const ProcessResult result = Run("align", "en",
                                   {"--text", "I |1 1 ? 1 1 0 rid|=1+1 the cat", "--format", "csv",
                                    "--tier", "words", Path("learner.wav")});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr(",words,'=1+1,"));
  EXPECT_THAT(result.out, Not(HasSubstr(",=1+1,")));
}

}  // namespace
}  // namespace veral3::tools
