// Files that must stay readable for ever, and that are still written byte for byte but for the identity in their
// header. With KIV_NEW_FILES=1 in the environment those that do not exist yet are written; the others never change.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "EveryType.h"
#include "PacketBytes.h"
#include "Show.h"
#include "kivtools/dataset/Journal.h"
#include "platform/TestFolder.h"

namespace kiv {
namespace {

std::filesystem::path DataFile(TextView name) {
  return std::filesystem::path(KIV_DATA_FOLDER) / std::string(name);
}

/// The file's bytes; those of `made` where it is new.
PacketBytes Kept(TextView name, const PacketBytes& made) {
  if (std::getenv("KIV_NEW_FILES") != nullptr && !std::filesystem::exists(DataFile(name))) {
    WriteWhole(DataFile(name), std::string_view(reinterpret_cast<const char*>(made.data()), made.size()));
  }
  const std::string bytes = ReadWhole(DataFile(name));
  return {bytes.begin(), bytes.end()};
}

void ExpectSameContent(const PacketBytes& kept, const PacketBytes& made) {
  ASSERT_GT(kept.size(), packet::kHeaderSize);
  EXPECT_TRUE(std::ranges::equal(std::span(kept).first(16), std::span(made).first(16)));
  EXPECT_TRUE(
      std::ranges::equal(std::span(kept).subspan(packet::kHeaderSize), std::span(made).subspan(packet::kHeaderSize)));
}

void ExpectKept(TextView name, Dataset dataset) {
  const PacketNotes notes = {{"scris de", "ana"}, {"cand", "2026-03-05"}};
  const PacketBytes made = Written(dataset, notes);
  const PacketBytes kept = Kept(name, made);
  ExpectSameContent(kept, made);
  PacketNotes read;
  Dataset loaded = ReadBinary(SourceOf(kept), {}, &read);
  EXPECT_EQ(Show(loaded), Show(dataset));
  ASSERT_EQ(read.size(), 2U);
  EXPECT_EQ(read[1].value, "2026-03-05");
  loaded.Changes().CancelChanges();
  dataset.Changes().CancelChanges();
  EXPECT_EQ(Show(loaded), Show(dataset));
}

Dataset EditedRows(Dataset dataset) {
  AddRows(dataset, 40);
  Edit(dataset, 40);
  return dataset;
}

/// What the transcript of the command line shows.
Dataset Lines() {
  Dataset lines("linii", {{"id", FieldType::AutoInc, kKey},
                          {"partener", FieldType::Text, 40, kRequired},
                          {"data", FieldType::Date},
                          {"suma", FieldType::Currency},
                          {"obs", FieldType::Memo}});
  Loader loader(lines);
  loader.Add({1, "Şapte Arini"_ro, DateTime(45356), 1234.56_lei, Null{}});
  loader.Add({2, "Moara Veche"_ro, DateTime(45357), 80_lei, "urgent"});
  loader.Add({3, "Cofetăria Ţuţuianu"_ro, Null{}, Currency::FromRaw(-55'000), Null{}});
  loader.Finish();
  lines.Update(RowId{0}, {{"suma", 1500_lei}, {"obs", "verificat"}});
  lines.Delete(RowId{1});
  lines.Insert({{"partener", "Alfa\tBeta"}, {"suma", 10_lei}});
  return lines;
}

TEST(GoldenFiles, DatasetsOfVersion1) {
  ExpectKept("version1-lines.kdp", Lines());
  ExpectKept("version1-dictionaries.kdp", EditedRows(Dataset("arhiva", EveryType())));
  ExpectKept("version1-heaps.kdp", EditedRows(WithHeaps()));
  ExpectKept("version1-empty.kdp", Dataset("gol", {{"id", FieldType::AutoInc, kKey}}));
}

TEST(GoldenFiles, ADeltaOfVersion1) {
  Dataset dataset = Lines();
  const Delta delta(dataset.GetStore().CopyContents(), Guid{1, 2, 3, {4}});
  const PacketBytes made = Written(delta);
  const PacketBytes kept = Kept("version1-delta.kdp", made);
  ExpectSameContent(kept, made);
  const Delta read = ReadDelta(SourceOf(kept));
  EXPECT_EQ(read.Id(), (Guid{1, 2, 3, {4}}));
  EXPECT_EQ(read.Count(), delta.Count());
}

TEST(GoldenFiles, AJournalOfVersion1) {
  const TestFolder folder;
  const auto path = folder / "jurnal.kdp";
  Dataset dataset("arhiva", EveryType());
  AddRows(dataset, 10);
  {
    Journal journal(dataset, path, {.flush = JournalFlush::Never, .save = {.flush = false}});
    Edit(dataset, 10);
    dataset.Changes().UndoLast();
  }
  const auto bytesOf = [](const std::filesystem::path& file) {
    const std::string bytes = ReadWhole(file);
    return PacketBytes(bytes.begin(), bytes.end());
  };
  static_cast<void>(Kept("version1-journal.kdp", bytesOf(path)));
  static_cast<void>(Kept("version1-journal.kdp.log", bytesOf(folder / "jurnal.kdp.log")));
  LoadReport report;
  EXPECT_EQ(Show(LoadBinary(DataFile("version1-journal.kdp"), {}, &report)), Show(dataset));
  EXPECT_GT(report.replayed, 100U);
  EXPECT_EQ(report.lostBytes, 0U);
}

}  // namespace
}  // namespace kiv
