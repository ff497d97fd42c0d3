#pragma once

#include <boost/multi_index/composite_key.hpp>
#include <boost/multi_index/ordered_index.hpp>
#include <memory>
#include <tuple>

#include "bench/DatasetContainers.h"
#include "kivtools/dataset/Cursor.h"

/// The containers of the lines with an order by town and day. Towns are all in small letters, so that every peer means
/// the same by it.
namespace bench {

/// A dataset whose order is built by Order() and follows Add() from then on.
class KivOrdered : public KivLogged {
 public:
  KivOrdered() = default;
  /// Loads the first lines without a log.
  explicit KivOrdered(std::size_t count) {
    kiv::Loader loader(dataset_);
    for (std::size_t i = 0; i < count; ++i) {
      const Line& line = Lines()[i];
      loader.Add(
          {line.id, kiv::DateTime(line.day), kiv::Currency::FromRaw(line.sum), line.price, line.town, line.name});
    }
    loader.Finish();
  }
  void Order() {
    cursor_ = std::make_unique<kiv::Cursor>(dataset_);
    cursor_->OrderBy("oras, zi");
  }
  void Disorder() { cursor_.reset(); }
  template <class Take>
  void ForEach(Take&& take) {
    while (cursor_->Next()) {
      take(dataset_.GetText(cursor_->Row(), town_), dataset_.GetDateTime(cursor_->Row(), day_).Days());
    }
  }

 private:
  std::unique_ptr<kiv::Cursor> cursor_;
};

/// The same lines, found by key and ordered; the order alone over lines that are there already is what Order() builds.
class OrderedMultiIndex {
 public:
  OrderedMultiIndex() = default;
  explicit OrderedMultiIndex(std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      Add(Lines()[i]);
    }
  }
  void Add(const Line& line) { lines_.insert(line); }
  template <class Take>
  void ForEach(Take&& take) {
    for (const Line& line : lines_.get<1>()) {
      take(line.town, line.day);
    }
  }

 private:
  boost::multi_index_container<
      Line, boost::multi_index::indexed_by<
                boost::multi_index::hashed_unique<boost::multi_index::member<Line, std::int32_t, &Line::id>>,
                boost::multi_index::ordered_non_unique<
                    boost::multi_index::composite_key<Line, boost::multi_index::member<Line, std::string, &Line::town>,
                                                      boost::multi_index::member<Line, std::int32_t, &Line::day>>>>>
      lines_;
};

/// An order alone, over lines that lie elsewhere.
class OrderOfLines {
 public:
  void Order() {
    for (const Line& line : Lines()) {
      lines_.insert(&line);
    }
  }
  void Disorder() { lines_.clear(); }

 private:
  boost::multi_index_container<
      const Line*,
      boost::multi_index::indexed_by<boost::multi_index::ordered_non_unique<
          boost::multi_index::composite_key<Line, boost::multi_index::member<Line, std::string, &Line::town>,
                                            boost::multi_index::member<Line, std::int32_t, &Line::day>>>>>
      lines_;
};

/// A digest of towns and days in their order.
class OrderDigest {
 public:
  void operator()(std::string_view town, double day) {
    digest_ = digest_ * 1'000'003 + std::hash<std::string_view>()(town) + static_cast<std::uint64_t>(day);
  }
  [[nodiscard]] std::uint64_t Get() const noexcept { return digest_; }

 private:
  std::uint64_t digest_ = 0;
};

template <class Container>
std::uint64_t DigestOf(Container& container) {
  OrderDigest digest;
  container.ForEach(digest);
  return digest.Get();
}

inline constexpr std::size_t kNewLines = 100'000;

/// Lines in no order as new ones: their numbers are nobody's. Made beforehand, so that what adds them waits for its own
/// memory alone.
inline const std::vector<Line>& NewLines() {
  static const std::vector<Line> lines = [] {
    std::vector<Line> made;
    for (std::size_t i = 0; i < kNewLines; ++i) {
      made.push_back(Lines()[RandomOrder()[i]]);
      made.back().id = static_cast<std::int32_t>(RandomOrder()[i] * 3 + 1);
    }
    return made;
  }();
  return lines;
}

}  // namespace bench
