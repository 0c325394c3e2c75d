#include "tools/AlignmentFormats.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "SampleReport.h"
#include "common/Unicode.h"

namespace veral3::tools {
namespace {

using test::SampleReport;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

AlignmentReport FailedReport() {
  AlignmentReport report;
  report.file = "b.wav";
  report.error = "does not exist";
  return report;
}

TEST(Table, ShowsThreeLevelsAndPauses) {
  EXPECT_EQ(Table(SampleReport()),
            "a.wav: 1.000 s, English\n"
            "sentence 2: go away\n"
            "log probability -123.46\n"
            "\n"
            "  start s    end s     start       end   word      syllable  phoneme\n"
            "    0.000    0.100         0      2200   (pause)\n"
            "    0.100    0.299      2200      6600   GO\n"
            "    0.100    0.299      2200      6600             g@U\n"
            "    0.100    0.150      2200      3300                       g\n"
            "    0.150    0.249      3300      5500                       @\n"
            "    0.249    0.299      5500      6600                       U\n"
            "    0.299    0.399      6600      8800   (pause)\n"
            "    0.399    0.798      8800     17600   AWAY\n"
            "    0.399    0.449      8800      9900             @\n"
            "    0.399    0.449      8800      9900                       @\n"
            "    0.449    0.798      9900     17600             wEI\n"
            "    0.449    0.499      9900     11000                       w\n"
            "    0.499    0.698     11000     15400                       E\n"
            "    0.698    0.798     15400     17600                       I\n"
            "    0.798    1.000     17600     22050   (pause)\n");
}

TEST(Table, WideCharactersTakeTwoColumns) {
  AlignmentReport report = SampleReport();
  report.language = kLanguageChinese;
  // Six characters, twelve columns: with the two between the columns the next begins at 14.
  report.words[0].text = Utf8FromWide(L"\u65E9\u6668\u65E9\u6668\u65E9\u6668");
  const std::string table = Table(report);
  EXPECT_THAT(table, HasSubstr("   word          syllable      phoneme\n"));
  EXPECT_THAT(table, HasSubstr("Chinese\n"));
}

TEST(Table, WordWithoutPhonemesMovesNothing) {
  AlignmentReport report = SampleReport();
  report.words.insert(report.words.begin() + 1, Segment{"UH", 8800, 8800, 0.0, 0});
  const std::string table = Table(report);
  EXPECT_THAT(table, HasSubstr("    0.399    0.399      8800      8800   UH\n"));
  EXPECT_THAT(table, HasSubstr("    0.299    0.399      6600      8800   (pause)\n"));
}

TEST(Json, HasEveryFieldInOrder) {
  AlignmentReport report = SampleReport();
  report.words.resize(1);
  report.syllables.resize(1);
  report.phonemes.resize(1);
  EXPECT_EQ(Json(report),
            "{\n"
            "  \"file\": \"a.wav\",\n"
            "  \"language\": \"en\",\n"
            "  \"sentence_index\": 1,\n"
            "  \"sentence\": \"go away\",\n"
            "  \"log_probability\": -123.456,\n"
            "  \"sample_rate\": 22050,\n"
            "  \"num_samples\": 22050,\n"
            "  \"words\": [\n"
            "    {\n"
            "      \"text\": \"GO\",\n"
            "      \"start_sample\": 2200,\n"
            "      \"end_sample\": 6600,\n"
            "      \"start_s\": 0.099773,\n"
            "      \"end_s\": 0.29932\n"
            "    }\n"
            "  ],\n"
            "  \"syllables\": [\n"
            "    {\n"
            "      \"text\": \"g@U\",\n"
            "      \"start_sample\": 2200,\n"
            "      \"end_sample\": 6600,\n"
            "      \"start_s\": 0.099773,\n"
            "      \"end_s\": 0.29932\n"
            "    }\n"
            "  ],\n"
            "  \"phonemes\": [\n"
            "    {\n"
            "      \"symbol\": \"g\",\n"
            "      \"start_sample\": 2200,\n"
            "      \"end_sample\": 3300,\n"
            "      \"start_s\": 0.099773,\n"
            "      \"end_s\": 0.14966\n"
            "    }\n"
            "  ]\n"
            "}");
}

TEST(Json, FailedFileHasItsError) {
  EXPECT_EQ(Json(FailedReport()), "{\n  \"file\": \"b.wav\",\n  \"error\": \"does not exist\"\n}");
}

TEST(Json, TextOfAnyKindIsWellFormed) {
  AlignmentReport report = SampleReport();
  report.file = "bad \xFF name.wav";
  report.sentence = "quote \" backslash \\ line\nend";
  const auto parsed = nlohmann::json::parse(Json(report));
  EXPECT_EQ(parsed["file"], "bad \xEF\xBF\xBD name.wav");
  EXPECT_EQ(parsed["sentence"], report.sentence);
}

TEST(TextGrid, CoversTheRecordingWithoutGaps) {
  AlignmentReport report = SampleReport();
  report.words = {{"SAY", 2205, 4410}, {"\"HI\"", 4410, 11025}};
  report.syllables = {{"x", 0, 22050}};
  report.phonemes.clear();
  EXPECT_EQ(TextGrid(report),
            "File type = \"ooTextFile\"\n"
            "Object class = \"TextGrid\"\n"
            "\n"
            "xmin = 0\n"
            "xmax = 1.000000\n"
            "tiers? <exists>\n"
            "size = 3\n"
            "item []:\n"
            "    item [1]:\n"
            "        class = \"IntervalTier\"\n"
            "        name = \"words\"\n"
            "        xmin = 0\n"
            "        xmax = 1.000000\n"
            "        intervals: size = 4\n"
            "        intervals [1]:\n"
            "            xmin = 0\n"
            "            xmax = 0.100000\n"
            "            text = \"\"\n"
            "        intervals [2]:\n"
            "            xmin = 0.100000\n"
            "            xmax = 0.200000\n"
            "            text = \"SAY\"\n"
            "        intervals [3]:\n"
            "            xmin = 0.200000\n"
            "            xmax = 0.500000\n"
            "            text = \"\"\"HI\"\"\"\n"
            "        intervals [4]:\n"
            "            xmin = 0.500000\n"
            "            xmax = 1.000000\n"
            "            text = \"\"\n"
            "    item [2]:\n"
            "        class = \"IntervalTier\"\n"
            "        name = \"syllables\"\n"
            "        xmin = 0\n"
            "        xmax = 1.000000\n"
            "        intervals: size = 1\n"
            "        intervals [1]:\n"
            "            xmin = 0\n"
            "            xmax = 1.000000\n"
            "            text = \"x\"\n"
            "    item [3]:\n"
            "        class = \"IntervalTier\"\n"
            "        name = \"phonemes\"\n"
            "        xmin = 0\n"
            "        xmax = 1.000000\n"
            "        intervals: size = 1\n"
            "        intervals [1]:\n"
            "            xmin = 0\n"
            "            xmax = 1.000000\n"
            "            text = \"\"\n");
}

TEST(TextGrid, NoIntervalIsEmptyOrOverlaps) {
  AlignmentReport report = SampleReport();
  report.words = {{"A", 1000, 3000}, {"B", 3000, 3000}, {"C", 2000, 30000}};
  const std::string grid = TextGrid(report);
  EXPECT_THAT(grid, Not(HasSubstr("\"B\"")));
  EXPECT_THAT(grid, HasSubstr("            xmin = 0.136054\n"
                              "            xmax = 1.000000\n"
                              "            text = \"C\"\n"));
}

TEST(Ctm, HasOneTier) {
  const AlignmentReport report = SampleReport();
  EXPECT_EQ(Ctm(report, "a", Tier::kWords),
            "a 1 0.100 0.200 GO 0.5000\n"
            "a 1 0.399 0.399 AWAY 0.2500\n");
  EXPECT_EQ(Ctm(report, "my file", Tier::kSyllables),
            "my_file 1 0.100 0.200 g@U 0.5000\n"
            "my_file 1 0.399 0.050 @ 0.2500\n"
            "my_file 1 0.449 0.349 wEI 0.2500\n");
  EXPECT_THAT(Ctm(report, "a", Tier::kPhonemes), HasSubstr("a 1 0.698 0.100 I 0.2500\n"));
}

TEST(Csv, QuotesWhatNeedsIt) {
  AlignmentReport report = SampleReport();
  report.file = "a, \"b\".wav";
  report.words.resize(1);
  report.syllables.resize(1);
  report.phonemes.resize(1);
  EXPECT_EQ(CsvHeader(), "file,tier,text,start_sample,end_sample,start_s,end_s\r\n");
  EXPECT_EQ(Csv(report, std::nullopt),
            "\"a, \"\"b\"\".wav\",words,GO,2200,6600,0.099773,0.299320\r\n"
            "\"a, \"\"b\"\".wav\",syllables,g@U,2200,6600,0.099773,0.299320\r\n"
            "\"a, \"\"b\"\".wav\",phonemes,g,2200,3300,0.099773,0.149660\r\n");
  EXPECT_EQ(Csv(report, Tier::kPhonemes),
            "\"a, \"\"b\"\".wav\",phonemes,g,2200,3300,0.099773,0.149660\r\n");
}

TEST(AudacityLabels, AreTabbed) {
  AlignmentReport report = SampleReport();
  report.words[0].text = "G\tO";
  EXPECT_EQ(AudacityLabels(report, Tier::kWords),
            "0.099773\t0.299320\tG O\n"
            "0.399093\t0.798186\tAWAY\n");
}

// A file and a word that would add lines, fields and formulas.
AlignmentReport HostileReport() {
  AlignmentReport report = SampleReport();
  report.file = "=cmd|' /C calc'!A1\n9.wav";
  report.sentence = "-go\nlog probability 0\x1B]0;title\x07";
  report.words[0].text = "@G\t\"O\nx";
  report.words[1].text = "";
  return report;
}

TEST(Formats, NoNameOrWordBreaksATable) {
  const std::string table = Table(HostileReport());
  EXPECT_THAT(table, StartsWith("=cmd|' /C calc'!A1 9.wav: 1.000 s, English\n"
                                "sentence 2: -go log probability 0\xEF\xBF\xBD]0;title"
                                "\xEF\xBF\xBD\nlog probability -123.46\n\n"));
  EXPECT_THAT(table, HasSubstr("   @G \"O x\n"));
}

TEST(Formats, NoNameOrWordBreaksATextGrid) {
  EXPECT_THAT(TextGrid(HostileReport()), HasSubstr("            text = \"@G \"\"O x\"\n"));
}

TEST(Formats, NoNameOrWordBreaksTimeMarks) {
  EXPECT_EQ(Ctm(HostileReport(),
                ";;a\tb\xE3\x80\x80"
                "c",
                Tier::kWords),
            "_;a_b_c 1 0.100 0.200 @G_\"O_x 0.5000\n"
            "_;a_b_c 1 0.399 0.399 _ 0.2500\n");
}

TEST(Formats, NoNameOrWordBreaksLabels) {
  EXPECT_EQ(AudacityLabels(HostileReport(), Tier::kWords),
            "0.099773\t0.299320\t@G \"O x\n"
            "0.399093\t0.798186\t\n");
}

// Names and words are defused, phonemes never: "@" is one.
TEST(Formats, NoNameOrWordRunsInASpreadsheet) {
  AlignmentReport report = HostileReport();
  report.syllables[1].text = "@";
  report.syllables.erase(report.syllables.begin());
  report.words.resize(1);
  report.syllables.resize(1);
  report.phonemes = {{"-", 2200, 3300}};
  EXPECT_EQ(Csv(report, std::nullopt),
            "'=cmd|' /C calc'!A1 9.wav,words,\"'@G \"\"O x\",2200,6600,0.099773,0.299320\r\n"
            "'=cmd|' /C calc'!A1 9.wav,syllables,@,8800,9900,0.399093,0.448980\r\n"
            "'=cmd|' /C calc'!A1 9.wav,phonemes,-,2200,3300,0.099773,0.149660\r\n");
}

// What a terminal would obey is escaped, and read back as it was.
TEST(Json, ControlCharactersAreEscaped) {
  AlignmentReport report = SampleReport();
  report.sentence = "a\x1B\x7F\xC2\x9B\xE2\x80\xAE\xE2\x80\xA8z";
  const std::string text = Json(report);
  EXPECT_THAT(text, HasSubstr("\"a\\u001b\\u007f\\u009b\\u202e\\u2028z\""));
  EXPECT_EQ(nlohmann::json::parse(text)["sentence"], report.sentence);
}

TEST(Formats, FailedFilesShowInJsonOnly) {
  const AlignmentReport failed = FailedReport();
  EXPECT_EQ(Table(failed), "");
  EXPECT_EQ(TextGrid(failed), "");
  EXPECT_EQ(Ctm(failed, "b", Tier::kWords), "");
  EXPECT_EQ(Csv(failed, std::nullopt), "");
  EXPECT_EQ(AudacityLabels(failed, Tier::kWords), "");
}

TEST(Formats, Names) {
  EXPECT_EQ(FormatOf("textgrid"), Format::kTextGrid);
  EXPECT_EQ(FormatOf("TextGrid"), std::nullopt);
  EXPECT_EQ(TierOf("syllables"), Tier::kSyllables);
  EXPECT_EQ(TierOf(""), std::nullopt);
  EXPECT_EQ(NameOf(Tier::kPhonemes), "phonemes");
  EXPECT_EQ(ExtensionOf(Format::kTextGrid), ".TextGrid");
  EXPECT_FALSE(HoldsSeveralFiles(Format::kAudacity));
  EXPECT_TRUE(HoldsSeveralFiles(Format::kCtm));
}

}  // namespace
}  // namespace veral3::tools
