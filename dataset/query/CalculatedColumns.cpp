#include "dataset/query/CalculatedColumns.h"

#include <algorithm>

#include "dataset/query/Lookup.h"
#include "dataset/query/Parser.h"
#include "dataset/query/TreeBuilder.h"

namespace kiv::query {

using store::Cell;
using store::Contents;
using store::Quoted;

CalculatedColumn::CalculatedColumn(FieldDef field, std::shared_ptr<const Tree> tree)
    : field_(std::move(field)), tree_(std::move(tree)), evaluator_(*tree_), shown_(field_.type) {
  shown_.MakeWritable(0, true);
}

const CalculatedColumn::Shown& CalculatedColumn::Show(const Contents& contents, std::uint32_t row) const {
  const Cell& cell = Evaluate(contents, row);
  shown_.Store(0, cell);
  shown_.bytes = cell.isNull ? std::string_view() : cell.bytes;
  return shown_;
}

std::optional<std::size_t> CalculatedColumns::IndexOf(TextView name) const {
  const Text folded = store::FoldName(name);
  const auto found = std::ranges::find_if(
      columns_, [&](const auto& column) { return store::FoldName(column->Field().name) == folded; });
  return found == columns_.end() ? std::nullopt : std::optional(static_cast<std::size_t>(found - columns_.begin()));
}

std::optional<std::size_t> IndexOfAny(const Contents& contents, TextView name) {
  if (const auto field = contents.schemaData->IndexOf(name); field || contents.calculated == nullptr) {
    return field;
  }
  const auto place = contents.calculated->IndexOf(name);
  return place ? std::optional(contents.columns.size() + *place) : std::nullopt;
}

namespace {

/// What a column of that expression is; texts of any length.
FieldDef FieldOf(TextView name, const Tree& tree) {
  const FieldType type = tree.ResultKind() == Kind::Text ? FieldType::Text : TypeOf(tree.ResultKind());
  const Node& root = tree.nodes.back();
  return {Text(name), type, 0, kReadOnly, {}, type == FieldType::Text ? root.collation : Collation::Romanian};
}

void RequireNewName(const Contents& contents, TextView name) {
  const std::size_t count = contents.columns.size() + (contents.calculated ? contents.calculated->Count() : 0);
  const bool isTaken = IndexOfAny(contents, name).has_value();
  if (isTaken || !store::IsIdentifier(name) || count >= store::kMostFields) {
    throw Error(contents.owner + ": campul calculat " + Quoted(name) +
                (isTaken                      ? " exista deja"
                 : count < store::kMostFields ? " nu are un nume permis"
                                              : " nu mai incape"));
  }
}

void Append(store::Store& store, FieldDef field, Tree tree) {
  const Contents& contents = store.GetContents();
  auto columns = contents.calculated ? std::make_shared<CalculatedColumns>(*contents.calculated)
                                     : std::make_shared<CalculatedColumns>();
  columns->Add(
      std::make_shared<const CalculatedColumn>(std::move(field), std::make_shared<const Tree>(std::move(tree))));
  store.SetCalculated(std::move(columns));
}

[[noreturn]] void RefuseLookup(const Contents& contents, TextView why) {
  throw Error(contents.owner + ": Lookup: " + Text(why));
}

std::shared_ptr<LookupTarget> MakeTarget(const Contents& contents, store::Store& other, std::size_t wanted) {
  auto target = std::make_shared<LookupTarget>();
  target->other = other.GetFollowers();
  target->wanted = static_cast<std::uint16_t>(wanted);
  if (const CalculatedColumn* const column = CalculatedAt(other.GetContents(), wanted)) {
    target->tree = column->GetTree();
    target->evaluator.emplace(*target->tree);
    target->reads = FieldsOf(*target->tree);
    target->parts += target->tree->nodes.size();
    for (const auto& next : target->tree->lookups) {
      target->depth = std::max(target->depth, next->depth + 1);
      target->parts += next->parts;
    }
  } else {
    target->reads.push_back(target->wanted);
  }
  target->reads.push_back(other.GetContents().schemaData->keyFields[0]);
  if (target->depth > kMostDepth || target->parts > kMostNodes) {
    RefuseLookup(contents, Quoted(FieldAt(other.GetContents(), wanted).name) + " cauta prin prea multe seturi de date");
  }
  return target;
}

/// The place of a field in the other dataset.
std::size_t RequireOther(const Contents& contents, const Contents& other, TextView name) {
  const auto index = IndexOfAny(other, name);
  if (!index) {
    RefuseLookup(contents, "campul " + Quoted(name) + " nu exista in " + Quoted(other.name));
  }
  return *index;
}

void RequireKey(const Contents& contents, const FieldDef& field, const Contents& other, TextView key) {
  const std::size_t index = RequireOther(contents, other, key);
  const auto& keyFields = other.schemaData->keyFields;
  if (keyFields.size() != 1 || keyFields[0] != index) {
    RefuseLookup(contents, "campul " + Quoted(key) + " nu este cheia din " + Quoted(other.name));
  }
  const FieldType type = FieldAt(other, index).type;
  if (KindOf(type) != KindOf(field.type)) {
    RefuseLookup(contents, "campul " + Quoted(field.name) + " de tip " + store::TraitsOf(field.type).name +
                               " nu se cauta in unul de tip " + store::TraitsOf(type).name);
  }
}

}  // namespace

void AddCalculation(store::Store& store, TextView name, TextView expression) {
  RequireNewName(store.GetContents(), name);
  Tree tree = Parse(store.GetContents(), expression, {}, name);
  FieldDef field = FieldOf(name, tree);
  Append(store, std::move(field), std::move(tree));
}

void AddLookup(store::Store& store, std::size_t field, store::Store& other, TextView key, TextView wanted,
               TextView name) {
  const Contents& contents = store.GetContents();
  RequireNewName(contents, name);
  RequireKey(contents, FieldAt(contents, field), other.GetContents(), key);
  const std::size_t found = RequireOther(contents, other.GetContents(), wanted);
  const FieldDef& definition = FieldAt(other.GetContents(), found);
  const FilterParameters none;
  TreeBuilder builder(contents, none, name, {});
  const Span span{0, static_cast<std::uint32_t>(name.size())};
  const Place from = builder.AddField(FieldAt(contents, field).name, span);
  builder.AddLookup(from, MakeTarget(contents, other, found), definition, span);
  const FieldType type = definition.type == FieldType::AutoInc ? FieldType::Int64 : definition.type;
  FieldDef made{Text(name), type, definition.size, kReadOnly, {}, definition.collation};
  Append(store, std::move(made), std::move(builder).Finish());
}

}  // namespace kiv::query
