#pragma once
// What there is to say about measurements and about a solved job: what not to trust, and what is worth knowing.

#include <string>
#include <string_view>
#include <vector>

namespace corvantile {

enum class severity {
  note,     ///< worth knowing
  warning,  ///< the result will be worse than it could be
  error     ///< the result would be useless
};
/// "note", "warning" or "error".
std::string_view name_of(severity level);

/// Message and action have no full stop at the end. A message may be several sentences.
struct finding {
  std::string id;  ///< for programs: lower-case words and hyphens, such as "dark-spread"
  severity level = severity::note;
  std::string message;  ///< what was found, with figures, and what it means for the result
  std::string action;   ///< what to do; empty: nothing
};

/// Message and action as one paragraph: "Message. Action."
std::string text_of(const finding& f);

/// Puts the worst first; within one severity the order stays.
void sort_findings(std::vector<finding>& findings);

/// Adds `more` at the end.
void append(std::vector<finding>& findings, std::vector<finding> more);

/// Adds `more`, and sorts all. If an id is in both, only the more severe one stays; of two equal ones, the first.
void merge_findings(std::vector<finding>& findings, std::vector<finding> more);

}  // namespace corvantile
