#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "Allocations.h"
#include "EveryType.h"
#include "Show.h"
#include "kivtools/c/DatasetExchange.h"
#include "package/c/DatasetHandles.h"

namespace kiv {
namespace {

/// The functions that a host lends, of whose calls one fails. What is read comes in pieces of 10,000 bytes.
struct Host {
  std::string bytes;
  std::size_t failing = SIZE_MAX;
  std::size_t calls = 0;
  std::size_t at = 0;

  static KivLength Give(void* context, std::uint8_t* into, std::size_t capacity) {
    auto& host = *static_cast<Host*>(context);
    if (host.calls++ == host.failing) {
      return -1;
    }
    const std::size_t count = std::min({capacity, host.bytes.size() - host.at, std::size_t{10'000}});
    std::copy_n(host.bytes.begin() + static_cast<std::ptrdiff_t>(host.at), count, into);
    host.at += count;
    return static_cast<KivLength>(count);
  }
  static KivStatus Take(void* context, const std::uint8_t* bytes, std::size_t size) {
    auto& host = *static_cast<Host*>(context);
    if (host.calls++ == host.failing) {
      return -1;
    }
    // No allocation that the test has not counted.
    host.at += size;
    if (host.bytes.size() + size <= host.bytes.capacity()) {
      host.bytes.append(reinterpret_cast<const char*>(bytes), size);
    }
    return KIV_OK;
  }
};

struct Operation {
  std::string name;
  std::function<KivStatus(KivDataset* written, Host& host, KivDataset** read)> run;
  bool isRead;
};

const std::vector<Operation>& Operations() {
  static const std::vector<Operation> operations = {
      {"KivDatasetWriteCsv",
       [](KivDataset* written, Host& host, KivDataset** /*read*/) {
         return KivDatasetWriteCsv(written, ';', KIV_CSV_UTF8, Host::Take, &host);
       },
       false},
      {"KivDatasetReadCsv",
       [](KivDataset* /*written*/, Host& host, KivDataset** read) {
         return KivDatasetReadCsv(Host::Give, &host, "t", 1, nullptr, ';', KIV_CSV_UTF8, read);
       },
       true},
      {"KivDatasetWriteXml",
       [](KivDataset* written, Host& host, KivDataset** /*read*/) {
         return KivDatasetWriteXml(written, Host::Take, &host);
       },
       false},
      {"KivDatasetReadXml",
       [](KivDataset* /*written*/, Host& host, KivDataset** read) {
         return KivDatasetReadXml(Host::Give, &host, read);
       },
       true},
  };
  return operations;
}

std::string LastMessage() {
  std::string message(300, '\0');
  message.resize(static_cast<std::size_t>(KivLastErrorMessage(message.data(), message.size())));
  return message;
}

/// Rows of all types with changes of every kind, among them some whose keys have gone round in a ring.
std::unique_ptr<KivDataset> Changed() {
  Dataset dataset("t", EveryType());
  AddRows(dataset, 2000);
  Edit(dataset, 3);
  const RowId ring[] = {*dataset.Find(500), *dataset.Find(501), *dataset.Find(502)};
  dataset.Set(ring[0], "id", 100'000);
  dataset.Set(ring[1], "id", 500);
  dataset.Set(ring[2], "id", 501);
  dataset.Set(ring[0], "id", 502);
  return std::make_unique<KivDataset>(std::move(dataset));
}

/// What the operation before has written, to be read.
std::string Written(const Operation& read, KivDataset& dataset) {
  Host whole;
  whole.bytes.reserve(std::size_t{1} << 20U);
  const bool isCsv = read.name.ends_with("Csv");
  EXPECT_EQ(Operations()[isCsv ? 0 : 2].run(&dataset, whole, nullptr), KIV_OK);
  EXPECT_EQ(whole.at, whole.bytes.size());
  return whole.bytes;
}

TEST(ExchangeFaults, WhicheverCallOfTheHostFailsNothingIsChangedAndTheErrorSaysSo) {
  const auto dataset = Changed();
  const std::string before = Show(dataset->View());
  for (const Operation& operation : Operations()) {
    const std::string written = Written(operation, *dataset);
    for (std::size_t failing = 0;; ++failing) {
      Host host;
      host.failing = failing;
      host.bytes.reserve(written.size());
      host.bytes = operation.isRead ? written : "";
      KivDataset* read = nullptr;
      const KivStatus status = operation.run(dataset.get(), host, &read);
      ASSERT_EQ(Show(dataset->View()), before);
      if (host.calls <= failing) {
        ASSERT_EQ(status, KIV_OK) << operation.name << ": " << LastMessage();
        ASSERT_EQ(host.at, written.size());
        ASSERT_GT(failing, 2U) << operation.name;
        KivDatasetFree(read);
        break;
      }
      ASSERT_EQ(status, -KIV_ERROR_GENERAL) << operation.name << " " << failing << ": " << LastMessage();
      ASSERT_EQ(LastMessage(),
                operation.name + (operation.isRead ? ": source: citirea" : ": sink: scrierea") + " a fost oprita");
      ASSERT_EQ(read, nullptr);
      ASSERT_EQ(host.calls, failing + 1) << "it was asked again";
      ASSERT_TRUE(written.starts_with(std::string_view(host.bytes).substr(0, host.at)));
    }
  }
}

TEST(ExchangeFaults, WhicheverAllocationFailsNothingIsChangedAndTheErrorSaysSo) {
  Dataset small("t", {{"k", FieldType::Text, 5, kKey}, {"n", FieldType::Int32}, {"p", FieldType::Blob}});
  for (const char* key : {"0", "1", "2", "3"}) {
    small.Insert({{"k", key}, {"n", 1}});
  }
  small.Changes().AcceptChanges();
  small.Set(RowId{0}, "k", "x");
  small.Set(RowId{1}, "k", "0");
  small.Set(RowId{2}, "k", "1");
  small.Update(RowId{0}, {{"k", "2"}, {"n", 7}, {"p", Bytes{1, 2, 3}}});
  const auto dataset = std::make_unique<KivDataset>(std::move(small));
  const std::string before = Show(dataset->View());
  for (const Operation& operation : Operations()) {
    const std::string written = Written(operation, *dataset);
    for (std::uint64_t failing = 0;; ++failing) {
      ASSERT_LT(failing, 20'000U);
      Host host;
      host.bytes.reserve(written.size());
      host.bytes = operation.isRead ? written : "";
      KivDataset* read = nullptr;
      Allocations::FailFrom(failing);
      const KivStatus status = operation.run(dataset.get(), host, &read);
      const bool hasFailed = Allocations::Stop();
      ASSERT_EQ(Show(dataset->View()), before);
      if (!hasFailed) {
        ASSERT_EQ(status, KIV_OK) << operation.name << ": " << LastMessage();
        ASSERT_GT(failing, 0U) << operation.name;
        ASSERT_EQ(operation.name == "KivDatasetReadXml" ? Show(read->View()) : before, before);
        KivDatasetFree(read);
        break;
      }
      ASSERT_EQ(status, -KIV_ERROR_OUT_OF_MEMORY) << operation.name << " " << failing << ": " << LastMessage();
      ASSERT_EQ(LastMessage(), operation.name + ": memorie insuficienta");
      ASSERT_EQ(read, nullptr);
    }
  }
}

TEST(ExchangeFaults, AHostThatGivesMoreThanThereIsRoomForIsStopped) {
  KivDataset* read = nullptr;
  const auto give = [](void* /*context*/, std::uint8_t* /*into*/, std::size_t capacity) {
    return static_cast<KivLength>(capacity + 1);
  };
  EXPECT_EQ(KivDatasetReadXml(give, nullptr, &read), -KIV_ERROR_GENERAL);
  EXPECT_EQ(LastMessage(), "KivDatasetReadXml: source: mai multi octeti decat incap");
}

}  // namespace
}  // namespace kiv
