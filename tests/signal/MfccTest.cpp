#include "signal/Mfcc.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <random>
#include <thread>

#include "signal/CWaveFrameDef.h"
#include "support/MessageCapture.h"
#include "support/Vectors.h"

namespace veral3 {
namespace {

// Column groups of a row: static cepstra, energy, first derivatives, second derivatives.
int GroupOf(int column) {
  if (column < 12) return 0;
  if (column == 12) return 1;
  return column < 26 ? 2 : 3;
}

TEST(Mfcc, AgreesWithTheReferenceVectors) {
  const auto vectors = test::LoadVectorJson("mfcc.json");
  ASSERT_EQ(vectors["cases"].size(), 12u);
  for (const auto& example : vectors["cases"]) {
    SCOPED_TRACE(example["name"].get<std::string>());
    const auto samples = test::LoadVector<std::int16_t>(example["samples"]);
    const auto expected = test::LoadVector<float>(example["expected"]);
    const std::vector<double> tolerance = example["tol_static_energy_delta_acc"];
    const auto rows = ComputeMfcc(samples.data(), static_cast<std::uint32_t>(samples.size()));
    ASSERT_EQ(rows.size(), example["frames"].get<std::size_t>() * kMfccSize);
    ASSERT_EQ(rows.size(), expected.size());
    double worst[4] = {};
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const int group = GroupOf(static_cast<int>(i % kMfccSize));
      worst[group] = std::max(
          worst[group], std::abs(static_cast<double>(rows[i]) - static_cast<double>(expected[i])));
    }
    for (std::size_t group = 0; group < 4; ++group) {
      EXPECT_LE(worst[group], tolerance[group]) << "column group " << group;
    }
  }
}

}  // namespace
}  // namespace veral3
