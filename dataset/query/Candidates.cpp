#include "dataset/query/Candidates.h"

#include <algorithm>
#include <bit>

#include "dataset/query/Evaluator.h"
#include "dataset/query/Kernels.h"
#include "dataset/query/OrderedIndex.h"
#include "dataset/query/Ranges.h"
#include "dataset/query/Selection.h"

namespace kiv::query {
namespace {

using store::Cell;

/// Values of a field from one to another, both with; null where there is no end.
struct Interval {
  Cell from;
  Cell to;
};

/// A part of a condition that names the values of one field.
struct Sought {
  std::uint32_t field = 0;
  Collation collation = Collation::Romanian;
  std::vector<Interval> intervals;
};

/// The parts that all have to be true, in the order in which they are worked out.
std::vector<Place> PartsOf(const Tree& tree) {
  std::vector<Place> parts;
  Place place = tree.Root();
  for (; tree.nodes[place].op == Op::And; place = tree.OperandsOf(tree.nodes[place])[0]) {
    parts.push_back(tree.OperandsOf(tree.nodes[place])[1]);
  }
  parts.push_back(place);
  std::ranges::reverse(parts);
  return parts;
}

/// Whether something in it may have no value in a row.
bool CanFail(const Tree& tree, Place part) {
  const auto nodes = std::span(tree.nodes).subspan(tree.nodes[part].start, part + 1 - tree.nodes[part].start);
  // All behind Like work out values.
  return std::ranges::any_of(nodes, [](const Node& node) { return node.op > Op::Like; });
}

std::optional<Sought> SoughtText(const Tree& tree, const Node& node) {
  const auto isText = [&](std::size_t operand, Op op) {
    const Node& one = tree.Operand(node, operand);
    return one.op == op && one.kind == Kind::Text && (op == Op::Field || !tree.constants[one.detail].isNull);
  };
  const auto constant = [&](std::size_t operand) { return tree.constants[tree.Operand(node, operand).detail]; };
  const auto interval = [&](const Cell& from, const Cell& to) {
    return Sought{tree.Operand(node, 0).detail, node.collation, {{from, to}}};
  };
  if (node.op == Op::Between && isText(0, Op::Field) && isText(1, Op::Constant) && isText(2, Op::Constant)) {
    return interval(constant(1), constant(2));
  }
  if (node.op != Op::Compare || !isText(0, Op::Field) || !isText(1, Op::Constant)) {
    return std::nullopt;
  }
  // The ends are looked at themselves, be they without.
  switch (node.relation) {
    case Relation::Equal:
      return interval(constant(1), constant(1));
    case Relation::Less:
    case Relation::LessOrEqual:
      return interval({}, constant(1));
    case Relation::Greater:
    case Relation::GreaterOrEqual:
      return interval(constant(1), {});
    default:
      return std::nullopt;
  }
}

std::optional<Sought> SoughtBy(const Tree& tree, Place part, const store::SchemaData& schema) {
  const Node& node = tree.nodes[part];
  if (node.op != Op::Compare && node.op != Op::Between && node.op != Op::In) {
    return std::nullopt;
  }
  const auto ranges = RangesOf(tree, node, schema);
  if (!ranges) {
    return SoughtText(tree, node);
  }
  if (ranges->isNegated) {
    return std::nullopt;
  }
  const bool isDouble = schema.fields[ranges->field].type == FieldType::Double;
  const auto cellOf = [isDouble](std::int64_t number, double value) {
    return Cell{.bits = isDouble ? std::bit_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(number),
                .isNull = false};
  };
  Sought sought{ranges->field, Collation::Romanian, {}};
  for (const Range& range : ranges->ranges) {
    if (!range.isEmpty) {
      sought.intervals.push_back({cellOf(range.low, range.lowDouble), cellOf(range.high, range.highDouble)});
    }
  }
  return sought;
}

/// The rows whose key is sought; nothing where the field is not the key or more than single values are.
std::optional<std::vector<std::uint32_t>> RowsByKey(store::Store& store, const Sought& sought) {
  const store::Contents& contents = store.GetContents();
  const auto& key = contents.schemaData->keyFields;
  const bool isText = contents.columns[sought.field].type == FieldType::Text;
  const auto isValue = [](const Interval& interval) {
    return !interval.from.isNull && !interval.to.isNull && interval.from.bits == interval.to.bits &&
           interval.from.bytes == interval.to.bytes;
  };
  if (key.size() != 1 || key[0] != sought.field || (isText && sought.collation != Collation::Binary) ||
      !std::ranges::all_of(sought.intervals, isValue)) {
    return std::nullopt;
  }
  std::vector<std::uint32_t> rows;
  for (const Interval& interval : sought.intervals) {
    if (const std::uint32_t row = store.FindCell(interval.from); row != store::Contents::kNone) {
      rows.push_back(row);
    }
  }
  return rows;
}

/// Positions in an index, the last of them not with.
struct Stretch {
  std::uint32_t begin;
  std::uint32_t end;
};

/// The rows of an index in which a part may be true.
class IndexWalk {
 public:
  /// `withNulls` where it matters that it may be unknown.
  IndexWalk(const OrderedIndex& index, const Sought& sought, bool withNulls) : index_(index) {
    const OrderField& by = index.GetOrder()[0];
    const Stretch nulls{Search({}, false), Search({}, true)};
    const Stretch values = by.nullsLast ? Stretch{0, nulls.begin} : Stretch{nulls.end, index.Count()};
    for (const Interval& interval : sought.intervals) {
      const Cell& first = by.isDescending ? interval.to : interval.from;
      const Cell& last = by.isDescending ? interval.from : interval.to;
      stretches_.push_back(
          {first.isNull ? values.begin : Search(first, false), last.isNull ? values.end : Search(last, true)});
    }
    if (withNulls) {
      stretches_.push_back(nulls);
    }
  }

  [[nodiscard]] std::size_t Count() const noexcept {
    std::size_t count = 0;
    for (const Stretch& stretch : stretches_) {
      count += stretch.end > stretch.begin ? stretch.end - stretch.begin : 0;
    }
    return count;
  }
  [[nodiscard]] std::vector<std::uint32_t> Rows() const {
    std::vector<std::uint32_t> rows;
    for (const Stretch& stretch : stretches_) {
      for (std::uint32_t position = stretch.begin; position < stretch.end; ++position) {
        rows.push_back(index_.At(position));
      }
    }
    return rows;
  }

 private:
  [[nodiscard]] std::uint32_t Search(const Cell& cell, bool after) const noexcept {
    return index_.Search({&cell, 1}, after);
  }
  const OrderedIndex& index_;
  std::vector<Stretch> stretches_;
};

/// An index whose order begins with the field; null where there is none.
const OrderedIndex* IndexOf(store::Store& store, const Sought& sought) {
  const bool isText = KindOf(store.GetContents().columns[sought.field].type) == Kind::Text;
  const OrderedIndex* found = nullptr;
  store.GetFollowers()->ForEach([&](const store::Follower& follower) {
    const auto* const index = dynamic_cast<const OrderedIndex*>(&follower);
    if (index != nullptr && index->HoldsAllRows() && !index->GetOrder().empty() &&
        index->GetOrder()[0].field == sought.field && (!isText || index->GetOrder()[0].collation == sought.collation)) {
      found = index;
    }
  });
  return found;
}

}  // namespace

std::optional<std::vector<std::uint32_t>> FewCandidates(store::Store& store, const Tree& tree) {
  constexpr std::size_t kOneOf = 20;
  const std::vector<Place> parts = PartsOf(tree);
  const auto canFail = [&tree](Place part) { return CanFail(tree, part); };
  // What stands in front of a part is worked out in every row.
  for (auto part = parts.begin(); part != parts.end() && (part == parts.begin() || !canFail(part[-1])); ++part) {
    const auto sought = SoughtBy(tree, *part, *store.GetContents().schemaData);
    if (!sought) {
      continue;
    }
    auto rows = RowsByKey(store, *sought);
    if (const OrderedIndex* const index = rows ? nullptr : IndexOf(store, *sought)) {
      // Where this part is unknown, those behind it are worked out, too.
      const IndexWalk walk(*index, *sought, std::any_of(part + 1, parts.end(), canFail));
      if (walk.Count() <= index->Count() / kOneOf) {
        rows = walk.Rows();
      }
    }
    if (rows) {
      std::ranges::sort(*rows);
      rows->erase(std::unique(rows->begin(), rows->end()), rows->end());
      return rows;
    }
  }
  return std::nullopt;
}

std::vector<std::uint32_t> PassingRows(store::Store& store, const Tree& tree) {
  const store::Contents& contents = store.GetContents();
  std::vector<std::uint32_t> passing;
  if (const auto candidates = FewCandidates(store, tree)) {
    Evaluator evaluator(tree);
    for (const std::uint32_t row : *candidates) {
      const Cell& truth = evaluator.Evaluate(tree.Root(), contents, row);
      if (!truth.isNull && truth.bits != 0) {
        passing.push_back(row);
      }
    }
    return passing;
  }
  const std::vector<RowId> selected = SelectRows(tree, contents, BestKernels());
  passing.resize(selected.size());
  std::ranges::transform(selected, passing.begin(), [](RowId row) { return static_cast<std::uint32_t>(row); });
  return passing;
}

}  // namespace kiv::query
