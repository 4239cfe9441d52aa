#include "corvantile/report/svg.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <optional>

namespace corvantile::svg {
namespace {

constexpr double letter = 6.1;       // mean width of a character in ticks and legend, a little too wide
constexpr double legend_row = 17;    // height of a line of the legend
constexpr double sample_width = 24;  // of a legend entry's line

struct spot {
  double x, y;
};

// The rectangle inside the axes, and the place of data in it.
struct frame {
  axis x, y;
  double left, top, width, height;

  double right() const { return left + width; }
  double bottom() const { return top + height; }
  spot at(double vx, double vy) const {
    return {left + width * share_of(x, vx), bottom() - height * share_of(y, vy)};
  }
  bool holds(double vx, double vy) const {
    return vx >= x.from && vx <= x.to && vy >= y.from && vy <= y.to;  // false for NaN
  }
};

// The part of a segment within the frame, after Liang and Barsky (1984).
bool cut_at(const frame& f, spot& p, spot& q) {
  double from = 0;
  double to = 1;
  const spot d{q.x - p.x, q.y - p.y};
  const std::array<std::array<double, 2>, 4> edges{
      {{-d.x, p.x - f.left}, {d.x, f.right() - p.x}, {-d.y, p.y - f.top}, {d.y, f.bottom() - p.y}}};
  for (const auto& [towards, room] : edges) {
    if (towards == 0 && room < 0) return false;
    if (towards < 0) from = std::max(from, room / towards);
    if (towards > 0) to = std::min(to, room / towards);
  }
  if (!(from <= to)) return false;
  q = {p.x + to * d.x, p.y + to * d.y};
  p = {p.x + from * d.x, p.y + from * d.y};
  return true;
}

std::string text_at(spot p, std::string_view style, anchor a, std::string_view text) {
  constexpr std::array names{"start", "middle", "end"};
  return fmt::format(R"(<text x="{}" y="{}" class="{}" text-anchor="{}">{}</text>)", number(p.x), number(p.y), style,
                     names[static_cast<std::size_t>(a)], escape(text));
}

std::string line_between(spot p, spot q, std::string_view style) {
  return fmt::format(R"(<line x1="{}" y1="{}" x2="{}" y2="{}" class="{}"/>)", number(p.x), number(p.y), number(q.x),
                     number(q.y), style);
}

std::string path(std::string_view d, std::string_view style) {
  return d.empty() ? "" : fmt::format(R"(<path d="{}" class="{}"/>)", d, style);
}

// One step of a path: to `p`, with or without a line.
std::string move_to(spot p) { return fmt::format("M{} {}", number(p.x), number(p.y)); }
std::string line_to(spot p) { return fmt::format("L{} {}", number(p.x), number(p.y)); }

// Lines from sample to sample. After each cut, a new stroke begins.
std::string stroke(const frame& f, const std::vector<double>& x, const std::vector<double>& y, bool closed) {
  std::string d;
  const std::size_t n = std::min(x.size(), y.size());
  std::optional<spot> pen;
  for (std::size_t i = 1; i < n + (closed && n > 0 ? 1 : 0); ++i) {
    const std::size_t j = i % n;
    const bool there =
        has_place(f.x, x[i - 1]) && has_place(f.y, y[i - 1]) && has_place(f.x, x[j]) && has_place(f.y, y[j]);
    spot p{0, 0};
    spot q{0, 0};
    if (there) p = f.at(x[i - 1], y[i - 1]), q = f.at(x[j], y[j]);
    const spot whole = q;
    if (!there || !cut_at(f, p, q)) {
      pen.reset();
      continue;
    }
    if (!pen || pen->x != p.x || pen->y != p.y) d += move_to(p);
    d += line_to(q);
    pen = q.x == whole.x && q.y == whole.y ? std::optional(q) : std::nullopt;
  }
  return d;
}

std::string shape_at(marker shape, spot p, std::string_view style) {
  const auto polygon = [&](std::initializer_list<spot> corners) {
    std::string d;
    for (const spot& c : corners) {
      const spot at{p.x + c.x, p.y + c.y};
      d += d.empty() ? move_to(at) : line_to(at);
    }
    return path(d + 'Z', style);
  };
  switch (shape) {
    case marker::square:
      return polygon({{-3, -3}, {3, -3}, {3, 3}, {-3, 3}});
    case marker::triangle:
      return polygon({{0, -3.8}, {3.6, 2.6}, {-3.6, 2.6}});
    case marker::diamond:
      return polygon({{0, -4}, {4, 0}, {0, 4}, {-4, 0}});
    case marker::cross:
      return line_between({p.x - 3, p.y - 3}, {p.x + 3, p.y + 3}, style) +
             line_between({p.x - 3, p.y + 3}, {p.x + 3, p.y - 3}, style);
    case marker::circle:
      break;
  }
  return fmt::format(R"(<circle cx="{}" cy="{}" r="3.2" class="{}"/>)", number(p.x), number(p.y), style);
}

std::string rectangle(spot corner, double width, double height, std::string_view style) {
  return fmt::format(R"(<rect x="{}" y="{}" width="{}" height="{}" class="{}"/>)", number(corner.x), number(corner.y),
                     number(width), number(height), style);
}

// ---- One overload for each mark ----

std::string drawn(const polyline& m, const frame& f) {
  return path(stroke(f, m.x, m.y, m.closed), "line " + m.style);
}

std::string drawn(const band& m, const frame& f) {
  std::string there;
  std::string back;
  for (std::size_t i = 0; i < std::min({m.x.size(), m.low.size(), m.high.size()}); ++i) {
    if (!has_place(f.x, m.x[i]) || m.x[i] < f.x.from || m.x[i] > f.x.to) continue;
    if (!has_place(f.y, m.low[i]) || !has_place(f.y, m.high[i])) continue;
    const auto y = [&](double v) { return f.at(m.x[i], std::clamp(v, f.y.from, f.y.to)); };
    there += there.empty() ? move_to(y(m.high[i])) : line_to(y(m.high[i]));
    back.insert(0, line_to(y(m.low[i])));
  }
  return there.empty() ? std::string() : path(there + back + 'Z', m.style);
}

std::string drawn(const bars& m, const frame& f) {
  std::string out;
  for (const bar& b : m.bars) {
    if (!f.holds(b.from, f.y.from) || !f.holds(b.to, f.y.from) || !has_place(f.y, b.height)) continue;
    const spot corner = f.at(b.from, std::clamp(b.height, f.y.from, f.y.to));
    const double width = f.at(b.to, f.y.from).x - corner.x;
    out += rectangle({corner.x + 0.5, corner.y}, std::max(0.0, width - 1), f.bottom() - corner.y, m.style);
  }
  return out;
}

std::string drawn(const points& m, const frame& f) {
  std::string out;
  for (std::size_t i = 0; i < std::min(m.x.size(), m.y.size()); ++i) {
    if (f.holds(m.x[i], m.y[i])) out += shape_at(m.shape, f.at(m.x[i], m.y[i]), "point " + m.style);
  }
  return out;
}

std::string drawn(const arrow& m, const frame& f) {
  if (!f.holds(m.x0, m.y0) || !f.holds(m.x1, m.y1)) return {};
  const spot tail = f.at(m.x0, m.y0);
  const spot tip = f.at(m.x1, m.y1);
  const double length = std::hypot(tip.x - tail.x, tip.y - tail.y);
  if (length < 1) return {};
  const spot u{(tip.x - tail.x) / length, (tip.y - tail.y) / length};
  const double head = std::min(7.0, length);
  const spot neck{tip.x - head * u.x, tip.y - head * u.y};
  const std::string triangle = move_to(tip) + line_to({neck.x - 0.4 * head * u.y, neck.y + 0.4 * head * u.x}) +
                               line_to({neck.x + 0.4 * head * u.y, neck.y - 0.4 * head * u.x});
  return line_between(tail, neck, "line " + m.style) + path(triangle + 'Z', "head " + m.style);
}

std::string drawn(const note& m, const frame& f) {
  if (!f.holds(m.x, m.y)) return {};
  const spot p = f.at(m.x, m.y);
  return text_at({p.x + m.dx, p.y + m.dy}, m.style, m.anchor, m.text);
}

// ---- Labels at the ends of lines, moved apart if they would overlap ----

struct end_label {
  spot at;
  const polyline* line;
};

std::vector<end_label> end_labels(const plot& p, const frame& f) {
  std::vector<end_label> labels;
  for (const mark& m : p.marks) {
    const auto* line = std::get_if<polyline>(&m);
    if (line == nullptr || line->end_label.empty() || line->x.empty() || line->y.empty()) continue;
    const std::size_t last = std::min(line->x.size(), line->y.size()) - 1;
    const double x = line->x[last], y = line->y[last];
    if (!has_place(f.x, x) || !has_place(f.y, y)) continue;
    spot s = f.at(std::clamp(x, f.x.from, f.x.to), std::clamp(y, f.y.from, f.y.to));
    labels.push_back({{s.x + 4, s.y + 4}, line});
  }
  constexpr double apart = 12;
  std::ranges::sort(labels, {}, [](const end_label& l) { return l.at.y; });
  for (std::size_t i = 1; i < labels.size(); ++i) {
    const double overlap = labels[i - 1].at.y + apart - labels[i].at.y;
    if (overlap <= 0) continue;
    for (std::size_t j = 0; j < i; ++j) labels[j].at.y -= overlap / 2;
    labels[i].at.y += overlap / 2;
  }
  return labels;
}

// ---- The legend: samples of the marks that have a label, in rows ----

std::string label_of(const mark& m) {
  return std::visit(
      [](const auto& v) -> std::string {
        if constexpr (requires { v.label; }) return v.label;
        return {};
      },
      m);
}

std::string sample(const mark& m, spot p) {
  if (const auto* line = std::get_if<polyline>(&m)) {
    return line_between({p.x, p.y}, {p.x + sample_width, p.y}, "line " + line->style);
  }
  if (const auto* dots = std::get_if<points>(&m)) {
    return shape_at(dots->shape, {p.x + sample_width / 2, p.y}, "point " + dots->style);
  }
  const std::string& style = std::holds_alternative<band>(m) ? std::get<band>(m).style : std::get<bars>(m).style;
  return rectangle({p.x, p.y - 4}, sample_width, 8, style);
}

double text_width(std::string_view s) { return letter * static_cast<double>(s.size()); }

// Draws the legend from the upper left corner on, and sets `height` to its height.
std::string legend(const plot& p, double left, double& height) {
  std::string out;
  double x = left;
  double row = 0;
  for (const mark& m : p.marks) {
    const std::string label = label_of(m);
    if (label.empty()) continue;
    const double width = sample_width + 6 + text_width(label) + 10;
    if (x > left && x + width > p.width) x = left, ++row;
    const double y = 9 + row * legend_row;
    out += sample(m, {x, y}) + text_at({x + sample_width + 6, y + 4}, "legend", anchor::start, label);
    x += width;
  }
  height = out.empty() ? 0 : (row + 1) * legend_row + 4;
  return out;
}

// ---- Frame, grid and ticks ----

double widest(const std::vector<tick>& t) {
  double w = 0;
  for (const tick& k : t) w = std::max(w, text_width(k.label));
  return w;
}

std::string grid(const plot& p, const frame& f, const std::vector<tick>& xs, const std::vector<tick>& ys) {
  std::string out;
  for (const tick& t : ys) {
    const double y = f.at(f.x.from, t.at).y;
    out += line_between({f.left, y}, {f.right(), y}, "grid");
    out += text_at({f.left - 6, y + 4}, "tick", anchor::end, t.label);
  }
  for (const tick& t : xs) {
    const double x = f.at(t.at, f.y.from).x;
    out += line_between({x, f.top}, {x, f.bottom()}, "grid");
    out += text_at({x, f.bottom() + 15}, "tick", anchor::middle, t.label);
  }
  out += line_between({f.left, f.bottom()}, {f.right(), f.bottom()}, "axis");
  if (!p.x.label.empty()) {
    out += text_at({f.left + f.width / 2, f.bottom() + 31}, "axis-label", anchor::middle, p.x.label);
  }
  if (!p.y.label.empty()) out += text_at({0, f.top - 9}, "axis-label", anchor::start, p.y.label);
  return out;
}

}  // namespace

static std::string drawn_plot(const plot& p, std::string_view attributes, std::string_view style) {
  const axis x = drawable(p.x);
  const axis y = drawable(p.y);
  const std::vector<tick> xs = ticks(x, p.x_ticks);
  const std::vector<tick> ys = ticks(y, p.y_ticks);
  frame f{x, y, std::max(14.0, widest(ys) + 10), 0, 0, p.height};

  double legend_height = 0;
  const std::string key = legend(p, 0, legend_height);
  f.top = legend_height + (p.y.label.empty() ? 8 : 24);
  double right = std::max(10.0, xs.empty() ? 0.0 : text_width(xs.back().label) / 2);
  for (const mark& m : p.marks) {
    if (const auto* line = std::get_if<polyline>(&m); line != nullptr && !line->end_label.empty()) {
      right = std::max(right, text_width(line->end_label) + 8);
    }
  }
  f.width = p.width - f.left - right;
  if (p.equal_units) f.height = f.width * (y.to - y.from) / (x.to - x.from);
  const double height = f.bottom() + (p.x.label.empty() ? 22 : 38);

  std::string out =
      fmt::format(R"(<svg {}id="{}" viewBox="0 0 {} {}" role="img">{}<title>{}</title><desc>{}</desc>)", attributes,
                  escape(p.id), number(p.width), number(height), style, escape(p.title), escape(p.description));
  out += key + grid(p, f, xs, ys);
  for (const mark& m : p.marks) out += std::visit([&](const auto& v) { return drawn(v, f); }, m);
  for (const end_label& l : end_labels(p, f)) {
    out += text_at(l.at, "end " + l.line->style, anchor::start, l.line->end_label);
  }
  return out + "</svg>\n";
}

std::string draw(const plot& p) { return drawn_plot(p, "", ""); }

std::string draw_alone(const plot& p, std::string_view style_sheet) {
  return drawn_plot(p, "xmlns=\"http://www.w3.org/2000/svg\" ", fmt::format("<style>{}</style>", style_sheet));
}

}  // namespace corvantile::svg
