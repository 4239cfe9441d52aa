#pragma once
// The sections of the page, in order: the markup of one `section` element each. Their plots are also available alone.

#include <string>
#include <string_view>
#include <vector>

#include "corvantile/report/page.hpp"
#include "corvantile/report/svg.hpp"

namespace corvantile {

std::string verdict_section(const report_data& data);
std::string measured_section(const report_data& data);  ///< empty if nothing was measured
std::string gray_axis_section(const report_data& data);
std::string tone_curve_section(const report_data& data);
std::string gamut_section(const report_data& data);
std::string difference_section(const report_data& data);
std::string table_section(const report_data& data);
std::string trust_section(const report_data& data);
std::string remake_section(const report_data& data);

using plots = std::vector<svg::plot>;
plots gray_axis_plots(const report_data& data);
plots tone_curve_plots(const report_data& data);
plots gamut_plots(const report_data& data);
plots difference_plots(const report_data& data);
plots table_plots(const report_data& data);
plots trust_plots(const report_data& data);

/// The style sheet of the page, and the part of it that pictures need, on the page or alone.
std::string_view page_style();
std::string_view picture_style();

}  // namespace corvantile
