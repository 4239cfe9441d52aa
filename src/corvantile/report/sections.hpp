#pragma once
// The sections of the page, in its order. Each gives the markup of one `section` element.

#include <string>
#include <string_view>

#include "corvantile/report/page.hpp"

namespace corvantile {

std::string verdict_section(const report_data& data);
std::string measured_section(const report_data& data);  ///< empty where nothing was measured
std::string gray_axis_section(const report_data& data);
std::string tone_curve_section(const report_data& data);
std::string gamut_section(const report_data& data);
std::string difference_section(const report_data& data);
std::string table_section(const report_data& data);
std::string trust_section(const report_data& data);
std::string remake_section(const report_data& data);

/// The style sheet of the page, and what of it a picture needs outside a page.
std::string_view page_style();
std::string_view picture_style();

}  // namespace corvantile
