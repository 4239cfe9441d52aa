#pragma once
// The tables of a job as files: names, order and number format.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "corvantile/documents/settings_text.hpp"
#include "corvantile/job/correction.hpp"
#include "corvantile/job/device_tables.hpp"
#include "corvantile/numerics/matrix.hpp"
#include "corvantile/utils/file_output.hpp"

namespace corvantile {

/// The text of a table's file, a line per row. If `maxcode` is 0, entries are written as reals, else as integers in
/// units of 1 / maxcode, halves rounded away from zero and not clamped. Throws `fault::not_finite`, naming `path`, if
/// an entry is not finite or has no code. In a table of reals, `undefined_row` may contain NaN.
std::string table_text(const std::string& path, const matrix& table, std::int64_t maxcode,
                       std::optional<std::size_t> undefined_row = {});

/// Largest code of an integer table, 2^nbits - 1, for nbits in 0..31.
std::int64_t maxcode(const settings& s);

/// The files of a solved job, in the order in which they are to be written: `postLUT.txt` in CV1; `preLUT.txt`,
/// `postLUT.txt`, `matrix.txt` in CV2; the same with `preLUT.txt` last in CV2_1. Paths begin with `o.outdir` as it
/// is: see `end_outdir_with_slash`. Throws as `table_text` does.
std::vector<text_file> table_files(const correction& result, const opts& o);

/// Throws `fault::setting` if tables cannot go to `outdir`: its name is empty, it is so long that a table's path
/// would be cut, or a table would overwrite an input file of the job. Expects the closing slash of
/// `end_outdir_with_slash`.
void check_outdir(const opts& o);

/// Reads the tables in a folder: `preLUT.txt`, `matrix.txt` and `postLUT.txt` if the first two are both there, else
/// only `postLUT.txt`. Throws `fault::content`, naming file and line, if a table is missing, does not have three
/// columns and at least two rows, or contains integers, because the files do not say how many bits these have.
device_tables read_tables(const std::string& folder);

}  // namespace corvantile
