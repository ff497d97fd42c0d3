#pragma once

#include <filesystem>

#include "kivtools/dataset/Packet.h"

namespace kiv::packet {

/// Does the edits of the log beside `path` again, if there is one of the packet with that identity. Throws OsError
/// where it cannot be read, PacketError for a whole entry that does not fit the dataset.
void ReplayJournal(Dataset& dataset, const std::filesystem::path& path, std::uint64_t identity,
                   const ReadLimits& limits, LoadReport& report);

}  // namespace kiv::packet
