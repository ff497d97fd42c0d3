#pragma once

#include <algorithm>
#include <boost/multi_index/hashed_index.hpp>
#include <boost/multi_index/member.hpp>
#include <boost/multi_index_container.hpp>
#include <cstdint>
#include <optional>
#include <random>
#include <string_view>
#include <vector>

#include "bench/DatasetLines.h"
#include "bench/Values.h"
#include "kivtools/dataset/Dataset.h"
#include "kivtools/dataset/Loader.h"

/// The containers that hold the lines. What is compared holds the same rows; each container is asked for them before it
/// is timed.
namespace bench {

inline constexpr std::size_t kRows = kMostLines;
inline constexpr std::size_t kSome = 10'000;

/// The order in which rows are asked for, which no predictor learns.
inline const std::vector<std::uint32_t>& RandomOrder() {
  static const std::vector<std::uint32_t> order = [] {
    std::vector<std::uint32_t> places(kRows);
    for (std::uint32_t i = 0; i < kRows; ++i) {
      places[i] = i;
    }
    Shuffle(places, std::mt19937(2));
    return places;
  }();
  return order;
}

inline std::uint64_t Digest(std::int64_t id, std::int64_t day, std::int64_t sum, double price, std::string_view town,
                            std::string_view name) {
  return static_cast<std::uint64_t>(id) * 31 + static_cast<std::uint64_t>(day) * 17 + static_cast<std::uint64_t>(sum) +
         static_cast<std::uint64_t>(price * 8) + static_cast<std::uint64_t>(town.back()) * town.size() +
         static_cast<std::uint64_t>(name[10]) * name.size();
}

/// What every container offers: Add(line) and End(), Find(key) and RowAt(place) as far as it has them.
class Kiv {
 public:
  void Add(const Line& line) {
    loader_->Add(
        {line.id, kiv::DateTime(line.day), kiv::Currency::FromRaw(line.sum), line.price, line.town, line.name});
  }
  void End() {
    loader_->Finish();
    loader_.reset();
  }
  [[nodiscard]] std::int64_t Find(std::int32_t id) const {
    return dataset_.GetCurrency(*dataset_.Find(id), sum_).Raw();
  }
  [[nodiscard]] std::uint64_t RowAt(std::uint32_t place) const {
    const kiv::RowId row{place};
    return Digest(dataset_.GetInt64(row, id_), static_cast<std::int64_t>(dataset_.GetDateTime(row, day_).Days()),
                  dataset_.GetCurrency(row, sum_).Raw(), dataset_.GetDouble(row, price_), dataset_.GetText(row, town_),
                  dataset_.GetText(row, name_));
  }

 protected:
  kiv::Dataset dataset_{"linii",
                        {{"id", kiv::FieldType::Int32, kiv::kKey},
                         {"zi", kiv::FieldType::Date},
                         {"suma", kiv::FieldType::Currency},
                         {"pret", kiv::FieldType::Double},
                         {"oras", kiv::FieldType::Text, 40},
                         {"nume", kiv::FieldType::Text, 40}}};
  kiv::FieldRef id_ = dataset_.Field("id");
  kiv::FieldRef day_ = dataset_.Field("zi");
  kiv::FieldRef sum_ = dataset_.Field("suma");
  kiv::FieldRef price_ = dataset_.Field("pret");
  kiv::FieldRef town_ = dataset_.Field("oras");
  kiv::FieldRef name_ = dataset_.Field("nume");

 private:
  std::optional<kiv::Loader> loader_{dataset_};
};

/// Every row a post of its own, in the log.
class KivLogged : public Kiv {
 public:
  KivLogged() { Kiv::End(); }
  void Add(const Line& line) {
    dataset_.Insert({{id_, line.id},
                     {day_, kiv::DateTime(line.day)},
                     {sum_, kiv::Currency::FromRaw(line.sum)},
                     {price_, line.price},
                     {town_, line.town},
                     {name_, line.name}});
  }
  void End() {}
};

class MultiIndex {
 public:
  void Add(const Line& line) { lines_.insert(line); }
  void End() {}
  [[nodiscard]] std::int64_t Find(std::int32_t id) const { return lines_.find(id)->sum; }

 private:
  boost::multi_index_container<Line, boost::multi_index::indexed_by<boost::multi_index::hashed_unique<
                                         boost::multi_index::member<Line, std::int32_t, &Line::id>>>>
      lines_;
};

class ArrayOfStructs {
 public:
  void Add(const Line& line) { lines_.push_back(line); }
  void End() {}
  [[nodiscard]] std::uint64_t RowAt(std::uint32_t place) const {
    const Line& line = lines_[place];
    return Digest(line.id, line.day, line.sum, line.price, line.town, line.name);
  }

 private:
  std::vector<Line> lines_;
};

template <class Container>
void Fill(Container& container, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    container.Add(Lines()[i]);
  }
  container.End();
}

template <class Container>
Container Filled(std::size_t count) {
  Container container;
  Fill(container, count);
  return container;
}

template <class Container>
void CheckFinds(const Container& container, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    Require(container.Find(Lines()[i].id) == Lines()[i].sum, "find in a dataset");
  }
}

template <class Container>
void CheckRows(const Container& container, std::size_t count) {
  for (std::uint32_t i = 0; i < count; ++i) {
    const Line& line = Lines()[i];
    Require(container.RowAt(i) == Digest(line.id, line.day, line.sum, line.price, line.town, line.name),
            "row of a dataset");
  }
}

}  // namespace bench
