#include "kivtools/c/DatasetArrow.h"

#include "kivtools/dataset/Arrow.h"
#include "package/c/Abi.h"
#include "package/c/DatasetHandles.h"

using namespace kiv::c;

namespace {

kiv::ArrowAmounts AmountsOf(std::int32_t options) {
  if ((options & ~KIV_ARROW_TEN_THOUSANDTHS) != 0) {
    throw ArgumentError("options: valoare necunoscuta");
  }
  return options == 0 ? kiv::ArrowAmounts::Decimal : kiv::ArrowAmounts::TenThousandths;
}

}  // namespace

extern "C" {

KivStatus KivDatasetArrowExport(KivDataset* dataset, int32_t options, ArrowArrayStream* stream) {
  return Run([=] {
    auto& rows = KIV_REQUIRED(dataset).rows;
    auto* const own = std::get_if<kiv::Dataset>(&rows);
    kiv::ExportArrow(own != nullptr ? own->TakeSnapshot() : *std::get_if<kiv::Snapshot>(&rows), KIV_REQUIRED(stream),
                     {.amounts = AmountsOf(options)});
  });
}

KivStatus KivDatasetArrowImport(ArrowArrayStream* stream, const char* name, size_t length, const KivSchema* types,
                                int32_t options, KivDataset** dataset) {
  return Run([=] {
    KivDataset*& result = KIV_REQUIRED(dataset);
    kiv::ArrowImportOptions known{.amounts = AmountsOf(options)};
    if (types != nullptr) {
      known.fields = types->fields;
    }
    result = new KivDataset(kiv::ImportArrow(KIV_REQUIRED(stream), KIV_TEXT(name, length), known));
  });
}

}  // extern "C"
