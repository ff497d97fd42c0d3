#include "kivtools/dataset/Aggregate.h"

#include "dataset/query/AggregateState.h"

namespace kiv {

Aggregate::Aggregate(Dataset& dataset, TextView what, TextView groupBy, const FilterParameters& parameters)
    : state_(std::make_unique<query::AggregateState>(dataset.GetStore(), what, groupBy, parameters)) {}
Aggregate::~Aggregate() = default;
Aggregate::Aggregate(Aggregate&& other) noexcept = default;
Aggregate& Aggregate::operator=(Aggregate&& other) noexcept = default;

Value Aggregate::Get(std::initializer_list<ValueView> key) const {
  return Get(std::span(key.begin(), key.size()));
}
Value Aggregate::Get(std::span<const ValueView> key) const {
  return state_->Get(key);
}
std::vector<AggregateGroup> Aggregate::Groups() const {
  return state_->Groups();
}

}  // namespace kiv
