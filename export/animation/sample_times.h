// When the sampling loop samples: the rate and the times, apart from the host.
#pragma once

#include <cstdint>
#include <limits>
#include <vector>

// The scene's frame rate, doubled when the fps multiplier option is 1.
inline double samplingRate(double fps, std::int32_t fpsMultiplier) { return fpsMultiplier == 1 ? fps * 2.0 : fps; }

// Calls visit(t) for every sample time of [start, end] at `rate`. The time
// advances by repeated addition (t += 1 / rate) while t < end + 1 / rate, the
// bound recomputed each pass, so rounding may keep one sample beyond `end`.
// A rate that is not positive (fps 0) gives one sample, at `start`; so does a
// step too small to move t, where the loop stops rather than repeat t.
template <typename Visit>
void forEachSampleTime(double start, double end, double rate, Visit&& visit) {
  const double dt = rate > 0.0 ? 1.0 / rate : std::numeric_limits<double>::infinity();
  for (double t = start; t < end + dt;) {
    visit(t);
    const double next = t + dt;
    if (!(next > t)) break;
    t = next;
  }
}

inline std::vector<double> sampleTimes(double start, double end, double rate) {
  std::vector<double> times;
  forEachSampleTime(start, end, rate, [&times](double t) { times.push_back(t); });
  return times;
}
