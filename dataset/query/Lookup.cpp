#include "dataset/query/Lookup.h"

namespace kiv::query {

using store::Cell;

Fault LookUp(const LookupTarget& target, const Cell& key, Cell& out, std::string& buffer) {
  store::Store* const store = target.other->GetStore();
  if (store == nullptr) {
    return Fault::DatasetGone;
  }
  out = {};
  const std::uint32_t row = store->FindCell(key);
  if (row == store::Contents::kNone) {
    return Fault::None;
  }
  if (target.tree == nullptr) {
    out = store->GetContents().Read(row, target.wanted);
    return Fault::None;
  }
  const Cell* const value = target.evaluator->TryEvaluate(target.tree->Root(), store->GetContents(), row);
  if (value == nullptr) {
    return target.evaluator->LastFault();
  }
  out = *value;
  // The next row that is looked up has its text in the same place.
  out.bytes = buffer.assign(value->bytes);
  return Fault::None;
}

std::uint64_t LookupVersion(const Tree& tree) noexcept {
  constexpr std::uint64_t kGone = std::uint64_t{1} << 48U;
  std::uint64_t version = 0;
  for (const auto& target : tree.lookups) {
    version += target->other->GetStore() == nullptr ? kGone : 0;
    for (const std::uint16_t field : target->reads) {
      version += target->other->VersionOf(field);
    }
    version += target->tree == nullptr ? 0 : LookupVersion(*target->tree);
  }
  return version;
}

std::vector<std::uint16_t> FieldsOf(const Tree& tree) {
  std::vector<std::uint16_t> fields;
  for (const Node& node : tree.nodes) {
    if (node.op == Op::Field) {
      fields.push_back(static_cast<std::uint16_t>(node.detail));
    }
  }
  return fields;
}

}  // namespace kiv::query
