// The table of datasets as both systems' builds do it, beside peers: the same source, clock and rows, without the
// benchmark library, which the Windows build has not. scripts/bench --win32 runs both and prints one table.
//   kiv_dataset_times [STEP]
// prints nanoseconds a row (the shortest of some rounds, ours and the peer in turn) and how many times the peer takes
// that is; only for steps in whose name STEP is. The last line is a digest of the rows and of the order that they are
// asked for in.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

#include "bench/DatasetContainers.h"
#include "bench/DatasetOrders.h"
#include "bench/DatasetPackets.h"
#include "kivtools/dataset/Csv.h"
#include "kivtools/dataset/Filter.h"
#include "kivtools/dataset/Xml.h"

namespace {

using namespace bench;

constexpr int kRounds = 5;

template <class Work>
double SecondsOf(Work work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

template <class Container>
double Load() {
  const auto container = std::make_unique<Container>();
  return SecondsOf([&] { Fill(*container, kRows); });
}

/// Asks for every row in an order that no predictor learns.
template <class Ask>
double AskAll(Ask ask) {
  std::uint64_t sum = 0;
  const double seconds = SecondsOf([&] {
    for (const std::uint32_t place : RandomOrder()) {
      sum += static_cast<std::uint64_t>(ask(place));
    }
  });
  Require(sum != 0, "sum of all rows");
  return seconds;
}

template <class Container>
double Find(const Container& container) {
  return AskAll([&](std::uint32_t place) { return container.Find(static_cast<std::int32_t>(place * 3)); });
}

template <class Container>
double Row(const Container& container) {
  return AskAll([&](std::uint32_t place) { return container.RowAt(place); });
}

std::string_view wanted;

bool IsWanted(std::string_view what) {
  return what.find(wanted) != std::string_view::npos;
}

template <class Ours, class Theirs>
void Compare(const char* what, Ours ours, Theirs theirs) {
  if (!IsWanted(what)) {
    return;
  }
  double least = std::numeric_limits<double>::max();
  double leastOfPeer = least;
  for (int round = 0; round < kRounds; ++round) {
    least = std::min(least, ours());
    leastOfPeer = std::min(leastOfPeer, theirs());
  }
  std::printf("%-52s %8.2f ns a row  peer %8.2f ns  %.2fx\n", what, least * 1e9 / kRows, leastOfPeer * 1e9 / kRows,
              least / leastOfPeer);
  std::fflush(stdout);
}

template <class Container>
std::unique_ptr<Container> Filled() {
  auto container = std::make_unique<Container>();
  Fill(*container, kRows);
  return container;
}

void CompareContainers() {
  Compare("load with key, MultiIndex", Load<Kiv>, Load<MultiIndex>);
  Compare("insert one by one, logged, MultiIndex without log", Load<KivLogged>, Load<MultiIndex>);
  const auto kiv = Filled<Kiv>();
  CheckFinds(*kiv, kSome);
  CheckRows(*kiv, kSome);
  {
    const auto index = Filled<MultiIndex>();
    CheckFinds(*index, kSome);
    Compare(
        "look-up by key, MultiIndex", [&] { return Find(*kiv); }, [&] { return Find(*index); });
  }
  const auto array = Filled<ArrayOfStructs>();
  CheckRows(*array, kSome);
  Compare(
      "six fields of a random row, array of structs", [&] { return Row(*kiv); }, [&] { return Row(*array); });
}

void ComparePackets(const char* save, const char* load, kiv::FieldFlags idFlags) {
  const kiv::Dataset dataset = MakeDataset(kRows, idFlags);
  const Bytes packet = Written(dataset);
  Bytes copy(packet.size());
  const auto copyAll = [&] { return SecondsOf([&] { std::memcpy(copy.data(), packet.data(), packet.size()); }); };
  std::size_t size = 0;
  Compare(
      save, [&] { return SecondsOf([&] { kiv::WriteBinary(dataset, [&](auto bytes) { size += bytes.size(); }); }); },
      copyAll);
  Require(size == packet.size() * kRounds || !IsWanted(save), "size of a packet");
  const std::int64_t sum = SumOfLines();
  Compare(
      load, [&] { return SecondsOf([&] { Require(SumOf(Read(packet)) == sum, "sum of a dataset that was read"); }); },
      copyAll);
}

/// 200,000 rows as text; the times are those of a million.
void CompareTexts() {
  constexpr std::size_t kTextRows = kRows / 5;
  const kiv::Dataset dataset = MakeDataset(kTextRows, kiv::kKey);
  const auto compare = [](const char* what, const Bytes& text, auto work) {
    Bytes copy(text.size());
    Compare(
        what, [&] { return 5 * SecondsOf(work); },
        [&] { return 5 * SecondsOf([&] { std::memcpy(copy.data(), text.data(), text.size()); }); });
  };
  Bytes xml;
  kiv::WriteXml(dataset, [&](auto bytes) { xml.insert(xml.end(), bytes.begin(), bytes.end()); });
  Bytes csv;
  kiv::WriteCsv(dataset, [&](auto bytes) { csv.insert(csv.end(), bytes.begin(), bytes.end()); });
  compare("save as XML, memcpy of the text", xml, [&] {
    std::size_t size = 0;
    kiv::WriteXml(dataset, [&](auto bytes) { size += bytes.size(); });
    Require(size == xml.size(), "size of XML");
  });
  compare("load from XML, memcpy of the text", xml,
          [&] { Require(SumOf(kiv::ReadXml(SourceOf(xml))) == SumOf(dataset), "sum of rows from XML"); });
  compare("load from CSV, memcpy of the text", csv,
          [&] { Require(kiv::ReadCsv(SourceOf(csv), "linii").RowCount() == kTextRows, "rows from CSV"); });
}

void CompareFilters() {
  const kiv::Dataset dataset = MakeDataset(kRows, kiv::kKey);
  std::size_t few = 0;
  std::int64_t sum = 0;
  Compare(
      "narrow filter, loop over structs",
      [&] { return SecondsOf([&] { few = kiv::Filter(dataset, "oras = 'orasul 123' and suma > 9000").Count(); }); },
      [&] {
        std::size_t count = 0;
        const double seconds = SecondsOf([&] {
          for (const Line& line : Lines()) {
            count += line.town == "orasul 123" && line.sum > 90'000'000 ? 1U : 0U;
          }
        });
        Require(count == few, "narrow filter");
        return seconds;
      });
  Compare(
      "wide filter and sum, loop over structs",
      [&] {
        return SecondsOf([&] { sum = std::get<kiv::Currency>(kiv::Filter(dataset, "suma > 5000").Sum("suma")).Raw(); });
      },
      [&] {
        std::int64_t total = 0;
        const double seconds = SecondsOf([&] {
          for (const Line& line : Lines()) {
            total += line.sum > 50'000'000 ? line.sum : 0;
          }
        });
        Require(total == sum, "wide filter");
        return seconds;
      });
}

/// The lines in the order of town and day, as places of them.
double SortPlaces(std::uint64_t expected) {
  std::vector<const Line*> places;
  for (const Line& line : Lines()) {
    places.push_back(&line);
  }
  const double seconds = SecondsOf([&] {
    std::ranges::stable_sort(places, [](const Line* left, const Line* right) {
      return left->town != right->town ? left->town < right->town : left->day < right->day;
    });
  });
  OrderDigest digest;
  for (const Line* const line : places) {
    digest(line->town, line->day);
  }
  Require(digest.Get() == expected, "order");
  return seconds;
}

/// Adds some lines to the million that are in order; the time for a million.
template <class Container>
double AddInOrder() {
  const std::vector<Line>& lines = NewLines();
  const auto container = std::make_unique<Container>(kRows);
  if constexpr (requires { container->Order(); }) {
    container->Order();
  }
  return SecondsOf([&] {
           for (const Line& line : lines) {
             container->Add(line);
           }
         }) *
         (static_cast<double>(kRows) / kNewLines);
}

void CompareOrders() {
  {
    KivOrdered ordered(kRows);
    ordered.Order();
    const std::uint64_t digest = DigestOf(ordered);
    Compare(
        "sort by town and day, stable_sort of pointers",
        [&] {
          ordered.Disorder();
          return SecondsOf([&] { ordered.Order(); });
        },
        [&] { return SortPlaces(digest); });
  }
  Compare("insert into an order, logged, MultiIndex without log", AddInOrder<KivOrdered>,
          AddInOrder<OrderedMultiIndex>);
}

std::uint64_t DigestOfRows() {
  std::uint64_t digest = 0;
  const auto mix = [&digest](std::uint64_t value) { digest = (digest ^ value) * 0x9E3779B97F4A7C15U; };
  for (const Line& line : Lines()) {
    mix(Digest(line.id, line.day, line.sum, line.price, line.town, line.name));
  }
  for (const std::uint32_t place : RandomOrder()) {
    mix(place);
  }
  return digest;
}

}  // namespace

int main(int count, char** arguments) {
  wanted = count > 1 ? arguments[1] : "";
  CompareContainers();
  CompareFilters();
  CompareOrders();
  ComparePackets("save, memcpy of the packet", "load without key, memcpy of the packet", kiv::FieldFlags::None);
  ComparePackets("save with key, memcpy of the packet", "load with key, memcpy of the packet", kiv::kKey);
  CompareTexts();
  std::printf("rows %016llx\n", static_cast<unsigned long long>(DigestOfRows()));
  return 0;
}
