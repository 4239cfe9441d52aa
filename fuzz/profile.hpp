#pragma once
// Settings back to the text of a group, which the reader must read as the same settings.

#include <string>

#include "driver/settings.hpp"
#include "utils/text.hpp"

namespace corvantile::fuzz {

inline std::string in_reader_quotes(const std::string& s) {
  std::string q = "'";
  for (const char c : s) q += c == '\'' ? std::string("''") : std::string(1, c);
  return q + "'";
}

inline std::string profile_of(const settings& s) {
  std::string p = "&opts\n";
  p += "outdir=" + in_reader_quotes(s.outdir) + " wgfile=" + in_reader_quotes(s.wgfile) + '\n';
  p += "gamfile=" + in_reader_quotes(s.gamfile) + " cvmode=" + in_reader_quotes(s.cvmode) + '\n';
  p += "tlen=" + integer_field(s.tlen) + " numsegs=" + integer_field(s.numsegs);
  p += " nbits=" + integer_field(s.nbits) + "\nxytable=";
  for (const vec2& xy : s.xytable) p += free_format(xy[0]) + ',' + free_format(xy[1]) + '\n';
  p += "gamma=" + free_format(s.gamma) + " boundary_tol=" + free_format(s.boundary_tol);
  p += " lumfrac=" + free_format(s.lumfrac) + " rowsum_margin=" + free_format(s.rowsum_margin);
  p += " temp=" + free_format(s.temp) + " wptemp=" + free_format(s.wptemp);
  p += " alpha=" + free_format(s.alpha) + " beta=" + free_format(s.beta);
  p += " hwid=" + free_format(s.hwid) + " minslope=" + free_format(s.minslope);
  return p + " /\n";
}

}  // namespace corvantile::fuzz
