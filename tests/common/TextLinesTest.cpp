#include "common/TextLines.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <locale>

namespace veral3 {
namespace {

struct CommaForPoint : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

TEST(TextLines, NumbersAreAsInAFreshStream) {
  std::ostringstream out;
  out.imbue(std::locale(std::locale::classic(), new CommaForPoint));
  out << std::hex << std::setprecision(2) << std::fixed << std::setfill('*') << std::setw(20);
  TextLines lines(out);
  lines << 1234567 << "," << 1234567.0 << "," << 0.1 << "," << 1.0F / 3.0F << "," << 'x';
  lines.End();
  lines << 16;
  lines.End();
  EXPECT_EQ(out.str(), "1234567,1.23457e+06,0.1,0.333333,x\n16\n");
}

TEST(TextLines, NothingIsWrittenBeforeALineEnds) {
  std::ostringstream out;
  TextLines lines(out);
  lines << 1;
  EXPECT_EQ(out.str(), "");
  lines.End();
  EXPECT_EQ(out.str(), "1\n");
}

}  // namespace
}  // namespace veral3
