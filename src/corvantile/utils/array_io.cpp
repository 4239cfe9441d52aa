#include "corvantile/utils/array_io.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <ostream>

#include "corvantile/utils/file_input.hpp"
#include "corvantile/utils/file_output.hpp"
#include "corvantile/utils/number_scanner.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

// Largest and smallest entry. NaN is skipped unless there is nothing else.
template <class T>
struct extremes {
  T largest;
  T smallest;
  explicit extremes(std::span<const T> a) : largest(a.front()), smallest(a.front()) {
    for (const T v : a) {
      if (v > largest || largest != largest) largest = v;
      if (v < smallest || smallest != smallest) smallest = v;
    }
  }
};

// Both printers. `put(out, v, width)` appends one entry; width 0 means the fewest characters.
template <class T, class Put>
std::string print(const dense<T>& a, const std::optional<std::string_view>& title, const Put& put) {
  std::string out;
  if (title) out.append(*title).append(1, '\n');
  std::size_t width = 0;
  if (!a.data().empty()) {
    const extremes<T> e(a.data());
    std::string widest;
    put(widest, e.largest, 0);
    width = widest.size();
    if (e.smallest < 0) {
      widest.clear();
      put(widest, e.smallest, 0);
      width = std::max(width, widest.size());
    }
  }
  out.reserve(out.size() + a.rows() * (a.cols() * (width + 3) + 1));
  for (std::size_t i = 0; i < a.rows(); ++i) {
    for (std::size_t j = 0; j < a.cols(); ++j) {
      out.append(3, ' ');
      put(out, a(i, j), width);
    }
    out += '\n';
  }
  return out;
}

}  // namespace

std::string prtmat_real(const matrix& a, std::optional<std::string_view> title) {
  return print(a, title, [](std::string& out, double v, std::size_t width) { append_fixed(out, v, width, 12); });
}

std::string prtmat_real(const mat3& a, std::optional<std::string_view> title) {
  return prtmat_real(to_matrix(a), title);
}

std::string prtmat_int(const int_matrix& a, std::optional<std::string_view> title) {
  return print(a, title, [](std::string& out, std::int64_t v, std::size_t width) { append_integer(out, v, width); });
}

void prtmat_real(std::ostream& unit, const matrix& a, std::optional<std::string_view> title) {
  unit << prtmat_real(a, title);
}

void prtmat_real(std::ostream& unit, const mat3& a, std::optional<std::string_view> title) {
  unit << prtmat_real(a, title);
}

void prtmat_int(std::ostream& unit, const int_matrix& a, std::optional<std::string_view> title) {
  unit << prtmat_int(a, title);
}

void ppdump(std::ostream& unit, const ppoly& pp, std::optional<std::string_view> title) {
  // Counts take 12 columns and values 26, so that a listing lines up.
  const auto count = [](std::size_t n) { return integer_field(static_cast<std::int64_t>(n), 12); };
  const auto value = [](double v) {
    std::string s = free_format(v);
    s.insert(0, 26 - s.size(), ' ');
    return s;
  };
  if (title) unit << ' ' << *title << '\n';
  unit << count(pp.knots.size()) << " knots:\n";
  for (const double k : pp.knots) unit << value(k) << '\n';
  unit << count(pp.polys.size()) << " polynomials\n";
  for (std::size_t j = 0; j < pp.polys.size(); ++j) {
    unit << " polynomial " << count(j) << '\n';
    for (const double c : pp.polys[j].coef) unit << "    " << value(c) << '\n';
  }
}

void savearray(const std::string& filename, std::span<const double> v) {
  std::string text;
  for (const double x : v) text += free_format(x) + '\n';
  write_file(filename, text);
}

bool loadarray(const std::string& filename, std::vector<double>& v) {
  using result = number_scanner::result;
  v.clear();
  const auto text = read_file(filename);
  if (!text) return false;

  // Counts the lines first, then reads all numbers in one go: a line with two numbers counts once.
  std::size_t n = 0;
  double x = 0;
  for (number_scanner lines(*text); lines.next(x) == result::number; lines.next_line()) ++n;
  number_scanner numbers(*text);
  while (v.size() < n && numbers.next(x) == result::number) v.push_back(x);
  if (v.size() < n) v.clear();
  return !v.empty();
}

void dumpxram(const int_matrix& a, const std::string& filename) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string text = "MEMORY_INITIALIZATION_RADIX=16;\nMEMORY_INITIALIZATION_VECTOR=\n";
  for (std::size_t i = 0; i + 1 < a.rows(); ++i) {
    for (std::size_t j = 0; j + 1 < a.cols(); ++j) {
      std::uint64_t word = 0;
      for (const std::int64_t corner : {a(i, j), a(i, j + 1), a(i + 1, j), a(i + 1, j + 1)})
        word = word << 10 | (static_cast<std::uint64_t>(corner) & 0x3ff);
      for (int shift = 36; shift >= 0; shift -= 4) text += digits[word >> shift & 0xf];
      text += i + 2 == a.rows() && j + 2 == a.cols() ? ";\n" : ",\n";
    }
  }
  write_file(filename, text);
}

}  // namespace corvantile
