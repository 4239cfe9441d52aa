#include "corvantile/residual/residual_model.hpp"

#include <algorithm>

#include "corvantile/colour/color_metrics.hpp"
#include "corvantile/residual/patch_set.hpp"
#include "corvantile/residual/uniform_colour.hpp"
#include "corvantile/utils/failure.hpp"

namespace corvantile {
namespace {

struct errors {
  std::vector<double> all, near_gray;
  void add(const vec3& drive, double error) {
    all.push_back(error);
    if (corvantile::near_gray(drive)) near_gray.push_back(error);
  }
  prediction_figures figures() && { return {summarize(std::move(all)), summarize(std::move(near_gray))}; }
};

patch_figures figures_of(const patch_set& set, std::span<const vec3> measured, std::span<const vec3> residual,
                         std::span<const left_out_sample> left_out) {
  errors additive, learnt;
  for (const auto& [i, error] : left_out) {
    if (i < set.ramps) continue;
    additive.add(set.drive[i], deltae2000_vec(measured[i], measured[i] - residual[i]));
    learnt.add(set.drive[i], deltae2000_vec(measured[i], measured[i] - error));
  }
  return {std::move(additive).figures(), std::move(learnt).figures()};
}

}  // namespace

residual_model learn_residual(const monitor& base, std::span<const reading> all, unsigned threads) {
  if (base.composite) refuse_content(base.name, "the residual of a display is learnt without a front end before it");
  const patch_set set = merge_patches(base, all);
  std::vector<vec3> measured(set.drive.size()), residual(set.drive.size());
  for (std::size_t i = 0; i < set.drive.size(); ++i) {
    measured[i] = xyz2lab_exact(set.xyz[i], base.whitepoint);
    residual[i] = measured[i] - xyz2lab_exact(inp2out_vec(base, set.drive[i]), base.whitepoint);
  }
  learnt_process learnt = learn(set.drive, residual, set.ramps, threads);

  residual_model model = additive_only(base);
  model.patches = set.drive.size();
  model.beside = set.drive.size() - set.ramps;
  model.figures = figures_of(set, measured, residual, learnt.left_out);
  model.used = model.figures.left_out.all.mean < model.figures.additive.all.mean;
  if (model.used) model.residual = std::move(learnt.f);
  return model;
}

residual_model additive_only(const monitor& base) {
  residual_model model;
  model.base = base;
  return model;
}

vec3 predict(const residual_model& model, const vec3& drive) {
  vec3 u;
  for (std::size_t c = 0; c < 3; ++c) u[c] = std::clamp(drive[c], 0.0, 1.0);
  const vec3 additive = inp2out_vec(model.base, u);
  if (model.residual.centre.empty()) return additive;
  const vec3 lab = xyz2lab_exact(additive, model.base.whitepoint);
  return lab2xyz_exact(lab + value_at(model.residual, u), model.base.whitepoint);
}

matrix predict(const residual_model& model, const matrix& drives) {
  return apply([&](const vec3& drive) { return predict(model, drive); }, drives);
}

}  // namespace corvantile
