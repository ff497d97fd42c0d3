/// @file
/// Datasets as XML, for programs of other makers.
#pragma once

#include <filesystem>

#include "kivtools/dataset/Packet.h"

namespace kiv {

/// Writes the dataset as XML: fields, rows with their states, and the originals of changed rows; not the history of
/// changes, of which only each row's net is kept. Numbers are plain decimals, days those of ISO 8601, what is null is
/// left out, bytes are base64. A snapshot may be written by another thread than the one that edits its dataset.
///
///     WriteXml(linii, sink);
///     // <r id="1" partener="Șapte Arini" suma="1234.56"/>
KIV_API void WriteXml(const DatasetView& dataset, const PacketSink& sink);

/// Reads what WriteXml writes, in UTF-8 or, where the text says so, Windows-1250. It is read strictly: no document
/// type, no entities but the five that XML has, nothing that is not known. Of rows that have taken each other's keys in
/// a ring the history says that one was deleted meanwhile and came back. Throws TextPacketError with line and column
/// for everything else, and for what goes beyond the limits.
///
///     const Dataset linii = ReadXml(source);
[[nodiscard]] KIV_API Dataset ReadXml(const PacketSource& source, const ReadLimits& limits = {});

/// Saves the dataset as a file, as SaveBinary does: what has the name is the old file or the new one, whole.
///
///     SaveXml(linii, "linii.xml");
KIV_API void SaveXml(const DatasetView& dataset, const std::filesystem::path& path, const SaveOptions& options = {});

/// Loads a file. Throws OsError, and TextPacketError as ReadXml does.
///
///     LoadXml("linii.xml").Name()   // "linii"
[[nodiscard]] KIV_API Dataset LoadXml(const std::filesystem::path& path, const ReadLimits& limits = {});

}  // namespace kiv
