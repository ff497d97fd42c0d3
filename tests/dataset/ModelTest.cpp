#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "BlockCopy.h"
#include "ModelCursors.h"
#include "dataset/store/Store.h"
#include "kivtools/dataset/Loader.h"

// Random edits of a dataset and of a model that is as plain as can be: rows in a vector, and for each change a full
// copy of them from before it. KIV_MODEL_STEPS sets another number of steps than 100,000, KIV_MODEL_SEED another run.

namespace kiv {
namespace {

constexpr std::size_t kFields = 7;
/// Rows before the model's own, so that its rows lie on both sides of the edge of a block.
constexpr std::uint32_t kBase = 8180;

Dataset MakeDataset() {
  Dataset dataset("model", {{"k", FieldType::Int64, kKey},
                            {"t", FieldType::Text, 12},
                            {"c", FieldType::Currency},
                            {"b", FieldType::Boolean},
                            {"g", FieldType::Guid},
                            {"m", FieldType::Memo},
                            {"d", FieldType::Date}});
  Loader loader(dataset);
  for (std::uint32_t i = 0; i < kBase; ++i) {
    const ValueView null;
    loader.Add({1'000'000 + i, null, null, null, null, null, null});
  }
  loader.Finish();
  return dataset;
}

/// Has the model's rows that are there, from what a follower is told alone.
class Mirror : public store::Follower {
 public:
  explicit Mirror(Dataset& dataset) : followers_(dataset.GetStore().GetFollowers()), contents_(dataset.GetContents()) {
    followers_->Add(*this);
    RowsAdded();
  }
  ~Mirror() override { followers_->Remove(*this); }
  Mirror(const Mirror&) = delete;
  Mirror& operator=(const Mirror&) = delete;

  void Prepare(std::uint32_t changes) override { room_ = changes; }
  void Before(const store::RowChange& change) noexcept override {  // NOLINT(bugprone-exception-escape)
    EXPECT_GT(room_--, 0U);
    EXPECT_EQ(rows_.contains(change.row), change.wasThere);
    if (change.wasThere) {
      EXPECT_EQ(rows_[change.row], Read(change.row));
    }
  }
  void After(const store::RowChange& change) noexcept override {  // NOLINT(bugprone-exception-escape)
    if (change.wasThere && change.isThere) {
      const Values now = Read(change.row);
      for (std::uint16_t f = 0; f < kFields; ++f) {
        EXPECT_EQ(now[f] != rows_[change.row][f], std::ranges::find(change.fields, f) != change.fields.end());
      }
    }
    rows_.erase(change.row);
    if (change.isThere) {
      rows_[change.row] = Read(change.row);
    }
  }
  void Done() noexcept override { EXPECT_EQ(room_, 0U); }
  void RowsAdded() noexcept override {  // NOLINT(bugprone-exception-escape)
    rows_.clear();
    for (std::uint32_t row = kBase; row < contents_.rowCount; ++row) {
      if (contents_.IsPresent(row)) {
        rows_[row] = Read(row);
      }
    }
  }
  void Renumbered(const store::Plane& numbers) noexcept override {  // NOLINT(bugprone-exception-escape)
    std::map<std::uint32_t, Values> renumbered;
    for (auto& [row, values] : rows_) {
      renumbered[numbers.At<std::uint32_t>(row)] = std::move(values);
    }
    rows_ = std::move(renumbered);
  }

  void Check(const Rows& rows) const {
    std::map<std::uint32_t, Values> expected;
    for (std::uint32_t i = 0; i < rows.size(); ++i) {
      if (rows[i].isPresent) {
        expected[kBase + i] = rows[i].values;
      }
    }
    ASSERT_EQ(rows_, expected);
  }

 private:
  [[nodiscard]] Values Read(std::uint32_t row) const {
    Values values;
    for (std::size_t f = 0; f < kFields; ++f) {
      values.push_back(store::ValueOf(contents_.columns[f].type, contents_.Read(row, f)));
    }
    return values;
  }

  std::shared_ptr<store::Followers> followers_;
  const store::Contents& contents_;
  std::map<std::uint32_t, Values> rows_;
  std::uint32_t room_ = 0;
};

class Walk {
 public:
  explicit Walk(std::uint32_t seed)
      : random_(seed),
        dataset_(MakeDataset()),
        mirror_(std::in_place, dataset_),
        cursors_(std::in_place, dataset_, kBase) {}

  void Step() {
    const std::uint32_t what = Below(1000);
    if (what < 250) {
      Insert();
    } else if (what < 600) {
      Update();
    } else if (what < 700) {
      Delete();
    } else if (what < 780) {
      Revert();
    } else if (what < 880) {
      Undo();
    } else if (what < 930) {
      marks_.push_back({dataset_.Changes().SetMark(), history_.size()});
    } else if (what < 960) {
      Rollback();
    } else if (what < 975) {
      EndHistory(Below(3) == 0);
    } else if (what < 990) {
      snapshot_.emplace(dataset_.TakeSnapshot());
      snapshotRows_ = rows_;
    } else if (what < 995) {
      Compact();
    } else {
      dataset_ = Dataset(CopyByBlocks(dataset_.GetContents()));
      mirror_.emplace(dataset_);
      cursors_.emplace(dataset_, kBase);
      marks_.clear();
    }
  }

  void Check() const {
    CheckRows(dataset_, rows_);
    mirror_->Check(rows_);
    cursors_->Check(rows_, ++checks_);
    ASSERT_EQ(dataset_.GetContents().log.Count(), history_.size());
    for (int i = 0; i < 3; ++i) {
      CheckKey(i == 0 ? RandomKeyOf(7) : RandomKeyOf(0));
    }
    if (snapshot_) {
      CheckRows(*snapshot_, snapshotRows_);
    }
  }

  /// What is looked at only now and then: the delta and the whole log against the history.
  void CheckAll() {
    const Delta delta = dataset_.Changes().MakeDelta();
    std::uint32_t ticket = 0;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
      const store::StoredState state = rows_[i].State();
      if (state == store::StoredState::Unmodified || state == store::StoredState::Gone) {
        continue;
      }
      ASSERT_LT(ticket, delta.Count());
      ASSERT_EQ(delta.Row(ticket), IdOf(i));
      for (std::size_t f = 0; f < kFields && rows_[i].original; ++f) {
        const bool isChanged = rows_[i].isPresent && rows_[i].values[f] != (*rows_[i].original)[f];
        ASSERT_EQ(delta.IsChanged(ticket, f), isChanged);
        if (delta.HasOriginal(ticket, f)) {
          ASSERT_EQ(delta.Original(ticket, f), (*rows_[i].original)[f]);
        }
      }
      ++ticket;
    }
    ASSERT_EQ(ticket, delta.Count());
    std::size_t record = 0;
    dataset_.Changes().ForEach([&](const ChangeRecord& change) {
      const std::size_t row = static_cast<std::uint32_t>(change.row) - kBase;
      ASSERT_EQ(row, history_[record].row);
      for (const auto& [field, before] : change.fields) {
        ASSERT_EQ(before, history_[record].before[row].values[field]);
      }
      ++record;
    });
  }

 private:
  struct Before {
    std::size_t row;
    Rows before;
  };
  struct ModelMark {
    Mark mark;
    std::size_t records;
  };

  std::uint32_t Below(std::uint32_t limit) const { return static_cast<std::uint32_t>(random_() % limit); }
  static RowId IdOf(std::size_t row) { return static_cast<RowId>(kBase + row); }

  std::int64_t RandomKeyOf(std::uint32_t wideOneIn) const {
    const std::int64_t key = Below(40);
    return wideOneIn > 0 && Below(wideOneIn) == 0 ? key << 33U : key;
  }

  Value RandomValue(std::size_t field) const {
    if (field == 0) {
      return RandomKeyOf(50);
    }
    if (Below(4) == 0) {
      return Null{};
    }
    switch (field) {
      case 1:
        return "t" + std::to_string(Below(Below(10) == 0 ? 100'000 : 5));
      case 2:
        return Currency::FromRaw(Below(3));
      case 3:
        return Below(2) == 0;
      case 4:
        return Guid{Below(2), 0, 0, {static_cast<std::uint8_t>(Below(2))}};
      case 5:
        return Text(std::size_t{Below(3)} * 20, 'm');
      default:
        return DateTime(Below(3));
    }
  }

  [[nodiscard]] bool HasKey(const Value& key, std::size_t exceptRow) const {
    for (std::size_t i = 0; i < rows_.size(); ++i) {
      if (i != exceptRow && rows_[i].isPresent && rows_[i].values[0] == key) {
        return true;
      }
    }
    return false;
  }

  /// Does an edit that fails or not as `fails` says; the model changes only if it does not.
  template <class Edit, class EditModel>
  void Post(std::size_t row, bool fails, Edit&& edit, EditModel&& editModel) {
    Rows before = rows_;
    try {
      edit();
      ASSERT_FALSE(fails);
    } catch (const Error& error) {
      ASSERT_TRUE(fails) << error.what();
      return;
    }
    editModel();
    cursors_->Follow(before, rows_);
    history_.push_back({row, std::move(before)});
  }

  void Insert() {
    ModelRow row;
    std::vector<FieldValue> given;
    for (std::size_t f = 0; f < kFields; ++f) {
      row.values.push_back(RandomValue(f));
    }
    for (std::size_t f = 0; f < kFields; ++f) {
      given.push_back({dataset_.FieldAt(f), row.values[f]});
    }
    Post(
        rows_.size(), HasKey(row.values[0], rows_.size()), [&] { dataset_.Insert(given); },
        [&] { rows_.push_back(row); });
  }

  void Update() {
    if (rows_.empty()) {
      return;
    }
    const std::size_t i = Below(static_cast<std::uint32_t>(rows_.size()));
    std::map<std::size_t, Value> wanted;
    for (std::uint32_t n = Below(3) + 1; n > 0; --n) {
      const std::size_t field = Below(8) == 0 ? 0 : 1 + Below(kFields - 1);
      wanted[field] = RandomValue(field);
    }
    std::vector<FieldValue> given;
    Values values = rows_[i].values;
    for (const auto& [field, value] : wanted) {
      given.push_back({dataset_.FieldAt(field), value});
      values[field] = value;
    }
    if (rows_[i].isPresent && values == rows_[i].values) {
      dataset_.Update(IdOf(i), given);
      return;
    }
    Post(
        i, !rows_[i].isPresent || HasKey(values[0], i), [&] { dataset_.Update(IdOf(i), given); },
        [&] { rows_[i].values = values; });
  }

  void Delete() {
    if (!rows_.empty()) {
      const std::size_t i = Below(static_cast<std::uint32_t>(rows_.size()));
      Post(
          i, !rows_[i].isPresent, [&] { dataset_.Delete(IdOf(i)); }, [&] { rows_[i].isPresent = false; });
    }
  }

  void Revert() {
    if (rows_.empty()) {
      return;
    }
    const std::size_t i = Below(static_cast<std::uint32_t>(rows_.size()));
    const store::StoredState state = rows_[i].State();
    if (state == store::StoredState::Unmodified) {
      dataset_.Changes().RevertRow(IdOf(i));
      return;
    }
    const bool fails = state == store::StoredState::Gone || (rows_[i].original && HasKey((*rows_[i].original)[0], i));
    Post(
        i, fails, [&] { dataset_.Changes().RevertRow(IdOf(i)); },
        [&] {
          rows_[i].isPresent = rows_[i].original.has_value();
          rows_[i].values = rows_[i].original.value_or(rows_[i].values);
        });
  }

  /// The rows of `before`, and those added since as gone.
  void BackTo(std::size_t records) {
    while (history_.size() > records) {
      Rows before = std::move(history_.back().before);
      for (std::size_t i = before.size(); i < rows_.size(); ++i) {
        before.push_back(rows_[i]);
        before.back().isPresent = false;
      }
      cursors_->Follow(rows_, before);
      rows_ = std::move(before);
      history_.pop_back();
    }
    std::erase_if(marks_, [&](const ModelMark& mark) { return mark.records > records; });
  }

  void Undo() {
    ASSERT_EQ(dataset_.Changes().UndoLast(), !history_.empty());
    BackTo(history_.empty() ? 0 : history_.size() - 1);
  }

  void Rollback() {
    if (!marks_.empty()) {
      const ModelMark mark = marks_[Below(static_cast<std::uint32_t>(marks_.size()))];
      dataset_.Changes().RollbackTo(mark.mark);
      BackTo(mark.records);
    }
  }

  void EndHistory(bool cancels) {
    if (cancels) {
      dataset_.Changes().CancelChanges();
      BackTo(0);
    } else {
      dataset_.Changes().AcceptChanges();
      for (ModelRow& row : rows_) {
        row.original = row.isPresent ? std::optional(row.values) : std::nullopt;
      }
    }
    history_.clear();
    marks_.clear();
  }

  void Compact() {
    dataset_.Compact();
    std::vector<bool> isNamed(rows_.size());
    for (const Before& record : history_) {
      isNamed[record.row] = true;
    }
    std::vector<std::size_t> numbers(rows_.size());
    std::size_t next = 0;
    std::vector<bool> isKept(rows_.size());
    for (std::size_t i = 0; i < rows_.size(); ++i) {
      numbers[i] = next;
      isKept[i] = isNamed[i] || rows_[i].State() != store::StoredState::Gone;
      next += isKept[i] ? 1 : 0;
    }
    const auto keep = [&](Rows& rows) {
      Rows kept;
      for (std::size_t i = 0; i < rows.size(); ++i) {
        if (isKept[i]) {
          kept.push_back(std::move(rows[i]));
        }
      }
      rows = std::move(kept);
    };
    for (Before& record : history_) {
      keep(record.before);
      record.row = numbers[record.row];
    }
    keep(rows_);
    cursors_->Renumber(numbers);
  }

  static void CheckRows(const DatasetView& view, const Rows& rows) {
    ASSERT_EQ(view.GetContents().rowCount, kBase + rows.size());
    std::size_t present = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const auto number = static_cast<std::uint32_t>(IdOf(i));
      ASSERT_EQ(view.GetContents().StateOf(number), rows[i].State()) << i;
      present += rows[i].isPresent ? 1 : 0;
      for (std::size_t f = 0; f < kFields; ++f) {
        if (rows[i].isPresent) {
          ASSERT_EQ(view.Get(IdOf(i), view.FieldAt(f)), rows[i].values[f]) << i << " " << f;
        }
        if (rows[i].original) {
          ASSERT_EQ(view.Original(IdOf(i), view.FieldAt(f)), (*rows[i].original)[f]) << i << " " << f;
        }
      }
    }
    ASSERT_EQ(view.RowCount(), kBase + present);
  }

  void CheckKey(std::int64_t key) const {
    std::optional<RowId> expected;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
      if (rows_[i].isPresent && rows_[i].values[0] == Value(key)) {
        expected = IdOf(i);
      }
    }
    ASSERT_EQ(dataset_.Find(key), expected) << key;
  }

  mutable std::mt19937_64 random_;
  Dataset dataset_;
  std::optional<Mirror> mirror_;
  mutable std::optional<ModelCursors> cursors_;
  mutable std::uint64_t checks_ = 0;
  Rows rows_;
  std::vector<Before> history_;
  std::vector<ModelMark> marks_;
  std::optional<Snapshot> snapshot_;
  Rows snapshotRows_;
};

std::uint64_t NumberFrom(const char* variable, std::uint64_t otherwise) {
  const char* const given = std::getenv(variable);
  return given == nullptr ? otherwise : std::strtoull(given, nullptr, 10);
}

TEST(Model, DatasetDoesWhatPlainCopiesDo) {
  const std::uint64_t steps = NumberFrom("KIV_MODEL_STEPS", 100'000);
  const std::uint64_t perWalk = 2000;
  for (std::uint64_t step = 0, seed = NumberFrom("KIV_MODEL_SEED", 1); step < steps; ++seed) {
    Walk walk(static_cast<std::uint32_t>(seed));
    for (std::uint64_t i = 0; i < perWalk && step < steps; ++i, ++step) {
      walk.Step();
      walk.Check();
      if (i % 64 == 0) {
        walk.CheckAll();
      }
      if (testing::Test::HasFatalFailure()) {
        FAIL() << "seed " << seed << ", step " << i;
      }
    }
  }
}

}  // namespace
}  // namespace kiv
