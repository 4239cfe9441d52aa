#include "corvantile/job/finding.hpp"

#include <algorithm>
#include <functional>
#include <iterator>
#include <utility>

namespace corvantile {

std::string_view name_of(severity level) {
  switch (level) {
    case severity::note:
      return "note";
    case severity::warning:
      return "warning";
    case severity::error:
      return "error";
  }
  return "";
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

void merge_findings(std::vector<finding>& findings, std::vector<finding> more) {
  std::erase_if(more, [&](const finding& m) {
    return std::ranges::any_of(findings, [&](const finding& f) { return f.id == m.id && f.level >= m.level; });
  });
  std::erase_if(findings,
                [&](const finding& f) { return std::ranges::find(more, f.id, &finding::id) != more.end(); });
  std::ranges::move(more, std::back_inserter(findings));
  sort_findings(findings);
}

}  // namespace corvantile
