#include <array>
#include <utility>

#include "corvantile/monitor/monitor.hpp"
#include "corvantile/monitor/prepared.hpp"
#include "corvantile/numerics/linsolv.hpp"

namespace corvantile {
namespace {

// Maps each channel through its own table.
class three_tables {
 public:
  explicit three_tables(std::array<lut, 3> tables) : tables_(std::move(tables)) {}
  vec3 operator()(const vec3& u) const {
    return {{interp(tables_[0], u[0]), interp(tables_[1], u[1]), interp(tables_[2], u[2])}};
  }

 private:
  std::array<lut, 3> tables_;
};

three_tables lutmap(const matrix& table) {
  const auto grid = linspace(0.0, 1.0, table.rows());
  return three_tables({makelut_stat(grid, table.col(0)).table, makelut_stat(grid, table.col(1)).table,
                       makelut_stat(grid, table.col(2)).table});
}

three_tables invlutmap(const matrix& table) {
  const auto grid = linspace(0.0, 1.0, table.rows());
  return three_tables({makelut_stat(table.col(0), grid).table, makelut_stat(table.col(1), grid).table,
                       makelut_stat(table.col(2), grid).table});
}

std::array<lut, 3> tables_from(const matrix& sampled) {
  const auto grid = linspace(0.0, 1.0, sampled.rows());
  return {makelut_nostat(grid, sampled.col(0)), makelut_nostat(grid, sampled.col(1)),
          makelut_nostat(grid, sampled.col(2))};
}

matrix sampled_from(const std::array<lut, 3>& tables) {
  const auto grid = linspace(0.0, 1.0, tables[0].x.size());
  matrix sampled(grid.size(), 3);
  for (std::size_t c = 0; c < 3; ++c) {
    const interpolator table(tables[c]);
    for (std::size_t i = 0; i < grid.size(); ++i) sampled(i, c) = table(grid[i]);
  }
  return sampled;
}

std::array<lut, 3> exchanged(const std::array<lut, 3>& tables) {
  return {invlut(tables[0]), invlut(tables[1]), invlut(tables[2])};
}

}  // namespace

vec3 femap_vec(const front_end& fe, const vec3& u) { return apply(prepared_front_end(fe), u); }
matrix femap_mat(const front_end& fe, const matrix& u) { return apply(prepared_front_end(fe), u); }

vec3 lutmap_vec(const matrix& table, const vec3& u) { return apply(lutmap(table), u); }
matrix lutmap_mat(const matrix& table, const matrix& u) { return apply(lutmap(table), u); }

vec3 invlutmap_vec(const matrix& table, const vec3& u) { return apply(invlutmap(table), u); }
matrix invlutmap_mat(const matrix& table, const matrix& u) { return apply(invlutmap(table), u); }

void set3chluts(front_end& fe, const matrix* pre, const matrix* post, const mat3* matrix3) {
  if (pre) fe.pre = tables_from(*pre);
  if (post) fe.post = tables_from(*post);
  if (matrix3) fe.matrix = *matrix3;
}

void get3chluts(const front_end& fe, matrix* pre, matrix* post, mat3* matrix3) {
  if (pre) *pre = sampled_from(fe.pre);
  if (post) *post = sampled_from(fe.post);
  if (matrix3) *matrix3 = fe.matrix;
}

front_end make_inverse_frontend(const front_end& fe) {
  return {exchanged(fe.post), exchanged(fe.pre), inv(fe.matrix)};
}

monitor monwfe(const monitor& mon, const front_end& fe) {
  monitor with = mon;
  with.fe = fe;
  with.ife = make_inverse_frontend(fe);
  with.composite = true;
  return with;
}

}  // namespace corvantile
