#include "corvantile/documents/settings_text.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <ostream>
#include <variant>

#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile {
namespace {

// ---- The keys ----

struct text_key {
  std::string opts::*value;
  std::size_t length;
  bool only_if_set = false;
};
struct integer_key {
  int settings::*value;
};
struct switch_key {  // 0 or 1
  bool settings::*value;
};
enum class edit { f0_7, g12_7, g10_4 };
struct real_key {
  double settings::*value;
  edit layout;
};
struct chromaticities_key {
  chromaticity_table settings::*value;
};
struct mapping_key {
  gamut_mapping settings::*value;
};
struct chromaticity_key {
  std::optional<vec2> settings::*value;
};

struct key {
  std::string_view name;
  std::string_view echo;  // its name in the echo
  std::variant<text_key, integer_key, switch_key, real_key, chromaticities_key, mapping_key, chromaticity_key> kind;
};

// Every key, in the order of the echo.
constexpr key keys[] = {
    {"cvmode", "CVMode", text_key{&opts::cvmode, 32}},
    {"outdir", "outdir", text_key{&opts::outdir, longest_name}},
    {"wgfile", "wgfile", text_key{&opts::wgfile, longest_name}},
    {"gamfile", "gamfile", text_key{&opts::gamfile, longest_name}},
    {"tlen", "tlen", integer_key{&settings::tlen}},
    {"nbits", "nbits", integer_key{&settings::nbits}},
    {"numsegs", "numsegs", integer_key{&settings::numsegs}},
    {"xytable", "chromaticities (WRGB)", chromaticities_key{&settings::xytable}},
    {"gamma", "gamma", real_key{&settings::gamma, edit::f0_7}},
    {"boundary_tol", "boundary_tol", real_key{&settings::boundary_tol, edit::g12_7}},
    {"lumfrac", "lumfrac", real_key{&settings::lumfrac, edit::f0_7}},
    {"rowsum_margin", "rowsum_margin", real_key{&settings::rowsum_margin, edit::g12_7}},
    {"minslope", "minslope", real_key{&settings::minslope, edit::g10_4}},
    {"alpha", "alpha", real_key{&settings::alpha, edit::f0_7}},
    {"beta", "beta", real_key{&settings::beta, edit::f0_7}},
    {"hwid", "hwid", real_key{&settings::hwid, edit::f0_7}},
    {"temp", "temp", real_key{&settings::temp, edit::f0_7}},
    {"wptemp", "wptemp", real_key{&settings::wptemp, edit::f0_7}},
    // These are newer than the others, and echoed only if they are set.
    {"white", "white", chromaticity_key{&settings::white}},
    {"restart", "restart", switch_key{&settings::restart}},
    {"grayfile", "grayfile", text_key{&opts::grayfile, longest_name, true}},
    {"gamut_mapping", "gamut_mapping", mapping_key{&settings::gamut_mapping}},
};

// One function per kind of key, for std::visit.
template <class... F>
struct overload : F... {
  using F::operator()...;
};
template <class... F>
overload(F...) -> overload<F...>;

// The eight entries of the 2 x 4 array in storage order: x and y of white, then of red, green, blue.
constexpr int array_rows = 2;
constexpr int array_columns = 4;
constexpr std::size_t array_size = std::size_t{array_rows} * array_columns;
constexpr std::array<vec2 chromaticity_table::*, array_columns> columns{
    &chromaticity_table::white, &chromaticity_table::red, &chromaticity_table::green, &chromaticity_table::blue};
double& entry(chromaticity_table& t, std::size_t i) { return (t.*columns[i / 2])[i % 2]; }

// ---- The scanner ----

constexpr char end_of_text = '\0';  // returned by `peek` there; a NUL in the text is an error anyway

constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
constexpr bool is_digit(char c) { return c >= '0' && c <= '9'; }
constexpr bool starts_name(char c) { return lower(c) >= 'a' && lower(c) <= 'z'; }
constexpr bool in_name(char c) { return starts_name(c) || is_digit(c) || c == '_'; }

// Walks over the text. It passes every character once, and looks ahead at each at most once.
class scanner {
 public:
  explicit scanner(std::string_view text) : text_(text) {}

  char peek() const { return pos_ < text_.size() ? text_[pos_] : end_of_text; }
  bool at_end() const { return pos_ == text_.size(); }
  std::size_t line() const { return line_; }

  char take() {
    const char c = text_[pos_++];
    if (c == '\n') ++line_;
    return c;
  }
  bool accept(char c) {
    if (at_end() || peek() != c) return false;
    take();
    return true;
  }

  /// Passes blanks, line ends and comments.
  void skip_blanks() {
    while (!at_end()) {
      if (peek() == '!') {
        pos_ = std::min(text_.find('\n', pos_), text_.size());
      } else if (is_white_space(peek())) {
        take();
      } else {
        return;
      }
    }
  }

  /// The text from here to the next character that can end a number.
  std::string_view word() const {
    const std::size_t end = std::min(text_.find_first_of(" \t\r\n,/!'\"", pos_), text_.size());
    return text_.substr(pos_, end - pos_);
  }
  std::string_view name() const {
    std::size_t end = pos_;
    while (end < text_.size() && in_name(text_[end])) ++end;
    return text_.substr(pos_, end - pos_);
  }
  /// Passes `n` characters; none of them is a line end.
  void advance(std::size_t n) { pos_ += n; }

  /// Whether `key =` or `key(1,2) =` comes next, not a value such as `nan`.
  bool at_assignment() const {
    if (!starts_name(peek())) return false;
    scanner ahead = *this;
    ahead.advance(ahead.name().size());
    ahead.skip_blanks();
    if (ahead.accept('(')) {
      while (is_digit(ahead.peek()) || is_white_space(ahead.peek()) ||
             std::string_view(",:+-").find(ahead.peek()) < 4)
        ahead.take();
      if (!ahead.accept(')')) return false;
      ahead.skip_blanks();
    }
    return ahead.peek() == '=';
  }

  /// What comes next, for messages.
  std::string found() const {
    if (at_end()) return "the end of the input";
    const std::string_view w = word();
    return in_quotes(w.empty() ? text_.substr(pos_, 1) : w);
  }

 private:
  std::string_view text_;
  std::size_t pos_ = 0;
  std::size_t line_ = 1;
};

// ---- The reader ----

// Up to eight places of the array, in the order in which values fill them.
struct places {
  std::array<std::size_t, array_size> index{};
  std::size_t count = 0;
  void add(std::size_t i) { index[count++] = i; }
};

class reader {
 public:
  explicit reader(std::string_view text) : in_(without_byte_order_mark(text)) { p_.set.xytable = {}; }

  opts read() {
    open_group();
    for (;;) {
      in_.skip_blanks();
      if (in_.accept(',')) continue;
      if (in_.accept('/')) return p_;
      if (in_.at_end()) fail("the closing '/' of the group is missing");
      read_assignment();
    }
  }

 private:
  [[noreturn]] void fail(const std::string& what, std::size_t line) const {
    std::string where = "Settings, line " + integer_field(static_cast<std::int64_t>(line)) + ": ";
    if (key_ != nullptr) where.append(key_->name).append(": ");
    throw failure(fault::setting, where + what);
  }
  [[noreturn]] void fail(const std::string& what) const { fail(what, in_.line()); }
  [[noreturn]] void expected(std::string_view what) const {
    fail("expected " + std::string(what) + ", found " + in_.found());
  }

  void open_group() {
    in_.skip_blanks();
    const scanner start = in_;
    if (in_.accept('&')) {
      const std::string_view name = in_.name();
      in_.advance(name.size());
      const char next = in_.peek();
      const bool separated = in_.at_end() || is_white_space(next) || next == ',' || next == '/' || next == '!';
      if (std::ranges::equal(name, std::string_view("opts"), {}, lower) && separated) return;
    }
    in_ = start;
    expected("the group '&opts'");
  }

  void read_assignment() {
    const std::string_view name = in_.name();
    if (name.empty() || !starts_name(name.front())) expected("a key or the closing '/'");
    const key* k =
        std::ranges::find_if(keys, [&](const key& c) { return std::ranges::equal(name, c.name, {}, lower); });
    if (k == std::end(keys)) {
      std::string known;
      for (const key& c : keys) known.append(known.empty() ? "" : ", ").append(c.name);
      fail("unknown key " + in_quotes(name) + "; the keys are " + known);
    }
    in_.advance(name.size());
    key_ = k;
    in_.skip_blanks();
    places array = whole_array();
    if (in_.peek() == '(') {
      if (!std::holds_alternative<chromaticities_key>(k->kind)) fail("takes no index");
      array = read_index();
      in_.skip_blanks();
    }
    if (!in_.accept('=')) expected("'='");
    settings& set = p_.set;
    const auto read_one = [this](auto& value, const auto& read) {
      read_values(1, read, [&](std::size_t, const auto& v) { value = v; });
    };
    const auto real = [this] { return read_real(); };
    std::visit(overload{[&](const text_key& t) { read_one(p_.*t.value, [&] { return read_text(t.length); }); },
                        [&](const integer_key& i) { read_one(set.*i.value, [this] { return read_integer(); }); },
                        [&](const switch_key& b) { read_one(set.*b.value, [this] { return read_switch(); }); },
                        [&](const real_key& r) { read_one(set.*r.value, real); },
                        [&](const mapping_key& m) { read_one(set.*m.value, [this] { return read_mapping(); }); },
                        [&](const chromaticities_key& c) {
                          read_values(array.count, real,
                                      [&](std::size_t n, double v) { entry(set.*c.value, array.index[n]) = v; });
                        },
                        [&](const chromaticity_key& c) {
                          std::optional<vec2>& xy = set.*c.value;
                          read_values(2, real, [&](std::size_t n, double v) {
                            if (!xy) xy.emplace();
                            (*xy)[n] = v;
                          });
                        }},
               k->kind);
    key_ = nullptr;
  }

  // Reads up to `count` values of one key, each of which may be left out or repeated. Ignores commas after the last.
  template <class Read, class Store>
  void read_values(std::size_t count, const Read& read, const Store& store) {
    std::size_t used = 0;
    for (;;) {
      in_.skip_blanks();
      if (in_.at_end() || in_.peek() == '/' || in_.at_assignment()) return;
      if (in_.accept(',')) {  // a value left out
        used = std::min(used + 1, count);
        continue;
      }
      if (used == count) expected("another key or the closing '/' after " + counted(count));
      const std::size_t repeats = read_repeat_count(count - used);
      const std::size_t next = used + std::max<std::size_t>(repeats, 1);
      if (repeats == 0 || !at_separator()) {  // else a count alone: that many values are left out
        const auto value = read();
        if (!at_separator()) expected("a blank, a comma or '/' after the value");
        for (std::size_t i = used; i < next; ++i) store(i, value);
      }
      used = next;
      in_.skip_blanks();
      in_.accept(',');
    }
  }

  static std::string counted(std::size_t n) {
    return integer_field(static_cast<std::int64_t>(n)) + (n == 1 ? " value" : " values");
  }

  bool at_separator() const {
    const char c = in_.peek();
    return in_.at_end() || is_white_space(c) || c == ',' || c == '/' || c == '!';
  }

  // Passes `n*` and returns n; 0 if there is no repeat count.
  std::size_t read_repeat_count(std::size_t room) {
    const std::string_view word = in_.word();
    const std::size_t star = word.find('*');
    if (star == std::string_view::npos || star == 0 || !std::ranges::all_of(word.substr(0, star), is_digit)) return 0;
    const auto n = parse_integer(word.substr(0, star));
    if (n == 0 || !n || static_cast<std::uint64_t>(*n) > room)
      expected("a repeat count from 1, with room for " + counted(room));
    in_.advance(star + 1);
    return static_cast<std::size_t>(*n);
  }

  int read_integer() {
    const auto v = parse_integer(in_.word());
    if (!v || *v != static_cast<std::int32_t>(*v)) expected("an integer of 32 bits");
    in_.advance(in_.word().size());
    return static_cast<int>(*v);
  }

  bool read_switch() {
    const std::string_view word = in_.word();
    if (word != "0" && word != "1") expected("0 or 1");
    in_.advance(1);
    return word == "1";
  }

  gamut_mapping read_mapping() {
    const std::string word = read_text(longest_name);
    const auto mapping = gamut_mapping_named(word);
    if (!mapping) fail("expected 'compress' or 'clip', found " + in_quotes(word));
    return *mapping;
  }

  double read_real() {
    const auto v = parse_real(in_.word());
    if (!v) expected("a number");
    in_.advance(in_.word().size());
    return *v;
  }

  // A text in quotes may continue on the next line; the line end is not part of it. Keeps what fits in `length`.
  std::string read_text(std::size_t length) {
    const char quote = in_.peek();
    const std::size_t line = in_.line();
    if (quote != '\'' && quote != '"') expected("a text in quotes");
    in_.take();
    std::string text;
    for (;;) {
      if (in_.at_end()) fail("the text that begins here has no closing quote", line);
      const char c = in_.take();
      if (c == quote && !in_.accept(quote)) break;
      if (c != '\n' && c != '\r' && text.size() < length) text += c;
    }
    text.resize(trim(text).size());
    return text;
  }

  static places whole_array() {
    places all;
    for (std::size_t i = 0; i < array_size; ++i) all.add(i);
    return all;
  }

  struct range {
    int first;
    int last;
    int step;
    bool section;  // written with a colon
  };

  // (i,j) means this element and all after it in storage order. With a colon, it means just the section.
  places read_index() {
    in_.take();
    const range row = read_range(array_rows);
    in_.skip_blanks();
    if (!in_.accept(',')) expected("two indices, as in (1,2)");
    const range column = read_range(array_columns);
    in_.skip_blanks();
    if (!in_.accept(')')) expected("')' after two indices");

    places p;
    if (!row.section && !column.section) {
      for (auto i = static_cast<std::size_t>((column.first - 1) * array_rows + row.first - 1); i < array_size; ++i)
        p.add(i);
      return p;
    }
    const auto inside = [](std::int64_t i, const range& r) { return r.step > 0 ? i <= r.last : i >= r.last; };
    for (std::int64_t j = column.first; inside(j, column); j += column.step)
      for (std::int64_t i = row.first; inside(i, row); i += row.step)
        p.add(static_cast<std::size_t>((j - 1) * array_rows + i - 1));
    return p;
  }

  // One index, or first:last:step with each part optional. Both ends must be in 1..n, and the range not empty.
  range read_range(int n) {
    const auto in_bounds = [&](int i) {
      if (i < 1 || i > n) fail("index " + integer_field(i) + " is not in 1.." + integer_field(n));
    };
    range r{1, n, 1, false};
    if (const auto first = read_index_number()) {
      r.first = r.last = *first;
      in_bounds(*first);
    } else if (in_.peek() != ':') {
      expected("an index");
    }
    in_.skip_blanks();
    if (in_.accept(':')) {
      r.section = true;
      r.last = read_index_number().value_or(n);
      in_bounds(r.last);
      in_.skip_blanks();
      if (in_.accept(':')) {
        const auto step = read_index_number();
        if (!step) expected("a stride");
        r.step = *step;
      }
    }
    if (r.step == 0 || (r.step > 0 ? r.first > r.last : r.first < r.last)) fail("the section selects nothing");
    return r;
  }

  std::optional<int> read_index_number() {
    in_.skip_blanks();
    const bool negative = in_.peek() == '-';
    if (negative || in_.peek() == '+') in_.take();
    std::int64_t v = 0;
    bool any = false;
    for (; is_digit(in_.peek()); any = true) v = std::min<std::int64_t>(v * 10 + (in_.take() - '0'), 1'000'000'000);
    if (!any) return std::nullopt;
    return static_cast<int>(negative ? -v : v);
  }

  scanner in_;
  opts p_;
  const key* key_ = nullptr;  // being read, for messages
};

// ---- Values ----

opts_value value_of(const opts& o, const key& k) {
  return std::visit(overload{[&](const text_key& t) { return opts_value(o.*t.value); },
                             [&](const auto& of_set) { return opts_value(o.set.*of_set.value); }},
                    k.kind);
}

// Newer keys are left out if they are not set: a switch that is off, a chromaticity or a file that is not given.
bool is_left_out(const key& k, const opts_value& value) {
  if (const auto* text = std::get_if<std::string>(&value))
    return text->empty() && std::get<text_key>(k.kind).only_if_set;
  if (const auto* on = std::get_if<bool>(&value)) return !*on;
  if (const auto* mapping = std::get_if<gamut_mapping>(&value)) return *mapping == gamut_mapping::compress;
  const auto* xy = std::get_if<std::optional<vec2>>(&value);
  return xy != nullptr && !*xy;
}

// ---- The group as text ----

std::string quoted(const std::string& s) {
  std::string q = "'";
  for (const char c : s) q.append(c == '\'' ? 2 : 1, c);
  return q + "'";
}

std::string pair_text(const vec2& xy) { return shortest(xy[0]) + ',' + free_format(xy[1]); }

std::string value_text(const opts_value& value) {
  return std::visit(
      overload{[](const std::string& text) { return quoted(text); }, [](int i) { return integer_field(i); },
               [](bool on) { return std::string(on ? "1" : "0"); }, [](double v) { return shortest(v); },
               [](gamut_mapping m) { return quoted(std::string(name_of(m))); },
               [](const chromaticity_table& t) {
                 std::string text;
                 for (const auto column : columns) text += (text.empty() ? "" : ",  ") + pair_text(t.*column);
                 return text;
               },
               [](const std::optional<vec2>& xy) { return xy ? pair_text(*xy) : std::string(); }},
      value);
}

// ---- The echo ----

std::string real_text(double v, edit layout) {
  switch (layout) {
    case edit::f0_7:
      return fixed_field(v, 0, 7);
    case edit::g12_7:
      return general_field(v, 12, 7);
    case edit::g10_4:
      return general_field(v, 10, 4);
  }
  return {};
}

// Empty if no entry is above 0.
std::string echo_of(std::string_view label, chromaticity_table t) {
  std::string text = std::string(label) + '\n';
  bool any = false;
  for (std::size_t i = 0; i < array_size; ++i) {
    const double v = entry(t, i);
    any = any || v > 0;
    if (i > 0 && i % 2 == 0) text.append(3, ' ');
    append_fixed(text.append(2, ' '), v, 0, 4);
  }
  return any ? text + '\n' : "";
}

std::string echo_of(const key& k, const opts_value& value) {
  if (const auto* table = std::get_if<chromaticity_table>(&value)) return echo_of(k.echo, *table);
  const auto text = overload{
      [](const std::string& s) { return s; },
      [&](double v) { return real_text(v, std::get<real_key>(k.kind).layout); },
      [](gamut_mapping m) { return std::string(name_of(m)); },
      [](const std::optional<vec2>& xy) { return fixed_field((*xy)[0], 0, 7) + ' ' + fixed_field((*xy)[1], 0, 7); },
      [&](const auto&) { return value_text(value); }};
  return std::string(k.echo) + " = " + std::visit(text, value) + '\n';
}

}  // namespace

opts read_opts(std::string_view text) { return reader(text).read(); }

void name_mode(opts& p) {
  if (const auto mode = mode_named(p.cvmode)) {
    p.set.mode = *mode;
  } else if (p.cvmode == opts().cvmode) {
    throw failure(fault::no_mode, "CVMode unspecified");
  } else {
    throw failure(fault::unknown_mode, "illegal CVMode: " + printable(p.cvmode));
  }
}

void fill_xytable(settings& s, std::ostream& out, std::string_view standard) {
  // NaN entries do not count. But if all are NaN, nothing is filled.
  bool any_number = false;
  for (std::size_t i = 0; i < array_size; ++i) {
    const double v = entry(s.xytable, i);
    if (std::abs(v) > 0) return;
    any_number = any_number || !std::isnan(v);
  }
  if (!any_number) return;

  s.xytable = srgb;
  if (standard == "AdobeRGB98") {
    s.xytable.red = {{0.64, 0.34}};
    s.xytable.green = {{0.21, 0.71}};
  } else if (standard == "SMPT-C") {  // the program's own spelling
    s.xytable.red = {{0.63, 0.34}};
    s.xytable.green = {{0.31, 0.595}};
    s.xytable.blue = {{0.155, 0.07}};
  } else if (standard != "sRGB") {
    out << " unrecognized standard; using sRGB\n";
    s.gamma = settings().gamma;
  }
}

void end_outdir_with_slash(opts& p) { p.outdir = cut(p.outdir + "/", longest_name); }

std::vector<opts_entry> entries_of(const opts& o) {
  std::vector<opts_entry> entries;
  for (const key& k : keys) {
    opts_value value = value_of(o, k);
    const bool left_out = is_left_out(k, value);
    std::string text = value_text(value);
    entries.push_back({k.name, std::move(value), std::move(text), left_out});
  }
  return entries;
}

std::string echo(const opts& o) {
  std::string out;
  for (const key& k : keys) {
    const opts_value value = value_of(o, k);
    if (!is_left_out(k, value)) out += echo_of(k, value);
  }
  return out + '\n';
}

std::string opts_text(const opts& o, const reasons& why) {
  std::string text = "&opts\n";
  for (const opts_entry& e : entries_of(o)) {
    if (e.left_out) continue;
    std::string line = "  " + std::string(e.key) + " = " + e.text;
    if (const auto comment = why.find(e.key); comment != why.end()) {
      line.resize(std::max<std::size_t>(line.size() + 2, 32), ' ');
      line += "! " + comment->second;
    }
    text += line + '\n';
  }
  return text + "/\n";
}

}  // namespace corvantile
