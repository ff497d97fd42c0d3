#include "dataset/query/VectorPlan.h"

#include <algorithm>
#include <optional>

namespace kiv::query {
namespace {

/// An expression that needs more is worked out row by row.
constexpr std::uint32_t kMostRegisters = 64;

bool NeedsBytes(Kind kind) noexcept {
  return kind == Kind::Text || kind == Kind::Wide || kind == Kind::Guid || kind == Kind::Bytes;
}

/// The fields that a part reads.
struct Reads {
  enum class Fields : std::uint8_t { None, One, Several };
  Fields fields = Fields::None;
  std::uint32_t field = 0;

  void Add(const Reads& other) noexcept {
    if (other.fields == Fields::None) {
      return;
    }
    const bool isSame = fields == Fields::None || (fields == Fields::One && field == other.field);
    fields = isSame ? other.fields : Fields::Several;
    field = other.field;
  }
};

std::vector<Reads> ReadsOf(const Tree& tree) {
  std::vector<Reads> reads(tree.nodes.size());
  for (std::size_t i = 0; i < tree.nodes.size(); ++i) {
    const Node& node = tree.nodes[i];
    if (node.op == Op::Field) {
      reads[i] = {Reads::Fields::One, node.detail};
    }
    for (const Place operand : tree.OperandsOf(node)) {
      reads[i].Add(reads[operand]);
    }
  }
  return reads;
}

/// Registers that are free again once what is in them has been used.
class RegisterFile {
 public:
  std::uint32_t Take() {
    if (free_.empty()) {
      return count_++;
    }
    const std::uint32_t taken = free_.back();
    free_.pop_back();
    return taken;
  }
  void GiveBack(std::uint32_t taken) { free_.push_back(taken); }
  [[nodiscard]] std::uint32_t Count() const noexcept { return count_; }

 private:
  std::vector<std::uint32_t> free_;
  std::uint32_t count_ = 0;
};

class Planner {
 public:
  Planner(const Tree& tree, const store::Contents& contents, VectorPlan& plan)
      : tree_(tree), contents_(contents), plan_(plan), reads_(ReadsOf(tree)), ways_(tree.nodes.size()) {}

  void Plan() {
    ChooseWays();
    MakeSteps();
    if (plan_.conditions + plan_.numbers > kMostRegisters) {
      PlanByRows();
    }
  }

 private:
  void ChooseWays() {
    ways_[tree_.Root()] = Choose(tree_.Root());
    // Parents come after their operands, so each way is known before those below it.
    for (Place place = tree_.Root() + 1; place-- > 0;) {
      if (ways_[place] && GoesOn(*ways_[place])) {
        ChooseOperands(place);
      }
    }
  }

  static bool GoesOn(Way way) noexcept { return way >= Way::Not && way != Way::Guard; }

  void ChooseOperands(Place place) {
    const Node& node = tree_.nodes[place];
    for (const Place operand : tree_.OperandsOf(node)) {
      ways_[operand] = Choose(operand);
    }
    if (node.op == Op::And || node.op == Op::Or) {
      ways_[tree_.Operand(node, 1).start - 1] = Way::Guard;
    }
  }

  [[nodiscard]] Way Choose(Place place) const {
    const Node& node = tree_.nodes[place];
    if (node.op == Op::Constant) {
      return Way::Constant;
    }
    if (node.op == Op::Field) {
      return Way::Field;
    }
    if (node.kind == Kind::Boolean && HasEntries(reads_[place])) {
      return Way::Entries;
    }
    switch (node.op) {
      case Op::And:
        return Way::And;
      case Op::Or:
        return Way::Or;
      case Op::Not:
        return Way::Not;
      case Op::IsNull:
        return tree_.Operand(node, 0).op == Op::Field ? Way::NullsOf : ApplyOrRows(node);
      case Op::Compare:
        return ChooseComparison(node);
      case Op::Between:
      case Op::In:
        return RangesOf(tree_, node, *contents_.schemaData) ? Way::Ranges : ApplyOrRows(node);
      case Op::Add:
      case Op::Subtract:
        return node.kind != Kind::Double && HaveKind(node, node.kind) && IsNumber(node.kind) ? Way::AddIntegers
                                                                                             : ApplyOrRows(node);
      default:
        return ApplyOrRows(node);
    }
  }

  [[nodiscard]] bool HasEntries(const Reads& reads) const noexcept {
    if (reads.fields != Reads::Fields::One) {
      return false;
    }
    const store::Column& column = contents_.columns[reads.field];
    return column.type == FieldType::Text && column.texts.HasDictionary() &&
           column.texts.EntryCount() <= contents_.rowCount;
  }

  [[nodiscard]] bool HaveKind(const Node& node, Kind kind) const noexcept {
    return tree_.Operand(node, 0).kind == kind && tree_.Operand(node, 1).kind == kind;
  }

  [[nodiscard]] Way ChooseComparison(const Node& node) const {
    if (RangesOf(tree_, node, *contents_.schemaData)) {
      return Way::Ranges;
    }
    const Kind kind = tree_.Operand(node, 0).kind;
    if (!HaveKind(node, kind) || NeedsBytes(kind) || IsConditionKind(kind)) {
      return ApplyOrRows(node);
    }
    return kind == Kind::Double ? Way::CompareDoubles : Way::CompareIntegers;
  }

  [[nodiscard]] Way ApplyOrRows(const Node& node) const noexcept {
    const auto needsBytes = [this](Place operand) { return NeedsBytes(tree_.nodes[operand].kind); };
    return std::ranges::any_of(tree_.OperandsOf(node), needsBytes) ? Way::Rows : Way::Apply;
  }

  void MakeSteps() {
    plan_.registers.assign(tree_.nodes.size(), 0);
    std::vector<std::uint32_t> stepOf(tree_.nodes.size());
    for (Place place = 0; place < tree_.nodes.size(); ++place) {
      if (ways_[place]) {
        stepOf[place] = static_cast<std::uint32_t>(plan_.steps.size());
        MakeStep(*ways_[place], place);
      }
    }
    for (Step& step : plan_.steps) {
      if (step.way == Way::Guard) {
        step.detail = stepOf[tree_.nodes[step.place].detail];
      }
    }
    plan_.conditions = conditions_.Count();
    plan_.numbers = numbers_.Count();
  }

  void MakeStep(Way way, Place place) {
    const Node& node = tree_.nodes[place];
    Step step{way, place};
    if (way == Way::Guard) {
      plan_.steps.push_back(step);
      return;
    }
    step.out = FileOf(node.kind).Take();
    if (way == Way::Ranges) {
      step.detail = static_cast<std::uint32_t>(plan_.ranges.size());
      plan_.ranges.push_back(*RangesOf(tree_, node, *contents_.schemaData));
    } else if (way == Way::Entries) {
      step.detail = static_cast<std::uint32_t>(plan_.entryFields.size());
      plan_.entryFields.push_back(reads_[place].field);
    }
    plan_.registers[place] = step.out;
    plan_.steps.push_back(step);
    if (GoesOn(way)) {
      for (const Place operand : tree_.OperandsOf(node)) {
        FileOf(tree_.nodes[operand].kind).GiveBack(plan_.registers[operand]);
      }
    }
  }

  RegisterFile& FileOf(Kind kind) noexcept { return IsConditionKind(kind) ? conditions_ : numbers_; }

  void PlanByRows() {
    plan_.steps = {Step{Way::Rows, tree_.Root()}};
    plan_.registers.assign(tree_.nodes.size(), 0);
    plan_.ranges.clear();
    plan_.entryFields.clear();
    plan_.conditions = 1;
    plan_.numbers = 1;
  }

  const Tree& tree_;
  const store::Contents& contents_;
  VectorPlan& plan_;
  std::vector<Reads> reads_;
  std::vector<std::optional<Way>> ways_;
  RegisterFile conditions_;
  RegisterFile numbers_;
};

}  // namespace

VectorPlan::VectorPlan(const Tree& tree, const store::Contents& contents) {
  Planner(tree, contents, *this).Plan();
}

}  // namespace kiv::query
