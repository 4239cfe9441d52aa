// compare_tables A B TOLERANCE: fails unless two tables of numbers have the same shape and agree within TOLERANCE.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

using table = std::vector<std::vector<double>>;

/// The numbers of a file, line by line. A word that is no number ends the program.
table read(const std::string& name) {
  std::ifstream in(name);
  table t;
  for (std::string line; std::getline(in, line);) {
    std::istringstream words(line);
    t.emplace_back();
    for (std::string w; words >> w;) {
      char* end = nullptr;
      t.back().push_back(std::strtod(w.c_str(), &end));
      if (*end != '\0') {
        std::printf("%s, line %zu: %s is no number\n", name.c_str(), t.size(), w.c_str());
        std::exit(1);
      }
    }
  }
  return t;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  const table a = read(argv[1]), b = read(argv[2]);
  const double tolerance = std::strtod(argv[3], nullptr);
  if (a.empty() || a.size() != b.size()) {
    std::printf("%zu lines and %zu lines\n", a.size(), b.size());
    return 1;
  }
  double worst = 0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i].size() != b[i].size()) {
      std::printf("line %zu: %zu and %zu numbers\n", i + 1, a[i].size(), b[i].size());
      return 1;
    }
    for (std::size_t j = 0; j < a[i].size(); ++j) {
      const double d = std::abs(a[i][j] - b[i][j]);
      if (!(d <= tolerance)) {
        std::printf("line %zu, column %zu: %.12f and %.12f\n", i + 1, j + 1, a[i][j], b[i][j]);
        return 1;
      }
      worst = std::max(worst, d);
    }
  }
  std::printf("%s: largest difference %.3g\n", argv[1], worst);
  return 0;
}
