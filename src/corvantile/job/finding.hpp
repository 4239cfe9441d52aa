#pragma once
// What there is to say about measurements and about a solved job: results that were made but are not to be trusted,
// and what is worth knowing.

#include <string>
#include <string_view>
#include <vector>

namespace corvantile {

enum class severity {
  note,     ///< worth knowing
  warning,  ///< the result will be worse than it could be
  error     ///< the result would not be worth having
};
/// "note", "warning" or "error".
std::string_view name_of(severity level);

/// One thing to say. Message and action are sentences without their final stop; a message may hold several.
struct finding {
  std::string id;  ///< lower-case words and hyphens, such as "dark-spread": by this, programs know it
  severity level = severity::note;
  std::string message;  ///< what was found, with figures, and what it means for the result
  std::string action;   ///< what to do; empty if there is nothing to do
};

/// Message and action as one paragraph: "Message. Action."
std::string text_of(const finding& f);

/// Puts the worst first; within one severity the order stays.
void sort_findings(std::vector<finding>& findings);

/// Joins both, worst first. If both have an identifier, the more severe one stays, or the first of two equal ones.
void merge_findings(std::vector<finding>& findings, std::vector<finding> more);

}  // namespace corvantile
