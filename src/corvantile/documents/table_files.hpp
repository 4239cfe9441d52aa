#pragma once
// The tables of a job as files: their names, their order, and how numbers stand in them.

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

/// The text of a table's file, a line per row: entries as reals if `maxcode` is 0, else as integers in units of
/// 1 / maxcode, halves rounded away from zero and not clamped. `path` is for the message: an entry that is not finite
/// or has no code throws `fault::not_finite`. In a table of reals, `undefined_row` may hold entries that are not a
/// number.
std::string table_text(const std::string& path, const matrix& table, std::int64_t maxcode,
                       std::optional<std::size_t> undefined_row = {});

/// Largest code of an integer table, 2^nbits - 1, for nbits in 0..31.
std::int64_t maxcode(const settings& s);

/// The files of a solved job in the order in which they are put in place: CV1 `postLUT.txt`; CV2 `preLUT.txt`,
/// `postLUT.txt`, `matrix.txt`; CV2_1 with `preLUT.txt` last. All are judged before the first is returned. Their
/// paths begin with `o.outdir` as it is: see `end_outdir_with_slash`.
std::vector<text_file> table_files(const correction& result, const opts& o);

/// Throws `fault::setting`, naming `outdir`, if no table could be written there: an empty name, one so long that a
/// table's path would be cut, or a table that is the measurement or gamma file of the same job. Expects the closing
/// slash of `end_outdir_with_slash`.
void check_outdir(const opts& o);

/// The tables that lie in a folder, whoever put them there: `preLUT.txt`, `matrix.txt` and `postLUT.txt` if the first
/// two are both there, else `postLUT.txt` alone. Throws `fault::content`, naming file and line, if a table is
/// missing, does not have three columns and at least two rows, or holds integers, because no file tells their number
/// of bits.
device_tables read_tables(const std::string& folder);

}  // namespace corvantile
