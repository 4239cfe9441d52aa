#include <cmath>
#include <gtest/gtest.h>

#include "tests/monitor/fitted.hpp"

namespace corvantile {
namespace {

TEST(FrontEnd, PartsGoInAndComeOut) {
  front_end fe = mild_front_end();
  matrix pre, post;
  mat3 mix;
  get3chluts(fe, &pre, &post, &mix);
  EXPECT_EQ(pre.rows(), 33u);
  EXPECT_EQ(post.rows(), 17u) << "each with a length of its own";
  front_end again;
  set3chluts(again, &pre, &post, &mix);
  EXPECT_EQ(again, fe);

  const mat3 other = mix * 0.5;
  set3chluts(fe, nullptr, nullptr, &other);
  EXPECT_EQ(fe.matrix, other);
  EXPECT_EQ(fe.pre, again.pre) << "parts not given stay";
  EXPECT_EQ(fe.post, again.post);
}

TEST(FrontEnd, MapsThroughTableMatrixTable) {
  const mat3 swap{{vec3{{0, 1, 0}}, vec3{{1, 0, 0}}, vec3{{0.5, 0, 1}}}};  // column c says where channel c goes
  const lut twice{{0, 1}, {0, 2}}, plus{{0, 1}, {10, 11}};
  const front_end fe{{twice, twice, twice}, {plus, plus, plus}, swap};
  EXPECT_EQ(femap_vec(fe, {{1, 2, 3}}), (vec3{{17, 12, 16}}));
}

TEST(FrontEnd, TheInverseChainUndoesIt) {
  const front_end fe = mild_front_end(), inverse = make_inverse_frontend(fe);
  for (const vec3& u : {vec3{{0.1, 0.5, 0.9}}, vec3{{1, 1, 1}}, vec3{}, vec3{{0.33, 0.01, 0.77}}}) {
    const vec3 there = femap_vec(inverse, femap_vec(fe, u)), back = femap_vec(fe, femap_vec(inverse, u));
    for (std::size_t c = 0; c < 3; ++c) {
      EXPECT_NEAR(there[c], u[c], 1e-14);
      EXPECT_NEAR(back[c], u[c], 1e-14);
    }
  }
}

TEST(FrontEnd, AnIdentityChangesNothing) {
  const monitor plain = fitted(uneven_display());
  matrix diagonal(2, 3);
  set_row3(diagonal, 1, {{1, 1, 1}});
  const mat3 unit{{vec3{{1, 0, 0}}, vec3{{0, 1, 0}}, vec3{{0, 0, 1}}}};
  front_end fe;
  set3chluts(fe, &diagonal, &diagonal, &unit);
  const monitor composite = monwfe(plain, fe);
  EXPECT_TRUE(composite.composite);
  EXPECT_FALSE(plain.composite);
  EXPECT_EQ(composite.name, plain.name);
  for (const vec3& u : {vec3{{0.125, 0.5, 0.875}}, vec3{{1, 1, 1}}, vec3{}}) {  // exact in the tables' arithmetic
    EXPECT_EQ(inp2out_vec(composite, u), inp2out_vec(plain, u));
    EXPECT_EQ(mon2inp_vec(composite, {{0.25, 0.5, 0.75}})[1], mon2inp_vec(plain, {{0.25, 0.5, 0.75}})[1]);
  }
}

TEST(TableMaps, UndoEachOtherWhereColumnsAreStrictlyMonotone) {
  matrix t(5, 3);
  for (std::size_t i = 0; i < 5; ++i) {
    const double u = static_cast<double>(i) / 4;
    set_row3(t, i, {{u * u, 1 - u, i == 2 ? 0.25 : u * u}});  // rising, falling, rising
  }
  EXPECT_EQ(lutmap_vec(t, {{0.5, 0.25, 0.75}}), (vec3{{0.25, 0.75, 0.5625}})) << "rows are even steps from 0 to 1";
  const vec3 u{{0.3, 0.6, 0.9}}, back = invlutmap_vec(t, lutmap_vec(t, u));
  for (std::size_t c = 0; c < 3; ++c) EXPECT_NEAR(back[c], u[c], 1e-15);
  t(3, 0) = t(2, 0);
  const vec3 tied = invlutmap_vec(t, u);
  EXPECT_TRUE(std::isnan(tied[0])) << "a tie has no inverse";
  EXPECT_FALSE(std::isnan(tied[1]));
}

}  // namespace
}  // namespace corvantile
