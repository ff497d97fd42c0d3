#pragma once

#include "dataset/packet/SaveLock.h"
#include "kivtools/dataset/Packet.h"

namespace kiv::packet {

/// Saves a dataset while the lock is held; returns the packet's identity.
std::uint64_t SaveDataset(const DatasetView& dataset, const std::filesystem::path& path, const SaveOptions& options,
                          TextView operation, SaveLock& lock);

/// Saves what `write` gives to a sink.
void SaveText(const std::filesystem::path& path, const SaveOptions& options, TextView operation,
              const std::function<void(const PacketSink&)>& write);

}  // namespace kiv::packet
