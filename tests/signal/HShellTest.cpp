#include "signal/HShell.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "signal/FatalErrors.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

class HShell : public testing::Test {
 protected:
  void TearDown() override {
    ClearConfig();
    SetPrintConfigAtExit(false);
    SetAbortOnError(false);
  }
};

TEST_F(HShell, ErrorGoesToStandardErrorAndEndsTheProcess) {
  test::ExpectFatal(5105, "New: memory exhausted",
                    [] { ReportError(5105, "New: memory exhausted"); });
  test::ExpectFatal(1, "a b 7 8", [] { FatalError(1, "a %s %d %u", "b", 7, 8U); });
}

TEST_F(HShell, WarningGoesToStandardOutputAndComesBack) {
  test::MessageCapture capture;
  ReportError(-5105, "odd size %d", 3);
  ReportError(0, "nothing");
  EXPECT_EQ(capture.StandardOutput(),
            " WARNING [-5105]odd size 3 in Veral3\n WARNING [+0]nothing in Veral3\n");
  EXPECT_EQ(capture.StandardError(), "");
}

// What the host has printed comes first. In a child process, which gives its output away.
TEST_F(HShell, TheHostsOutputIsFlushedFirst) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(
      {
        const test::ScratchFolder folder;
        const auto path = folder.Path() / "output";
        if (std::freopen(path.c_str(), "w", stdout) == nullptr) std::_Exit(9);
        std::fputs("before", stdout);
        const bool held_back = std::filesystem::file_size(path) == 0;
        const test::MessageCapture capture;
        ReportError(-1, "odd");
        std::_Exit(held_back && std::filesystem::file_size(path) == 6 ? 3 : 4);
      },
      testing::ExitedWithCode(3), "");
}

TEST_F(HShell, LongMessagesAreWhole) {
  test::MessageCapture capture;
  const std::string text(5000, 'x');
  ReportError(-1, "%s", text.c_str());
  EXPECT_EQ(capture.StandardOutput(), " WARNING [-1]" + text + " in Veral3\n");
}

TEST_F(HShell, ErrorEndsTheRealProcessWithItsCode) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  // An exit status has eight bits.
  EXPECT_EXIT(FatalError(6370, "Str2ParmKind: unknown ParmKind qualifier %s", "MFCC_X"),
              testing::ExitedWithCode(6370 & 0xFF), "MFCC_X\n FATAL ERROR");
  EXPECT_DEATH(
      {
        SetAbortOnError(true);
        FatalError(5105, "New: memory exhausted");
      },
      "ERROR \\[\\+5105\\]New: memory exhausted");
}

TEST_F(HShell, WithoutParametersLookUpsFindNothing) {
  const ConfigList list = GetConfig("HMEM", true, kMaxConfig);
  EXPECT_TRUE(list.empty());
  int number = 4;
  EXPECT_FALSE(GetConfigInt(list, "TRACE", &number));
  EXPECT_EQ(number, 4);
}

TEST_F(HShell, LookUpsGoByModuleNameAndType) {
  AddConfig({"HMEM", "TRACE", 1});
  AddConfig({"HSIGP", "TRACE", 2});
  AddConfig({{}, "NAME", std::string("all")});
  AddConfig({{}, "RATE", 2.5});
  AddConfig({{}, "FLAG", true});

  const ConfigList own = GetConfig("HMEM", false, kMaxConfig);
  ASSERT_EQ(own.size(), 1u);
  int number = 0;
  EXPECT_TRUE(GetConfigInt(own, "TRACE", &number));
  EXPECT_EQ(number, 1);
  EXPECT_TRUE(own[0]->seen);

  const ConfigList all = GetConfig("HMEM", true, kMaxConfig);
  EXPECT_EQ(all.size(), 4u);
  std::string text;
  double rate = 0;
  bool flag = false;
  EXPECT_TRUE(GetConfigString(all, "NAME", &text));
  EXPECT_TRUE(GetConfigFloat(all, "RATE", &rate));
  EXPECT_TRUE(GetConfigBool(all, "FLAG", &flag));
  EXPECT_EQ(text, "all");
  EXPECT_EQ(rate, 2.5);
  EXPECT_TRUE(flag);
  EXPECT_FALSE(GetConfigInt(all, "RATE", &number));  // another type
  EXPECT_FALSE(GetConfigInt(all, "MISSING", &number));

  EXPECT_EQ(GetConfig(nullptr, true, kMaxConfig).size(), 3u);
  EXPECT_EQ(GetConfig(nullptr, false, kMaxConfig).size(), 0u);
}

TEST_F(HShell, TooManyParameters) {
  AddConfig({"HMEM", "A", 1});
  AddConfig({"HMEM", "B", 1});
  AddConfig({{}, "C", 1});
  AddConfig({{}, "D", 1});
  EXPECT_EQ(GetConfig("HMEM", false, 2).size(), 2u);
  test::ExpectFatal(5071, "GetConfig: more than 1 for user HMEM",
                    [] { GetConfig("HMEM", false, 1); });
  test::ExpectFatal(5071, "GetConfig: more than 3 for user HMEMwith globals",
                    [] { GetConfig("HMEM", true, 3); });
  test::ExpectFatal(5071, "GetConfig: more than 1 for user <null>with globals",
                    [] { GetConfig(nullptr, true, 1); });
}

TEST_F(HShell, ListingWithoutParameters) {
  test::MessageCapture capture;
  PrintConfig();
  EXPECT_EQ(capture.StandardOutput(), "No STISTILA Configuration Parameters Set\n");
}

TEST_F(HShell, ListingMarksWhatNobodyRead) {
  AddConfig({"HMEM", "TRACE", 1});
  AddConfig({"HSIGP", "NAME", std::string("text")});
  AddConfig({{}, "RATE", 2.5});
  AddConfig({{}, "YES", true});
  AddConfig({{}, "NO", false});
  int number = 0;
  GetConfigInt(GetConfig("HMEM", false, kMaxConfig), "TRACE", &number);
  test::MessageCapture capture;
  PrintConfig();
  EXPECT_EQ(capture.StandardOutput(),
            "STISTILA Configuration Parameters[5]\n"
            "  Module/Tool     Parameter                  Value\n"
            "  HMEM            TRACE                          1\n"
            "# HSIGP           NAME                        text\n"
            "#                 RATE                    2.500000\n"
            "#                 YES             TRUE\n"
            "#                 NO              FALSE\n");
}

TEST_F(HShell, ExitListsParametersOnlyForStatusZeroAndWhenAsked) {
  const auto output_of_exit = [](int status) {
    const test::MessageCapture capture;
    const test::EndProcessTrap trap;
    EXPECT_THROW(ExitToolkit(status), test::EndedProcess);
    return capture.StandardOutput();
  };
  EXPECT_EQ(output_of_exit(0), "");
  SetPrintConfigAtExit(true);
  EXPECT_EQ(output_of_exit(0), "No STISTILA Configuration Parameters Set\n");
  EXPECT_EQ(output_of_exit(3), "");
}

}  // namespace
}  // namespace veral3
