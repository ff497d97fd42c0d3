#include "dataset/query/AggregateState.h"

#include <algorithm>
#include <bit>

#include "dataset/query/CalculatedColumns.h"
#include "dataset/query/Lookup.h"
#include "dataset/query/Parser.h"

namespace kiv::query {
namespace {

using store::Cell;
using store::Contents;
using store::RowChange;

/// The values of a row's or a group's cells, kept.
Cell Kept(const Cell& cell, std::string& bytes) {
  Cell kept = cell;
  bytes.assign(cell.bytes);
  kept.bytes = bytes;
  return kept;
}

bool IsSame(const Cell& left, const Cell& right) noexcept {
  return left.isNull == right.isNull && left.bytes == right.bytes && (!left.bytes.empty() || left.bits == right.bits) &&
         left.more == right.more;
}

}  // namespace

AggregateState::AggregateState(store::Store& store, TextView what, TextView groupBy, const FilterParameters& parameters)
    : followers_(store.GetFollowers()),
      by_(ParseOrder(store.GetContents(), groupBy)),
      keyReader_(store.GetContents(), by_),
      groups_(KeyBefore{this}) {
  const Contents& contents = store.GetContents();
  ParseFigure(contents, what, parameters);
  for (const OrderField& field : by_) {
    types_.push_back(FieldAt(contents, field.field).type);
  }
  reads_ = FieldsOf(tree_);
  key_.resize(by_.size());
  followers_->Add(*this);
}

AggregateState::~AggregateState() {
  followers_->Remove(*this);
}

const Contents& AggregateState::Check() const {
  if (followers_->GetStore() == nullptr) {
    throw Error("Aggregate: setul de date nu mai exista");
  }
  return followers_->GetStore()->GetContents();
}

void AggregateState::ParseFigure(const Contents& contents, TextView what, const FilterParameters& parameters) {
  constexpr std::pair<TextView, Figure> kFigures[] = {{"count", Figure::Count},
                                                      {"sum", Figure::Sum},
                                                      {"avg", Figure::Average},
                                                      {"min", Figure::Least},
                                                      {"max", Figure::Most}};
  Lexer lexer(what);
  const Token name = lexer.Next();
  const Text folded = store::FoldName(name.text);
  const auto* const found = std::ranges::find(kFigures, TextView(folded), &std::pair<TextView, Figure>::first);
  if (name.symbol != Symbol::Name || found == std::end(kFigures)) {
    Refuse(name.span.from, store::Quoted(name.text) + " nu este count, sum, avg, min sau max");
  }
  const Token open = lexer.Next();
  const std::size_t close = what.find_last_not_of(" \t\r\n");
  if (open.symbol != Symbol::LeftParenthesis || what[close] != ')' || close < open.span.to) {
    Refuse(open.span.from, "dupa " + store::Quoted(name.text) + " lipseste o expresie intre paranteze");
  }
  figure_ = found->second;
  // Blanks for what is in front, so that places in it are those of the whole text.
  Text expression(what.substr(0, close));
  std::fill_n(expression.begin(), open.span.to, ' ');
  if (figure_ == Figure::Count && expression.find_first_not_of(" \t\r\n") == expression.find_last_not_of(" \t\r\n") &&
      expression.find('*') != Text::npos) {
    figure_ = Figure::Rows;
    return;
  }
  tree_ = Parse(contents, expression, parameters);
  kind_ = tree_.ResultKind();
  const bool isNumeric = IsNumber(kind_) || kind_ == Kind::Null;
  const bool isAllowed = figure_ == Figure::Count || (figure_ == Figure::Sum || figure_ == Figure::Average
                                                          ? isNumeric
                                                          : kind_ != Kind::Bytes && kind_ != Kind::Boolean);
  if (!isAllowed) {
    Refuse(open.span.to, store::Quoted(name.text) + " nu primeste o valoare de tip " + Text(NameOf(kind_)));
  }
  evaluator_.emplace(tree_);
}

// Keys.

int AggregateState::CompareKeys(std::span<const Cell> left, std::span<const Cell> right) const noexcept {
  for (std::size_t i = 0; i < by_.size(); ++i) {
    if (const int order = CompareCells(by_[i], types_[i], left[i], right[i]); order != 0) {
      return order;
    }
  }
  return 0;
}

bool AggregateState::KeyBefore::operator()(const Key& left, std::span<const Cell> right) const noexcept {
  return state->CompareKeys(left.cells, right) < 0;
}
bool AggregateState::KeyBefore::operator()(std::span<const Cell> left, const Key& right) const noexcept {
  return state->CompareKeys(left, right.cells) < 0;
}

void AggregateState::ReadKey(std::uint32_t row) {
  for (std::size_t i = 0; i < by_.size(); ++i) {
    key_[i] = keyReader_.Read(i, row);
  }
}

bool AggregateState::IsKey(const Key& key) const noexcept {
  return std::ranges::equal(key.cells, key_, IsSame);
}

AggregateState::Group& AggregateState::GroupOfKey() {
  const auto found = groups_.find(std::span<const Cell>(key_));
  if (found == groups_.end()) {
    Key key;
    key.bytes.resize(key_.size());
    for (std::size_t i = 0; i < key_.size(); ++i) {
      key.cells.push_back(Kept(key_[i], key.bytes[i]));
    }
    return groups_.emplace(std::move(key), Group()).first->second;
  }
  if (found->second.isMixed || !IsKey(found->first)) {
    found->second.isMixed = true;
    isStale_ = isStale_ || !isMakingAnew_;
  }
  return found->second;
}

// Following.

bool AggregateState::Concerns(const RowChange& change) const noexcept {
  return !change.wasThere || !change.isThere || std::ranges::any_of(change.fields, [this](std::uint16_t field) {
    return std::ranges::find(reads_, field) != reads_.end() || keyReader_.Reads(field);
  });
}

std::uint64_t AggregateState::CurrentLookupVersion() const noexcept {
  return LookupVersion(tree_) + keyReader_.Version();
}

void AggregateState::Before(const RowChange& change) noexcept {
  if (!IsReady() || !change.wasThere || !Concerns(change)) {
    return;
  }
  try {
    Remove(followers_->GetStore()->GetContents(), change.row);
  } catch (...) {
    isStale_ = true;  // there was no memory; made anew when it is asked for
  }
}

void AggregateState::After(const RowChange& change) noexcept {
  isStale_ = !IsReady();  // a row that was looked up may have changed
  if (isStale_ || !change.isThere || !Concerns(change)) {
    return;
  }
  try {
    Add(followers_->GetStore()->GetContents(), change.row);
  } catch (...) {
    isStale_ = true;
  }
}

void AggregateState::Add(const Contents& contents, std::uint32_t row) {
  ReadKey(row);
  AddTo(GroupOfKey(), contents, row);
}

void AggregateState::AddTo(Group& group, const Contents& contents, std::uint32_t row) {
  ++group.rows;
  if (!evaluator_) {
    return;
  }
  const Cell* const value = evaluator_->TryEvaluate(tree_.Root(), contents, row);
  if (value == nullptr) {
    ++group.faulty;
  } else if (!value->isNull) {
    ++group.values;
    AddValue(group, *value);
  }
}

void AggregateState::Remove(const Contents& contents, std::uint32_t row) {
  ReadKey(row);
  Group& group = GroupOfKey();
  if (--group.rows == 0) {
    groups_.erase(groups_.find(std::span<const Cell>(key_)));
    return;
  }
  if (!evaluator_) {
    return;
  }
  const Cell* const value = evaluator_->TryEvaluate(tree_.Root(), contents, row);
  if (value == nullptr) {
    --group.faulty;
  } else if (!value->isNull) {
    --group.values;
    RemoveValue(group, *value);
  }
}

void AggregateState::AddValue(Group& group, const Cell& value) {
  switch (figure_) {
    case Figure::Sum:
    case Figure::Average:
      if (kind_ != Kind::Double) {
        group.sum += IntegerOf(value);
      } else if (isMakingAnew_) {
        group.total += std::bit_cast<double>(value.bits);
      } else {
        MarkDirty(group);
      }
      break;
    case Figure::Least:
    case Figure::Most: {
      const Collation collation = tree_.nodes.back().collation;
      const int order = group.values == 1 ? -1 : Compare({kind_, value}, {kind_, group.extreme}, collation);
      if (group.values == 1 || (figure_ == Figure::Least ? order < 0 : order > 0)) {
        group.extreme = Kept(value, group.extremeBytes);
      } else if (order == 0 && !isMakingAnew_ && !IsSame(value, group.extreme)) {
        MarkDirty(group);  // which of two equal texts comes first
      }
      break;
    }
    default:
      break;
  }
}

void AggregateState::RemoveValue(Group& group, const Cell& value) {
  switch (figure_) {
    case Figure::Sum:
    case Figure::Average:
      if (kind_ == Kind::Double) {
        MarkDirty(group);
      } else {
        group.sum -= IntegerOf(value);
      }
      break;
    case Figure::Least:
    case Figure::Most:
      if (Compare({kind_, value}, {kind_, group.extreme}, tree_.nodes.back().collation) == 0) {
        MarkDirty(group);
      }
      break;
    default:
      break;
  }
}

// Making anew.

const store::Column* AggregateState::ColumnOfCodes(const Contents& contents) const noexcept {
  // So that what is kept for each code is no large allocation.
  constexpr std::size_t kMostCodes = store::kLargestBlock / sizeof(void*);
  if (by_.size() != 1 || by_[0].field >= contents.columns.size()) {
    return nullptr;
  }
  const store::Column& column = contents.columns[by_[0].field];
  const bool hasCodes = store::TraitsOf(column.type).storage == store::Storage::Texts && column.texts.HasDictionary();
  return hasCodes && column.texts.EntryCount() <= kMostCodes ? &column : nullptr;
}

void AggregateState::MakeAnew(const Contents& contents) {
  groups_.clear();
  // Texts of one code are the same text: their group is looked for once.
  const store::Column* const codes = ColumnOfCodes(contents);
  std::vector<Group*> groupOfCode(codes == nullptr ? 0 : codes->texts.EntryCount());
  for (std::uint32_t row = 0; row < contents.rowCount; ++row) {
    if (!contents.IsPresent(row)) {
      continue;
    }
    if (codes == nullptr || codes->IsNull(row)) {
      Add(contents, row);
      continue;
    }
    Group*& group = groupOfCode[codes->values.At<std::uint32_t>(row)];
    if (group == nullptr) {
      ReadKey(row);
      group = &GroupOfKey();
    }
    AddTo(*group, contents, row);
  }
}

void AggregateState::MakeDirtyAnew(const Contents& contents) {
  for (auto& [key, group] : groups_) {
    if (group.isDirty) {
      const bool isMixed = group.isMixed;
      group = {};
      group.isDirty = true;
      group.isMixed = isMixed;
    }
  }
  for (std::uint32_t row = 0; row < contents.rowCount; ++row) {
    if (contents.IsPresent(row)) {
      ReadKey(row);
      if (groups_.find(std::span<const Cell>(key_))->second.isDirty) {
        Add(contents, row);
      }
    }
  }
  for (auto& [key, group] : groups_) {
    group.isDirty = false;
  }
}

void AggregateState::Refresh() {
  const Contents& contents = Check();
  const std::uint64_t version = CurrentLookupVersion();
  isStale_ = isStale_ || version != lookupVersion_;
  if (!isStale_ && !hasDirty_) {
    return;
  }
  const bool wasStale = std::exchange(isStale_, true);  // until it has been done
  isMakingAnew_ = true;
  try {
    wasStale ? MakeAnew(contents) : MakeDirtyAnew(contents);
  } catch (...) {
    isMakingAnew_ = false;
    throw;
  }
  isMakingAnew_ = false;
  isStale_ = false;
  hasDirty_ = false;
  lookupVersion_ = version;
}

}  // namespace kiv::query
