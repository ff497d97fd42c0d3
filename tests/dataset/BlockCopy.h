#pragma once

#include <algorithm>
#include <cstring>
#include <memory>
#include <span>
#include <vector>

#include "dataset/store/BlockLoader.h"

namespace kiv {

/// Reads contents as a writer of files does and gives them to a loader as a reader does.
inline std::unique_ptr<store::Store> CopyByBlocks(const store::Contents& from) {
  using namespace store;
  BlockLoader loader(from.name, from.schema);
  for (std::uint32_t i = 0; i < from.large.Count(); ++i) {
    loader.AddLarge(from.large.At(i));
  }
  for (std::size_t i = 0; i < from.columns.size(); ++i) {
    const Texts& texts = from.columns[i].texts;
    if (TraitsOf(from.columns[i].type).storage == Storage::Texts && !texts.HasDictionary()) {
      loader.UseHeap(i);
    }
    for (std::uint32_t code = 0; code < texts.EntryCount(); ++code) {
      loader.AddEntry(i, texts.Read(code, from.large));
    }
  }
  const auto copy = [](std::span<const std::byte> bytes, std::span<std::byte> into) {
    std::memcpy(into.data(), bytes.data(), std::min(bytes.size(), into.size()));
  };
  for (std::uint32_t block = 0; block < from.BlockCount(); ++block) {
    const std::uint32_t rows = from.RowsIn(block);
    loader.BeginBlock(rows);
    if (const auto states = from.states.BlockBytes(block); !states.empty()) {
      copy(states, loader.States());
    }
    for (std::size_t i = 0; i < from.columns.size(); ++i) {
      const Column& column = from.columns[i];
      if (const auto nulls = column.nulls.BlockBytes(block); !nulls.empty()) {
        copy(nulls, loader.Nulls(i));
      }
      if (TraitsOf(column.type).storage != Storage::Texts || column.texts.HasDictionary()) {
        copy(column.values.BlockBytes(block), loader.Values(i));
      } else {
        for (std::uint32_t row = 0; row < rows; ++row) {
          if (const Cell cell = from.Read(block * kBlockRows + row, i); !cell.isNull) {
            loader.PutText(i, row, cell.bytes);
          }
        }
      }
      if (column.type == FieldType::Guid) {
        copy(column.more.BlockBytes(block), loader.SecondValues(i));
      }
    }
    loader.EndBlock();
  }
  const Log& log = from.log;
  for (std::uint32_t at = log.First(); at != Log::kNone; at = log.Next(at)) {
    std::vector<BlockLoader::OldValue> old;
    for (RecordReader reader(log, at, *from.schemaData); reader.Next();) {
      old.push_back({reader.Field(), from.Resolve(reader.Field(), reader.Old())});
    }
    std::ranges::sort(old, {}, &BlockLoader::OldValue::field);
    loader.AddRecord(log.HeaderAt(at).kind, log.HeaderAt(at).row, old);
  }
  return loader.Finish();
}

}  // namespace kiv
