#pragma once
// Pieces of HTML for the sections of the page.
//
// Arguments called `markup` go into the page as they are; all other text is escaped.

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace corvantile::html {

/// Escapes text for use between tags and in quoted attributes.
std::string text(std::string_view utf8);

/// A number with exactly `decimals` digits after the point; a dash if it is not finite.
std::string fixed(double v, int decimals);

/// The fraction `v` in percent, with a percent sign.
std::string percent(double v, int decimals = 0);

std::string joined(std::initializer_list<std::string_view> markup);
std::string paragraph(std::string_view markup, std::string_view style = {});

struct column {
  std::string head;
  bool numeric = true;
};
using row = std::vector<std::string>;

/// A table with a caption. Caption, heads and cells are markup; the first cell of a row is its heading.
std::string table(std::string_view caption_markup, const std::vector<column>& columns, const std::vector<row>& markup,
                  std::string_view style = {});

/// A picture with a caption below.
std::string figure(std::string_view markup_of_picture, std::string_view markup_of_caption);
/// Figures side by side, if the page is wide enough.
std::string figures(std::initializer_list<std::string_view> markup, std::string_view style = {});

/// A long table, which on screens scrolls in a box of its own.
std::string tall(std::string_view name, std::string_view markup_of_table);

/// A section with its heading and, in `lead`, what it is about.
std::string section(std::string_view id, std::string_view heading, std::string_view lead_markup,
                    std::string_view body_markup);

}  // namespace corvantile::html
