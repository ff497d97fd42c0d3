#pragma once

#include <cerrno>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "kivtools/dataset/Arrow.h"

namespace kiv {

/// A column of the interface as a test writes it down.
struct HandMade {
  std::string name;
  std::string format;
  std::int64_t length = 0;
  std::vector<std::uint8_t> values = {};
  std::string bytes = {};
  std::vector<std::uint8_t> valid = {};
  std::int64_t offset = 0;
  std::int64_t nulls = -1;
  std::vector<HandMade> dictionary = {};  // none or one

  /// Elements of fixed width, or offsets and the bytes between them.
  template <class Element>
  static HandMade Of(std::string name, std::string format, std::initializer_list<Element> elements,
                     std::string bytes = {}) {
    HandMade column{std::move(name), std::move(format)};
    column.values.resize(elements.size() * sizeof(Element));
    std::memcpy(column.values.data(), elements.begin(), column.values.size());
    const bool isOfTexts = std::string("uUzZ").find(column.format) != std::string::npos;
    column.length = static_cast<std::int64_t>(elements.size()) - (isOfTexts ? 1 : 0);
    column.bytes = std::move(bytes);
    return column;
  }
  [[nodiscard]] HandMade Nulls(std::vector<std::uint8_t> bits, std::int64_t count = -1) const {
    HandMade column = *this;
    column.valid = std::move(bits);
    column.nulls = count;
    return column;
  }
};

using HandMadeBatch = std::vector<HandMade>;

/// A stream of batches written down by hand. It counts the structs that are handed out and not given back; what is
/// given back twice the address sanitizer sees.
class HandMadeStream {
 public:
  explicit HandMadeStream(std::vector<HandMadeBatch> made) : batches(std::move(made)) {}
  explicit HandMadeStream(const HandMade& column) : batches{{column}} {}

  std::vector<HandMadeBatch> batches;
  std::function<void(ArrowSchema&)> damageSchema = [](ArrowSchema&) {};
  std::function<void(ArrowArray&)> damageBatch = [](ArrowArray&) {};
  std::size_t failingCall = ~std::size_t{0};  // counted from 0, the schema's first
  const char* fault = nullptr;

  [[nodiscard]] int Live() const noexcept { return live_; }
  /// Makes all of it first: what is called later needs no memory.
  ArrowArrayStream Open() {
    Give(&schema_, batches.at(0));
    damageSchema(schema_);
    for (const HandMadeBatch& columns : batches) {
      Give(&ready_.emplace_back(), columns);
      damageBatch(ready_.back());
    }
    ++live_;
    return {GiveSchema, GiveBatch, [](ArrowArrayStream* stream) { return Of(stream).fault; }, ReleaseStream, this};
  }

 private:
  template <class Struct>
  struct Held {
    HandMadeStream& stream;
    std::vector<Held> below = {};  // the children, the dictionary behind them
    Struct made{};
    HandMade column = {};
    std::vector<Struct*> children = {};
    const void* buffers[3] = {};
  };

  static HandMadeStream& Of(ArrowArrayStream* stream) { return *static_cast<HandMadeStream*>(stream->private_data); }

  template <class Struct>
  static void Release(Struct* made) {
    auto* const held = static_cast<Held<Struct>*>(made->private_data);
    --held->stream.live_;
    delete held;
    made->release = nullptr;
  }
  /// Of a struct that goes with the one that it is in.
  template <class Struct>
  static void ReleaseInner(Struct* made) {
    made->release = nullptr;
  }

  static void Fill(Held<ArrowSchema>& held) {
    held.made.format = held.column.format.c_str();
    held.made.name = held.column.name.c_str();
  }
  static void Fill(Held<ArrowArray>& held) {
    const bool isRows = held.column.format == "+s";
    const bool isOfTexts = std::string("uUzZ").find(held.column.format) != std::string::npos;
    held.buffers[0] = held.column.valid.empty() ? nullptr : held.column.valid.data();
    held.buffers[1] = held.column.values.empty() ? nullptr : held.column.values.data();
    held.buffers[2] = held.column.bytes.empty() ? nullptr : held.column.bytes.data();
    held.made.length = held.column.length;
    held.made.offset = held.column.offset;
    held.made.null_count = held.column.nulls;
    held.made.n_buffers = isRows ? 1 : isOfTexts ? 3 : 2;
    held.made.buffers = held.buffers;
  }

  template <class Struct>
  void Build(Held<Struct>& held, const HandMade& column, const HandMadeBatch& children) {
    held.column = column;
    for (const HandMade& child : children) {
      held.below.push_back({*this});
      Build(held.below.back(), child, {});
    }
    for (const HandMade& entries : column.dictionary) {
      held.below.push_back({*this});
      Build(held.below.back(), entries, {});
    }
  }
  /// Once nothing moves any more.
  template <class Struct>
  static void Link(Held<Struct>& held, std::size_t children) {
    Fill(held);
    held.made.release = ReleaseInner<Struct>;
    held.made.private_data = &held;
    for (Held<Struct>& below : held.below) {
      Link(below, 0);
    }
    for (std::size_t i = 0; i < children; ++i) {
      held.children.push_back(&held.below[i].made);
    }
    held.made.n_children = static_cast<std::int64_t>(children);
    held.made.children = held.children.data();
    held.made.dictionary = held.column.dictionary.empty() ? nullptr : &held.below.back().made;
  }

  template <class Struct>
  void Give(Struct* out, const HandMadeBatch& columns) {
    auto held = std::make_unique<Held<Struct>>(Held<Struct>{*this});
    // A batch is as long as its shortest column.
    HandMade rows{"", "+s"};
    for (const HandMade& column : columns) {
      rows.length = &column == columns.data() ? column.length : std::min(rows.length, column.length);
    }
    Build(*held, rows, columns);
    Link(*held, columns.size());
    held->made.release = Release<Struct>;
    *out = held->made;
    out->private_data = held.release();
    ++live_;
  }

  bool Fails() noexcept { return calls_++ == failingCall; }

  static int GiveSchema(ArrowArrayStream* stream, ArrowSchema* out) {
    HandMadeStream& self = Of(stream);
    if (self.Fails()) {
      return EIO;
    }
    *out = std::exchange(self.schema_, {});
    return 0;
  }
  static int GiveBatch(ArrowArrayStream* stream, ArrowArray* out) {
    HandMadeStream& self = Of(stream);
    if (self.Fails()) {
      return EIO;
    }
    *out = self.next_ < self.ready_.size() ? std::exchange(self.ready_[self.next_], {}) : ArrowArray{};
    ++self.next_;
    return 0;
  }
  static void ReleaseStream(ArrowArrayStream* stream) {
    HandMadeStream& self = Of(stream);
    if (self.schema_.release != nullptr) {
      self.schema_.release(&self.schema_);
    }
    for (ArrowArray& batch : self.ready_) {
      if (batch.release != nullptr) {
        batch.release(&batch);
      }
    }
    --self.live_;
    stream->release = nullptr;
  }

  ArrowSchema schema_{};
  std::vector<ArrowArray> ready_;
  std::size_t calls_ = 0;
  std::size_t next_ = 0;
  int live_ = 0;
};

/// Imports it all; nothing of it may be left.
inline Dataset Import(HandMadeStream& stream, const ArrowImportOptions& options = {}, const ReadLimits& limits = {}) {
  ArrowArrayStream opened = stream.Open();
  return ImportArrow(opened, "t", options, limits);
}

}  // namespace kiv
