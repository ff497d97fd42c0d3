/// @file
/// Datasets as comma-separated values.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

#include "kivtools/dataset/Packet.h"

namespace kiv {

/// How the texts of a file are encoded.
enum class CsvEncoding : std::uint8_t {
  Detect,       ///< UTF-8 if all of the file is that, else Windows-1250; a file is written as UTF-8
  Utf8,         ///< UTF-8, with a mark in front or without
  Windows1250,  ///< as Text is
};

/// How decimals are written.
enum class CsvNumbers : std::uint8_t {
  Plain,     ///< 1234.56
  Romanian,  ///< 1234,56; 1.234,56 is read too
};

/// How a file of comma-separated values is read.
struct CsvReadOptions {
  /// What stands between values; without it what stands behind the first name of the header: ",", ";" or a tab.
  std::optional<char> separator = {};
  CsvEncoding encoding = CsvEncoding::Detect;
  CsvNumbers numbers = CsvNumbers::Plain;
  /// What is known of columns, by their names in any order. The others are found out: whole numbers are Int64,
  /// decimals with up to four places Currency, days Date (2026-01-31 or 31.01.2026), everything else Text, or WideText
  /// where Windows-1250 does not have its letters. It takes all values of the column, and a zero in front makes a text:
  /// codes keep their zeros.
  std::vector<FieldDef> fields = {};
};

/// How a file of comma-separated values is written.
struct CsvWriteOptions {
  char separator = ',';
  CsvEncoding encoding = CsvEncoding::Utf8;
  CsvNumbers numbers = CsvNumbers::Plain;
  /// Puts the mark of UTF-8 in front, by which spreadsheets know it.
  bool mark = false;
  /// Puts "'" before texts that a spreadsheet would take for a formula: those that begin with "=", "+", "-", "@" or a
  /// control character. It changes the data, so it is only done when it is asked for.
  bool forSpreadsheet = false;
};

/// Reads comma-separated values: a header, then a row a record. A value that is not there is null, one of two quotes is
/// the empty text. Names of the header that no field can have are made into ones: "Suma totală" gives
/// "Suma_totală". Throws TextPacketError, naming line and column, for what is not the header's or not of the column's
/// type; nothing is read then. A text that has to be gone through twice, to find out types or encoding, is held in
/// memory meanwhile.
///
///     const Dataset linii = ReadCsv(source, "linii", {.fields = {{"id", FieldType::Int64, kKey}}});
[[nodiscard]] KIV_API Dataset ReadCsv(const PacketSource& source, TextView name, const CsvReadOptions& options = {},
                                      const ReadLimits& limits = {});

/// Reads a file; the dataset has the file's name without what no name can have, unless it is given one. A file is gone
/// through twice rather than held in memory. Throws OsError, and TextPacketError as ReadCsv does.
///
///     LoadCsv("extras banca.csv").Name()   // "extras_banca"
[[nodiscard]] KIV_API Dataset LoadCsv(const std::filesystem::path& path, const CsvReadOptions& options = {},
                                      TextView name = {}, const ReadLimits& limits = {});

/// Writes the rows that are not deleted, with a header of the fields' names; what is null is left out, the empty text
/// is two quotes, bytes are base64. What is read back with the same types is the same. Throws Error, naming row and
/// field, for a letter that Windows-1250 does not have where the file is to be that.
///
///     WriteCsv(linii, sink, {.separator = ';', .numbers = CsvNumbers::Romanian});
KIV_API void WriteCsv(const DatasetView& dataset, const PacketSink& sink, const CsvWriteOptions& options = {});

/// Saves a file as SaveBinary does: what has the name is the old file or the new one, whole. Throws OsError, and Error
/// as WriteCsv does.
///
///     SaveCsv(linii, "linii.csv", {.mark = true});
KIV_API void SaveCsv(const DatasetView& dataset, const std::filesystem::path& path, const CsvWriteOptions& options = {},
                     const SaveOptions& save = {});

}  // namespace kiv
