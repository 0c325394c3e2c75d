#include "tools/CsvColumns.h"

#include <gtest/gtest.h>

#include <limits>

namespace veral3::tools {
namespace {

constexpr std::array<std::string_view, 3> kColumns = {"name", "score", "rank"};
using Line = CsvLine<kColumns.size()>;

TEST(CsvLine, FieldsStandUnderTheirColumns) {
  Line line(kColumns);
  line.Set("rank", std::optional<int>(2));
  line.Set("name", "a");
  EXPECT_EQ(Line::Header(kColumns), "name,score,rank\r\n");
  EXPECT_EQ(line.Text(), "a,,2\r\n");
  line.Set("score", std::numeric_limits<double>::infinity(), 2);
  EXPECT_EQ(line.Text(), "a,,2\r\n");
  line.Set("score", 0.125, 2);
  EXPECT_EQ(line.Text(), "a,0.12,2\r\n");
}

TEST(CsvLine, AColumnThatThereIsNoneOfIsAnError) {
  Line line(kColumns);
  EXPECT_THROW(line.Set("scores", "1"), std::logic_error);
  EXPECT_THROW(line.Set("", std::optional<int>(1)), std::logic_error);
  EXPECT_THROW(line.SetSpan("f", "words", "w", 0, 1), std::logic_error);  // has none of those
}

}  // namespace
}  // namespace veral3::tools
