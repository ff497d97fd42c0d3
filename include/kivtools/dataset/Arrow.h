/// @file
/// Datasets as columns in memory, for programs that know the Arrow C data interface.
#pragma once

#include <cstdint>
#include <vector>

#include "kivtools/dataset/ArrowData.h"
#include "kivtools/dataset/Packet.h"

namespace kiv {

/// How amounts stand in a column.
enum class ArrowAmounts : std::uint8_t {
  Decimal,         ///< decimals with four places (`d:19,4`), which every program knows
  TenThousandths,  ///< 64-bit integers (`l`) as the dataset has them, which costs no copy
};

/// How a dataset is handed out.
struct ArrowExportOptions {
  ArrowAmounts amounts = ArrowAmounts::Decimal;
};

/// Hands out the rows that are not deleted as a stream of record batches, one for each block of 8,192 rows. Where a
/// format says "own", the batch shows the dataset's own memory, and a copy everywhere else:
///
/// - Int16 `s`, Int32 `i`, Int64 and AutoInc `l`, Double `g`, Time `ttm`, Boolean `b`: own
/// - Currency: `d:19,4`, or `l`, own, where the options say so
/// - Date `tdD`, DateTime `tsm:`, Guid `w:16` with the extension name `arrow.uuid`
/// - Text: as long as it has a dictionary the numbers `i` of one of `u`, own but for the dictionary; then `u`
/// - WideText and Memo `u`, Blob `z`
///
/// Texts are UTF-8 with commas below ș and ț. Where a batch may have texts of more than 2 GiB they are `U` and `Z`. Of
/// a block with deleted rows everything is copied. What is handed out keeps the snapshot: it outlives dataset and
/// stream, may be read and released by any thread, and does not see later edits. The stream is for one thread at a
/// time; without memory its functions return ENOMEM and may be called again. Throws std::bad_alloc; `stream` is
/// untouched then.
///
///     ArrowArrayStream stream;
///     ExportArrow(linii.TakeSnapshot(), stream);
///     duckdb_arrow_scan(connection, "linii", reinterpret_cast<duckdb_arrow_stream>(&stream));
KIV_API void ExportArrow(const Snapshot& snapshot, ArrowArrayStream& stream, const ArrowExportOptions& options = {});

/// How columns are taken in.
struct ArrowImportOptions {
  /// What is known of columns, by their names in any order. Others are what their format says: integers the narrowest
  /// that holds all of it, texts Text, or WideText where Windows-1250 does not have their letters.
  std::vector<FieldDef> fields = {};
  /// Whether a field that is said to be a Currency may be a column of integers, ten-thousandths as it is handed out.
  ArrowAmounts amounts = ArrowAmounts::Decimal;
};

/// Makes a dataset of all batches of a stream. It takes the formats that ExportArrow gives and those near them:
/// integers of 8 to 64 bits with or without sign, `f`, `g`, `b`, decimals of 128 bits with up to four places, `tdD` and
/// `tdm`, `tts` to `ttn`, `tss:` to `tsn:` without a time zone, `w:16`, `u`, `U`, `z`, `Z` and dictionaries of texts.
/// Nothing is rounded: an amount, a moment or a number that the field cannot hold exactly is refused. Names that no
/// field can have are made into ones, as ReadCsv does.
///
/// The stream is taken over and released whatever happens, and so is all that it gave; `stream.release` is null
/// afterwards. Throws PacketError, naming column and reason, for another format, for what contradicts itself, for what
/// goes beyond the limits and for a failure that the stream tells of; its Chunk() is the number of the batch and its
/// Offset() that of the row in it. No size of memory is known of what another program hands over, so that of its
/// buffers has to be right.
///
///     const Dataset linii = ImportArrow(stream, "linii", {.fields = {{"id", FieldType::Int64, kKey}}});
///     linii.RowCount()   // 3 for a stream of three rows
[[nodiscard]] KIV_API Dataset ImportArrow(ArrowArrayStream& stream, TextView name,
                                          const ArrowImportOptions& options = {}, const ReadLimits& limits = {});

}  // namespace kiv
