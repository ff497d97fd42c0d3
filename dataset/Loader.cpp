#include "kivtools/dataset/Loader.h"

#include "dataset/store/RowLoader.h"

namespace kiv {

Loader::Loader(Dataset& dataset) : loader_(std::make_unique<store::RowLoader>(dataset.GetStore())) {}
Loader::~Loader() = default;

void Loader::Add(std::span<const ValueView> values) {
  loader_->Add(values);
}

void Loader::Finish() {
  loader_->Finish();
}

}  // namespace kiv
