#include <gmock/gmock.h>

#include <regex>
#include <set>
#include <string>

#include "EveryType.h"
#include "PacketBytes.h"

// Packets that are sealed well and hold nonsense: every byte changed in turn, every chunk left out, doubled and
// exchanged with the next. What readers say to all of that is the list below, word for word.

namespace kiv {
namespace {

/// What a refusal says behind the place that it names; # stands for a number, "" for a name.
std::string ReasonOf(const std::string& message) {
  const std::string reason = message.substr(message.find(": ", message.find("octetul ")) + 2);
  static const std::regex kName("\"[^\"]*\"");
  static const std::regex kNumber(" -?[0-9]+");
  return std::regex_replace(std::regex_replace(reason, kName, "\"\""), kNumber, " #");
}

class Refusals {
 public:
  /// Reads a packet; what is said to it is kept.
  void Try(PacketBytes packet) {
    Seal(packet);
    const ReadLimits limits{.maxRows = 100'000, .maxBytes = 1 << 20};
    try {
      if (packet[12] == static_cast<std::uint8_t>(packet::PacketKind::Delta)) {
        static_cast<void>(ReadDelta(SourceOf(packet), limits));
      } else {
        static_cast<void>(ReadBack(packet, limits));
      }
    } catch (const PacketError& error) {
      reasons_.insert(ReasonOf(error.what()));
    }
  }

  void TryBytes(const PacketBytes& whole) {
    PacketBytes packet = whole;
    for (const ChunkPlace& chunk : ChunksOf(whole)) {
      // Of texts that go in pieces the beginning.
      const std::size_t size = chunk.size > 10'000 ? 20 : chunk.size;
      for (std::size_t at = chunk.payload; at < chunk.payload + size; ++at) {
        for (const int byte : {0, 1, 2, 4, 0x7F, 0xFF, whole[at] + 1, whole[at] - 1}) {
          packet[at] = static_cast<std::uint8_t>(byte);
          Try(packet);
        }
        packet[at] = whole[at];
      }
    }
  }

  void TryChunks(const PacketBytes& whole) {
    std::vector<PacketBytes> chunks;
    for (const ChunkPlace& chunk : ChunksOf(whole)) {
      const auto first = whole.begin() + static_cast<std::ptrdiff_t>(chunk.payload - packet::kChunkHeaderSize);
      chunks.emplace_back(
          first, first + static_cast<std::ptrdiff_t>(packet::kChunkHeaderSize + chunk.size + packet::kChecksumSize));
    }
    const auto tryAll = [&] {
      PacketBytes packet(whole.begin(), whole.begin() + packet::kHeaderSize);
      for (const PacketBytes& chunk : chunks) {
        packet.insert(packet.end(), chunk.begin(), chunk.end());
      }
      Try(packet);
    };
    const std::vector<PacketBytes> all = chunks;
    for (std::size_t i = 0; i < all.size(); ++i) {
      const auto at = [&] { return chunks.begin() + static_cast<std::ptrdiff_t>(i); };
      chunks.erase(at());
      tryAll();
      chunks = all;
      chunks.insert(at(), all[i]);
      tryAll();
      chunks = all;
      std::swap(chunks[i], chunks[(i + 1) % all.size()]);
      tryAll();
      chunks = all;
    }
  }

  [[nodiscard]] const std::set<std::string>& Reasons() const noexcept { return reasons_; }

 private:
  std::set<std::string> reasons_;
};

/// Few rows and changes of every kind, with a text that goes in pieces.
void FillAndEdit(Dataset& dataset) {
  AddRows(dataset, 9);
  dataset.Update(RowId{1}, {{"x", Text(32'001, 'x')}, {"w", u"lat"}});
  dataset.Update(RowId{1}, {{"x", "scurt"}, {"w", Null{}}, {"g", Guid{9, 9, 9, {1}}}, {"n", "alt"}});
  dataset.Delete(RowId{2});
  dataset.Delete(dataset.Insert({{"s", "nou"}}));
  dataset.Insert({{"s", "altul"}, {"x", "text"}});
}

TEST(PacketRefusals, AreTheseForWhatASealedPacketMayHold) {
  Refusals refusals;
  const PacketNotes notes = {{"de la", "ana"}};
  const auto tryAll = [&](Dataset dataset) {
    FillAndEdit(dataset);
    for (const PacketBytes& packet : {Written(dataset, notes), Written(dataset.Changes().MakeDelta())}) {
      refusals.TryChunks(packet);
      refusals.TryBytes(packet);
    }
  };
  tryAll(Dataset("arhiva", EveryType()));
  tryAll(WithHeaps());
  const std::vector<std::string> expected = {
      R"(Dataset "": campul "" nu poate tine #)",
      R"(Dataset "": campul "" tine cel mult # octeti, nu #)",
      R"(Dataset "": campul "" tine cel mult # unitati, nu #)",
      R"(Dataset "": campul "", randul #: modificarile randului nu urmeaza una din alta)",
      R"(Dataset "": campul "", randul #: starea nu exista)",
      R"(Dataset "": campul "", randul #: starea nu se potriveste cu jurnalul)",
      R"(Dataset "": campul "", randul #: textul apare de doua ori in dictionar)",
      R"(Dataset "": campul "", randul #: trebuie completat)",
      R"(Dataset "": campul "", randul #: trimite la o valoare care nu exista)",
      R"(Dataset "": cheia # exista deja)",
      R"(Dataset "": jurnalul are campuri in alta ordine)",
      R"(Dataset "": jurnalul are o inregistrare nepermisa)",
      R"(Dataset "": numele nu este permis)",
      R"(Dataset "": urmatorul numar temporar este deja folosit)",
      R"(Schema: campul "" apare de doua ori)",
      R"(Schema: campul "" are lungimea nepermisa #)",
      R"(Schema: campul "" are o ordine a textelor nepermisa)",
      R"(Schema: campul "" de tip Blob nu poate fi cheie)",
      R"(Schema: campul "" de tip Double nu poate fi cheie)",
      R"(Schema: campul "" de tip Int16 nu poate tine valoarea #)",
      R"(Schema: campul "" de tip Int32 nu poate tine valoarea #)",
      R"(Schema: campul "" de tip Memo nu poate fi cheie)",
      R"(Schema: campul "" nu are un nume permis)",
      R"(Schema: campul "" nu poate tine #)",
      R"(Schema: campul "" tine cel mult # octeti, nu #)",
      "blocul are coloane in plus",
      "blocul nu are cate randuri trebuie",
      "bucatile nu sunt in ordine",
      "coloanele nu sunt in ordine",
      "definitiile campurilor au octeti in plus",
      "jurnalul are mai multe inregistrari decat trebuie",
      "jurnalul are un camp care nu exista",
      "lipsesc randuri",
      "lipsesc valori sau inregistrari ale jurnalului",
      "o coloana are o latime nepermisa",
      "o coloana fara dictionar nu are texte",
      "o coloana fara valori nu este scrisa cum trebuie",
      "o coloana nu este scrisa cum trebuie",
      "o valoare implicita nu este scrisa cum trebuie",
      "o valoare lunga nu este intreaga",
      "o valoare lunga nu este scrisa cum trebuie",
      "pachetul are mai multe randuri sau campuri decat este permis",
      "pachetul are mai multe tabele",
      "pachetul are notele de doua ori",
      "pachetul nu incepe cu un tabel",
      "pachetul s-a terminat, dar urmeaza alti octeti",
      "pachetul se termina inainte de vreme",
      "randurile nu urmeaza unul din altul",
      "se termina inainte de vreme",
      "semne de valori lipsa dincolo de ultimul rand",
      "semnele valorilor lipsa nu sunt scrise cum trebuie",
      "sfarsitul nu se potriveste cu randurile",
      "starile nu sunt scrise cum trebuie",
      "textele unei coloane nu urmeaza unul din altul",
      "un camp are un tip care nu exista",
      "un dictionar nu este al unui camp care il are",
      "un text UTF-16 are un numar impar de octeti",
      "un text lung este in plus",
      "un text lung lipseste",
  };
  EXPECT_THAT(refusals.Reasons(), testing::UnorderedElementsAreArray(expected));
}

}  // namespace
}  // namespace kiv
