#include "corvantile/job/finding.hpp"

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>
#include <utility>

namespace corvantile {

std::string_view name_of(severity level) {
  constexpr std::array<std::string_view, 3> names{"note", "warning", "error"};
  return names[static_cast<std::size_t>(level)];
}

std::string text_of(const finding& f) {
  if (f.action.empty()) return f.message + ".";
  std::string action = f.action;
  if (action[0] >= 'a' && action[0] <= 'z') action[0] = static_cast<char>(action[0] - 'a' + 'A');
  return f.message + ". " + action + ".";
}

void sort_findings(std::vector<finding>& findings) {
  std::ranges::stable_sort(findings, std::ranges::greater{}, &finding::level);
}

void append(std::vector<finding>& findings, std::vector<finding> more) {
  std::ranges::move(more, std::back_inserter(findings));
}

void merge_findings(std::vector<finding>& findings, std::vector<finding> more) {
  std::erase_if(more, [&](const finding& m) {
    return std::ranges::any_of(findings, [&](const finding& f) { return f.id == m.id && f.level >= m.level; });
  });
  std::erase_if(findings,
                [&](const finding& f) { return std::ranges::find(more, f.id, &finding::id) != more.end(); });
  append(findings, std::move(more));
  sort_findings(findings);
}

}  // namespace corvantile
