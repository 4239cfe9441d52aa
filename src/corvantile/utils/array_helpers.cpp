#include "corvantile/utils/array_helpers.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace corvantile {

double largest(std::span<const double> v) {
  double m = std::numeric_limits<double>::quiet_NaN();
  for (const double x : v) m = std::fmax(m, x);
  return m;
}

std::vector<int> find_vec(const std::vector<bool>& mask) {
  std::vector<int> found;
  for (std::size_t i = 0; i < mask.size(); ++i)
    if (mask[i]) found.push_back(static_cast<int>(i) + 1);
  return found;
}

std::vector<int> find_mat(const int_matrix& mask) {
  std::vector<int> found;
  for (std::size_t i = 0; i < mask.data().size(); ++i)
    if (mask.data()[i] != 0) found.push_back(static_cast<int>(i) + 1);
  return found;
}

int risingedgetrigger(std::span<const double> v, double level, int nconsec) {
  const auto k = static_cast<std::size_t>(std::max(nconsec, 1));
  std::size_t start = v.size();  // of the current run; v.size() if there is none
  for (std::size_t i = 0; i < v.size(); ++i) {
    if (v[i] <= level) start = v.size();
    if (v[i] > level && start == v.size()) start = i;
    if (start < v.size() && i - start + 1 == k) return static_cast<int>(start) + 1;
  }
  return 0;
}

int fallingedgetrigger(std::span<const double> v, double level, int nconsec) {
  std::vector<double> mirrored(v.size());
  std::transform(v.begin(), v.end(), mirrored.begin(), [](double x) { return -x; });
  return risingedgetrigger(mirrored, -level, nconsec);
}

double mean(std::span<const double> v) {
  if (v.empty()) return 0;
  double sum = 0;
  for (const double x : v) sum += x;
  return sum / static_cast<double>(v.size());
}

double std(std::span<const double> v) {
  if (v.empty()) return 0;
  if (v.size() == 1) return v[0];
  const double m = mean(v);
  double sum = 0;
  for (const double x : v) sum += (x - m) * (x - m);
  return std::sqrt(sum / static_cast<double>(v.size() - 1));
}

std::vector<double> colstack(const matrix& a) { return {a.data().begin(), a.data().end()}; }

matrix colunstack(std::span<const double> v, std::size_t k) {
  if (k == 0) return {};
  matrix a(k, v.size() / k);
  if (v.size() % k == 0) std::copy(v.begin(), v.end(), a.data().begin());
  return a;
}

}  // namespace corvantile
