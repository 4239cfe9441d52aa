#include "corvantile/monitor/synthetic_monitor.hpp"

#include <utility>

#include "corvantile/numerics/linsolv.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {

namespace {

/// Linear channel value -> input.
lut inverse_table(const lut& tone) {
  lut t = invlut(tone);
  if (!increasing(t.x)) t.x = iba(t.y, t.x);
  return t;
}

/// X, Y, Z -> input. Everything that does not depend on the colour is computed once.
class inverse_display {
 public:
  explicit inverse_display(const synthetic_monitor& syn)
      : inverse_(inv(syn.primaries)), offset_(syn.offset), table_(inverse_table(syn.table)), to_input_(table_) {}
  inverse_display(const inverse_display&) = delete;  // `to_input_` points into `table_`
  inverse_display& operator=(const inverse_display&) = delete;

  vec3 operator()(const vec3& xyz) const {
    const vec3 l = inverse_ * (xyz - offset_);
    return {{to_input_(l[0]), to_input_(l[1]), to_input_(l[2])}};
  }

 private:
  mat3 inverse_;
  vec3 offset_;
  lut table_;
  interpolator to_input_;
};

}  // namespace

synthetic_monitor make_synthetic_monitor(std::string_view name, const mat3& primaries, lut table,
                                         const vec3& offset) {
  return {std::string(cut(name, longest_name)), std::move(table), primaries, offset};
}

static auto syn_inp2out(const synthetic_monitor& syn) {
  return [&syn, to_linear = interpolator(syn.table)](const vec3& inp) {
    return syn.primaries * vec3{{to_linear(inp[0]), to_linear(inp[1]), to_linear(inp[2])}} + syn.offset;
  };
}
vec3 syn_inp2out_vec(const synthetic_monitor& syn, const vec3& inp) { return apply(syn_inp2out(syn), inp); }
matrix syn_inp2out_mat(const synthetic_monitor& syn, const matrix& inp) { return apply(syn_inp2out(syn), inp); }

vec3 syn_out2inp_vec(const synthetic_monitor& syn, const vec3& xyz) { return apply(inverse_display(syn), xyz); }
matrix syn_out2inp_mat(const synthetic_monitor& syn, const matrix& xyz) { return apply(inverse_display(syn), xyz); }

vec3 syn_whitepoint(const synthetic_monitor& syn) {
  // Deliberately column sums, although a column is a primary: the reports are defined relative to this triple.
  vec3 sums;
  for (std::size_t c = 0; c < 3; ++c) {
    const vec3& col = syn.primaries.col[c];
    sums[c] = col[0] + col[1] + col[2];
  }
  return sums;
}

}  // namespace corvantile
