#pragma once
// Settings back to the text of a group, which the reader must read as the same settings.

#include <string>

#include "driver/profile.hpp"
#include "utils/text.hpp"

namespace corvantile::fuzz {

inline std::string in_reader_quotes(const std::string& s) {
  std::string q = "'";
  for (const char c : s) q += c == '\'' ? std::string("''") : std::string(1, c);
  return q + "'";
}

inline std::string text_of(const profile& given) {
  const settings& s = given.set;
  std::string p = "&opts\n";
  p += "outdir=" + in_reader_quotes(given.outdir) + " wgfile=" + in_reader_quotes(given.wgfile) + '\n';
  p += "gamfile=" + in_reader_quotes(given.gamfile) + " cvmode=" + in_reader_quotes(given.cvmode) + '\n';
  p += "tlen=" + integer_field(s.tlen) + " numsegs=" + integer_field(s.numsegs);
  p += " nbits=" + integer_field(s.nbits) + "\nxytable=";
  const auto& [red, green, blue, white] = s.xytable;
  for (const vec2& xy : {white, red, green, blue}) p += free_format(xy[0]) + ',' + free_format(xy[1]) + '\n';
  p += "gamma=" + free_format(s.gamma) + " boundary_tol=" + free_format(s.boundary_tol);
  p += " lumfrac=" + free_format(s.lumfrac) + " rowsum_margin=" + free_format(s.rowsum_margin);
  p += " temp=" + free_format(s.temp) + " wptemp=" + free_format(s.wptemp);
  p += " alpha=" + free_format(s.alpha) + " beta=" + free_format(s.beta);
  p += " hwid=" + free_format(s.hwid) + " minslope=" + free_format(s.minslope);
  if (s.white) p += " white=" + free_format((*s.white)[0]) + ',' + free_format((*s.white)[1]);
  if (s.restart) p += " restart=1";
  return p + " /\n";
}

}  // namespace corvantile::fuzz
