#include "kivtools/dataset/Filter.h"

#include "dataset/query/CalculatedColumns.h"
#include "dataset/query/Evaluator.h"
#include "dataset/query/Parser.h"
#include "dataset/query/Selection.h"
#include "dataset/query/TreeBuilder.h"

namespace kiv {

FilterError::FilterError(std::size_t position, const std::string& message) : Error(message), position_(position) {}
FilterError::~FilterError() = default;

namespace {

std::shared_ptr<const query::Tree> Compile(const DatasetView& rows, TextView text, const FilterParameters& parameters) {
  return std::make_shared<const query::Tree>(query::Parse(rows.GetContents(), text, parameters));
}

}  // namespace

Expression::Expression(const DatasetView& rows, TextView text, const FilterParameters& parameters)
    : contents_(&rows.GetContents()), tree_(Compile(rows, text, parameters)) {}

FieldType Expression::Type() const noexcept {
  return query::TypeOf(tree_->ResultKind());
}

Value Expression::Evaluate(RowId row) const {
  const std::uint32_t number = store::RequireRow(*contents_, row);
  return store::ValueOf(Type(), query::Evaluator(*tree_).Evaluate(tree_->Root(), *contents_, number));
}

Filter::Filter(const DatasetView& rows, TextView text, const FilterParameters& parameters)
    : contents_(&rows.GetContents()), tree_(Compile(rows, text, parameters)) {
  query::RequireCondition(*tree_, tree_->Root());
}

bool Filter::Test(RowId row) const {
  const std::uint32_t number = store::RequireRow(*contents_, row);
  query::Evaluator evaluator(*tree_);
  const store::Cell& truth = evaluator.Evaluate(tree_->Root(), *contents_, number);
  return !truth.isNull && truth.bits != 0;
}

std::vector<RowId> Filter::Select() const {
  return query::SelectRows(*tree_, *contents_, query::BestKernels());
}

std::size_t Filter::Count() const {
  return query::CountRows(*tree_, *contents_, query::BestKernels());
}

Value Filter::Sum(TextView field) const {
  const auto index = query::IndexOfAny(*contents_, field);
  return query::SumRows(*tree_, *contents_, index ? *index : store::RequireField(*contents_, field),
                        query::BestKernels());
}

}  // namespace kiv
