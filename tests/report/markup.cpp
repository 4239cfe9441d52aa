#include "markup.hpp"

#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <vector>

namespace corvantile {

std::string fault_of(const std::string& markup) {
  static const std::regex piece(
      R"re(<(/?)([A-Za-z!][A-Za-z0-9]*)((?: [A-Za-z][A-Za-z0-9-]*="[^"<]*"| html)*)(/?)>|([<&>]|[^ -~\n]))re");
  static const std::regex entity("&(#x?[0-9a-f]+|[A-Za-z]+);");
  static const std::regex id(R"re( id="([^"]*)")re");
  static const std::set<std::string> never_closed{"meta", "!DOCTYPE"};
  const std::string text = std::regex_replace(markup, entity, "");
  std::vector<std::string> open;
  std::set<std::string> ids;
  for (std::sregex_iterator m(text.begin(), text.end(), piece), end; m != end; ++m) {
    const std::string name = (*m)[2];
    const std::string attributes = (*m)[3];
    if ((*m)[5].matched) return "stray " + m->str() + " before " + m->suffix().str().substr(0, 60);
    std::smatch found;
    if (std::regex_search(attributes, found, id) && !ids.insert(found[1]).second)
      return "twice: id " + found[1].str();
    if ((*m)[1].length() > 0) {
      if (open.empty() || open.back() != name) return "closes what is not open: " + m->str();
      open.pop_back();
    } else if ((*m)[4].length() == 0 && !never_closed.contains(name)) {
      open.push_back(name);
    }
  }
  return open.empty() ? "" : "never closed: " + open.back();
}

void expect_sound(const std::string& markup) {
  static const std::regex style("<style>[^<]*</style>");
  const std::string text = std::regex_replace(markup, style, "");
  EXPECT_EQ(fault_of(text), "");
  static const std::regex not_a_number(R"re(="[^"]*\b(nan|inf|infinity)\b[^"]*"|[0-9]e\+?[0-9]+[ "])re",
                                       std::regex::icase);
  std::smatch m;
  EXPECT_FALSE(std::regex_search(text, m, not_a_number)) << m.str();
}

void expect_standalone(const std::string& page) {
  static const std::regex fetched("https?:|//|url\\(|@import|src=|<script|<link|<object|<iframe");
  std::smatch m;
  EXPECT_FALSE(std::regex_search(page, m, fetched)) << m.str();
}

}  // namespace corvantile
