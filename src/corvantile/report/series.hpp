#pragma once
// What plots of several sections share: names for the states of the display, and drives in percent.

#include <algorithm>
#include <string>
#include <vector>

#include "corvantile/report/svg.hpp"

namespace corvantile {

inline const std::string asked_name = "asked for";
inline const std::string before_name = "before";
inline const std::string after_name = "after";
inline const std::string measured_name = "measured";

inline std::vector<double> in_percent(std::vector<double> drive) {
  for (double& d : drive) d *= 100;
  return drive;
}

/// The values at drives within [low, high].
inline std::vector<double> within(const std::vector<double>& drive, const std::vector<double>& values, double low,
                                  double high = 1) {
  std::vector<double> kept;
  for (std::size_t i = 0; i < std::min(drive.size(), values.size()); ++i) {
    if (drive[i] >= low && drive[i] <= high) kept.push_back(values[i]);
  }
  return kept;
}

}  // namespace corvantile
