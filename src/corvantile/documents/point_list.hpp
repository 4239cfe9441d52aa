#pragma once
// What gamma files and files of gray factors have in common: a count n, then n points of a few numbers each, in free
// format.

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace corvantile {

/// The numbers, a vector of n for each of `columns`, which name the numbers of a point in messages. `name` is that of
/// the file. Throws `fault::content` with the line for bad or missing numbers, and for fewer than two points.
std::vector<std::vector<double>> parse_points(const std::string& name, std::string_view text,
                                              std::span<const std::string_view> columns);

}  // namespace corvantile
