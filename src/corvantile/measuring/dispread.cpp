#include "corvantile/measuring/dispread.hpp"

#include <filesystem>
#include <fmt/format.h>
#include <system_error>

#include "corvantile/formats/detect.hpp"
#include "corvantile/measuring/process.hpp"
#include "corvantile/utils/failure.hpp"
#include "corvantile/utils/file_input.hpp"
#include "corvantile/utils/file_output.hpp"
#include "corvantile/utils/text.hpp"

namespace corvantile::measuring {
namespace {

namespace fs = std::filesystem;

void rename(const std::string& from, const std::string& to) {
  std::error_code failed;
  fs::rename(from, to, failed);
  if (failed) throw failure(fault::unwritable, "Cannot write " + printable(to) + ": " + failed.message());
}

bool exists(const std::string& name) {
  std::error_code none;
  return fs::exists(name, none);
}

// An older file of readings, out of the way so that it is not taken for a new one.
class file_put_aside {
 public:
  explicit file_put_aside(const std::string& name) : name_(name), aside_(name + ".before") {
    if (exists(name_)) rename(name_, aside_);
  }
  file_put_aside(const file_put_aside&) = delete;
  file_put_aside& operator=(const file_put_aside&) = delete;
  ~file_put_aside() {
    std::error_code none;
    if (exists(name_))
      fs::remove(aside_, none);
    else
      fs::rename(aside_, name_, none);
  }

 private:
  std::string name_, aside_;
};

// Counts the usable rows and says what is wrong with the file.
report judge(const std::string& file, std::size_t expected, std::size_t& count) {
  try {
    count = read_readings({fs::path(file).filename().string(), read_file(file).value_or("")}).rows.size();
  } catch (const failure& wrong) {
    return {outcome::failed, wrong.message};
  }
  if (count >= expected) return {};
  return {outcome::done, fmt::format("{} holds {} of {} readings", printable(file), count, expected)};
}

}  // namespace

dispread_result run_dispread(std::span<const chart_patch> chart, const dispread_call& call, stop_signals& stop) {
  const std::string readings = call.name + ".ti3", partial = call.name + ".partial.ti3";
  if (!call.replace && exists(readings)) throw failure(fault::unwritable, printable(readings) + " exists already");
  write_file(call.name + ".ti1", write_chart_ti1(chart, call.date));
  const file_put_aside older(readings);

  child c{.argv = {call.program}, .limit = call.limit};
  c.argv.insert(c.argv.end(), call.options.begin(), call.options.end());
  c.argv.push_back(call.name.starts_with('-') ? "./" + call.name : call.name);
  const child_result ended = run_in_terminal(c, stop);

  dispread_result result{.status = {}, .found = ended.how != ending::not_found};
  result.command = printable(fmt::format("{}", fmt::join(c.argv, " ")));
  const bool wrote = exists(readings);
  if (ended.ok() && wrote) {
    result.file = readings;
    result.whole = true;
    result.status = judge(readings, chart.size(), result.readings);
    return result;
  }
  result.status.how = ended.how == ending::interrupted ? outcome::interrupted : outcome::failed;
  result.status.words =
      ended.ok() ? words_for(c, ended) + " but wrote no " + printable(readings) : words_for(c, ended);
  if (wrote) {
    rename(readings, partial);
    result.file = partial;
    judge(partial, chart.size(), result.readings);
    result.status.words += fmt::format("; {} readings are kept in {}", result.readings, printable(partial));
  }
  return result;
}

}  // namespace corvantile::measuring
