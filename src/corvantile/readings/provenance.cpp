#include "corvantile/readings/provenance.hpp"

namespace corvantile {

provenance provenance_of(const readings& all, const ramp_choice& choice) {
  provenance p;
  p.source = all.source;
  p.kind = all.kind;
  p.instrument = all.instrument;
  p.originator = all.originator;
  p.date = all.date;
  p.display = all.display;
  p.readings = all.rows.size();
  p.absolute = all.absolute;
  p.ramps = (choice.taken == ramp_source::derived ? "derived (" : "measured (") + choice.why + ")";
  p.repeated = choice.repeated;
  p.calibration = all.calibration;
  p.notes = all.notes.sentences();
  for (std::string& note : choice.notes.sentences()) p.notes.push_back(std::move(note));
  return p;
}

}  // namespace corvantile
