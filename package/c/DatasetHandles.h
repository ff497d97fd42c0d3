#pragma once

#include <list>
#include <memory>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

#include "kivtools/c/DatasetPackets.h"
#include "kivtools/dataset/Dataset.h"
#include "kivtools/dataset/Filter.h"
#include "kivtools/dataset/Loader.h"
#include "kivtools/dataset/Packet.h"
#include "package/c/Abi.h"

/// What the handles of the dataset functions are.
struct KivSchema {
  std::vector<kiv::FieldDef> fields;
};

struct KivDelta {
  kiv::Delta delta;
};

namespace kiv::c {

/// Tells a host's functions of changes.
class DatasetCallbacks final : public DatasetListener {
 public:
  DatasetCallbacks(const DatasetView& dataset, KivDatasetBeforePost before, KivDatasetChanged changed,
                   void* context) noexcept
      : dataset_(dataset), before_(before), changed_(changed), context_(context) {}
  void BeforePost(const Proposal& proposal) override;
  void Changed(const ChangeNotice& notice) noexcept override;

 private:
  const DatasetView& dataset_;
  KivDatasetBeforePost before_;
  KivDatasetChanged changed_;
  void* context_;
};

/// The bytes argument `name`. Throws ArgumentError for a null pointer with a size, and for KIV_ZERO_ENDED.
inline BytesView BytesArgument(const std::uint8_t* bytes, std::size_t size, const char* name) {
  BufferArgument(bytes, size, name);
  if (size == KIV_ZERO_ENDED) {
    throw ArgumentError(Text(name) + ": dimensiunea lipseste");
  }
  return {bytes, size};
}

/// The value as C has it; bytes stay borrowed.
KivFieldValue FieldValueOf(const ValueView& value);

/// Stores a value that is not null: the answer of a function that gives one.
inline KivAnswer GiveValue(const ValueView& value, KivFieldValue& out) {
  if (!value.IsNull()) {
    out = FieldValueOf(value);
  }
  return value.IsNull() ? 0 : 1;
}

/// What KIV_SAVE_... say. Throws ArgumentError.
inline SaveOptions SaveOptionsOf(std::int32_t options) {
  if ((options & ~(KIV_SAVE_BACKUP | KIV_SAVE_NO_FLUSH)) != 0) {
    throw ArgumentError("options: valoare necunoscuta");
  }
  return {.backup = (options & KIV_SAVE_BACKUP) != 0, .flush = (options & KIV_SAVE_NO_FLUSH) == 0};
}

/// Writes to a host's function.
inline PacketSink SinkOf(KivPacketSink sink, void* context) {
  if (sink == nullptr) {
    throw ArgumentError("sink: pointer nul");
  }
  return [=](std::span<const std::uint8_t> bytes) {
    if (sink(context, bytes.data(), bytes.size()) != KIV_OK) {
      throw HostFailure("sink: scrierea a fost oprita");
    }
  };
}

/// Reads from a host's function.
inline PacketSource SourceOf(KivPacketSource source, void* context) {
  if (source == nullptr) {
    throw ArgumentError("source: pointer nul");
  }
  return [=](std::span<std::uint8_t> buffer) {
    const KivLength count = source(context, buffer.data(), buffer.size());
    if (count < 0) {
      throw HostFailure("source: citirea a fost oprita");
    }
    if (static_cast<std::uint64_t>(count) > buffer.size()) {
      throw HostFailure("source: mai multi octeti decat incap");
    }
    return static_cast<std::size_t>(count);
  };
}

/// Values that a host has handed over, borrowed from it but for those in UTF-16.
class GivenValues {
 public:
  /// `name` is the argument's.
  GivenValues(const KivFieldValue* values, std::size_t count, const char* name);
  [[nodiscard]] std::span<const ValueView> All() const noexcept { return views_; }

 private:
  ValueView ViewOf(const KivFieldValue& value, const char* name);
  std::list<WideText> wides_;
  std::vector<ValueView> views_;
};

/// What stands for the names of a filter, between commas, each with its value. Throws ArgumentError for a name without
/// a value and for a value without a name.
FilterParameters ParametersOf(TextView names, const KivFieldValue* values, std::size_t count);

}  // namespace kiv::c

struct KivDataset {
  explicit KivDataset(kiv::Dataset dataset) noexcept : rows(std::move(dataset)) {}
  explicit KivDataset(kiv::Snapshot snapshot) noexcept : rows(std::move(snapshot)) {}

  std::variant<kiv::Dataset, kiv::Snapshot> rows;
  std::vector<kiv::Mark> marks;
  /// The open row and what was set in it.
  struct Open {
    std::uint32_t row;
    std::vector<std::pair<std::size_t, kiv::Value>> values;
  };
  std::optional<Open> open;
  std::optional<kiv::Loader> loader;
  /// Those that have been taken off stay, for they may be running; `isOn` says which.
  struct Listener {
    std::unique_ptr<kiv::c::DatasetCallbacks> callbacks;
    bool isOn;
  };
  std::vector<Listener> listeners;

  [[nodiscard]] const kiv::DatasetView& View() const noexcept {
    const auto* const own = std::get_if<kiv::Dataset>(&rows);
    return own != nullptr ? static_cast<const kiv::DatasetView&>(*own) : *std::get_if<kiv::Snapshot>(&rows);
  }
  /// Throws ArgumentError for a snapshot.
  [[nodiscard]] const kiv::Dataset& Own() const {
    const auto* const own = std::get_if<kiv::Dataset>(&rows);
    if (own == nullptr) {
      throw kiv::c::ArgumentError("dataset: o imagine se poate numai citi");
    }
    return *own;
  }
  [[nodiscard]] kiv::Dataset& Own() { return const_cast<kiv::Dataset&>(std::as_const(*this).Own()); }
};
