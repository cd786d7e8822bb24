#include "export/animation/sample_times.h"

#include <gtest/gtest.h>

TEST(SampleTimes, RateDoublesOnlyWithMultiplierOne) {
  EXPECT_EQ(samplingRate(24.0, 1), 48.0);
  EXPECT_EQ(samplingRate(24.0, 0), 24.0);
  EXPECT_EQ(samplingRate(24.0, 2), 24.0);
}

TEST(SampleTimes, OneSecondAtDoubledRateEndsAtTheEnd) {
  const std::vector<double> times = sampleTimes(0.0, 1.0, samplingRate(24.0, 1));
  ASSERT_EQ(times.size(), 49u);
  EXPECT_EQ(times.front(), 0.0);
  EXPECT_NEAR(times.back(), 1.0, 1e-12);
}

// Accumulated time stays just below end + dt after the 25th step, so one
// sample past the end is kept.
TEST(SampleTimes, OneSecondAtSceneRateKeepsOneSamplePastTheEnd) {
  const std::vector<double> times = sampleTimes(0.0, 1.0, samplingRate(24.0, 0));
  ASSERT_EQ(times.size(), 26u);
  EXPECT_NEAR(times.back(), 25.0 / 24.0, 1e-12);
  EXPECT_GT(times.back(), 1.0);
}

TEST(SampleTimes, TimeAdvancesByRepeatedAddition) {
  const std::vector<double> times = sampleTimes(0.0, 2.0, 30.0);
  ASSERT_EQ(times.size(), 61u);
  double t = 0.0;
  for (double time : times) {
    EXPECT_EQ(time, t);  // bit for bit: not start + i * dt
    t += 1.0 / 30.0;
  }
}

TEST(SampleTimes, DegenerateRangesAndRatesGiveOneSampleAtTheStart) {
  EXPECT_EQ(sampleTimes(0.5, 0.5, 24.0), std::vector<double>{0.5});
  EXPECT_EQ(sampleTimes(0.25, 3.0, 0.0), std::vector<double>{0.25});
  EXPECT_EQ(sampleTimes(0.25, 3.0, -24.0), std::vector<double>{0.25});
  // A step too small to move the time ends the loop instead of repeating it.
  EXPECT_EQ(sampleTimes(1e20, 2e20, 24.0), std::vector<double>{1e20});
}
