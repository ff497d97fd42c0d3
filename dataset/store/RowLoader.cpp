#include "dataset/store/RowLoader.h"

#include <algorithm>

#include "core/Numbers.h"
#include "dataset/store/KeyHistory.h"

namespace kiv::store {

RowLoader::RowLoader(Store& store)
    : store_(store), contents_(store.contents_), nextTemporary_(store.contents_.nextTemporary) {
  store_.CheckMayEdit();
  if (store_.HasRecorder()) {
    throw Error(contents_.owner + ": nu se incarca randuri cat timp are un jurnal");
  }
  store_.isLoading_ = true;
  store_.pendingRows_ = 0;
}

RowLoader::~RowLoader() {
  if (!isDone_) {
    store_.isLoading_ = false;
    store_.pendingRows_ = 0;
  }
}

void RowLoader::Add(std::span<const ValueView> values) {
  CheckOpen();
  const std::uint32_t row = contents_.rowCount + store_.pendingRows_;
  if (values.size() != contents_.columns.size() || row >= kMostRows) {
    Text message = contents_.owner + ": un rand are ";
    AppendDecimal(message, contents_.columns.size());
    message += " valori, nu ";
    AppendDecimal(message, values.size());
    throw Error(row >= kMostRows ? contents_.owner + ": nu mai incape niciun rand" : message);
  }
  store_.newRows_.Reach(contents_.columns, row);
  for (std::size_t i = 0; i < values.size(); ++i) {
    const FieldDef& field = contents_.schemaData->fields[i];
    Cell cell;
    MakeCellIn(cell, field, values[i], contents_.owner);
    if (cell.isNull && (Has(field.flags, kRequired) || Has(field.flags, kKey))) {
      throw Error(contents_.owner + ": campul " + Quoted(field.name) + " trebuie completat");
    }
    store_.Intern(i, cell);
    store_.PutNew(i, row, cell);
  }
  for (const std::uint16_t field : store_.autoIncs_) {
    nextTemporary_ = std::min(nextTemporary_, Store::BelowOf(contents_.columns[field].Load(row)));
  }
  ++store_.pendingRows_;
}

void RowLoader::CheckOpen() const {
  if (isDone_) {
    throw Error(contents_.owner + ": incarcarea s-a incheiat");
  }
}

void RowLoader::Finish() {
  CheckOpen();
  const std::uint32_t rows = store_.pendingRows_;
  store_.keys_.Build(contents_.rowCount + rows);
  try {
    // A new row may not have the key that another one would get back.
    CheckKeyHistory(contents_, store_.keys_);
  } catch (...) {
    store_.keys_.Break();
    throw;
  }
  contents_.rowCount += rows;
  contents_.counts[static_cast<std::size_t>(StoredState::Unmodified)] += rows;
  contents_.nextTemporary = nextTemporary_;
  store_.pendingRows_ = 0;
  store_.isLoading_ = false;
  isDone_ = true;
  if (store_.followers_ != nullptr) {
    store_.followers_->RowsAdded();
  }
  store_.TellOfAll();
}

}  // namespace kiv::store
