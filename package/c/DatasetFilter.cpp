#include "kivtools/c/DatasetFilter.h"

#include "core/Trim.h"
#include "dataset/query/CalculatedColumns.h"
#include "dataset/store/Cell.h"
#include "kivtools/dataset/Filter.h"
#include "package/c/DatasetHandles.h"

struct KivFilter {
  const kiv::DatasetView& rows;
  kiv::Filter filter;
};

struct KivExpression {
  kiv::Expression expression;
  /// What the last value that was given out lies in.
  kiv::Value last;
};

using namespace kiv::c;

namespace {

kiv::TextView NameOf(const kiv::DatasetView& rows, std::size_t field) {
  return kiv::query::FieldAt(rows.GetContents(), rows.FieldAt(field).Index()).name;
}

}  // namespace

extern "C" {

KivStatus KivDatasetCalculate(KivDataset* dataset, const char* name, size_t length, const char* expression,
                              size_t expressionLength, size_t* field) {
  return Run([=] {
    kiv::Dataset& rows = KIV_REQUIRED(dataset).Own();
    const kiv::TextView own = KIV_TEXT(name, length);
    const kiv::TextView formula = KIV_TEXT(expression, expressionLength);
    std::size_t& made = KIV_REQUIRED(field);
    made = rows.Calculate(own, formula).Index();
  });
}

KivStatus KivDatasetLookup(KivDataset* dataset, size_t by, KivDataset* other, size_t key, size_t wanted,
                           const char* name, size_t length, size_t* field) {
  return Run([=] {
    kiv::Dataset& rows = KIV_REQUIRED(dataset).Own();
    kiv::Dataset& others = KIV_REQUIRED(other).Own();
    const kiv::TextView own = KIV_TEXT(name, length);
    std::size_t& made = KIV_REQUIRED(field);
    made = rows.Lookup(rows.FieldAt(by), others, NameOf(others, key), NameOf(others, wanted), own).Index();
  });
}

KivStatus KivFilterNew(const KivDataset* dataset, const char* text, size_t length, const char* names,
                       size_t namesLength, const KivFieldValue* values, size_t count, KivFilter** filter) {
  return Run([=] {
    const kiv::DatasetView& rows = KIV_REQUIRED(dataset).View();
    const kiv::TextView condition = KIV_TEXT(text, length);
    KivFilter*& made = KIV_REQUIRED(filter);
    made = new KivFilter{rows, {rows, condition, ParametersOf(KIV_TEXT(names, namesLength), values, count)}};
  });
}

void KivFilterFree(KivFilter* filter) {
  delete filter;
}

KivAnswer KivFilterTest(const KivFilter* filter, uint32_t row) {
  return GiveAnswer([=] { return KIV_REQUIRED(filter).filter.Test(kiv::RowId{row}); });
}

KivLength KivFilterCount(const KivFilter* filter) {
  return GiveLength([=] { return KIV_REQUIRED(filter).filter.Count(); });
}

KivLength KivFilterSelect(const KivFilter* filter, uint32_t* rows, size_t capacity) {
  return GiveLength([=] {
    const kiv::Filter& condition = KIV_REQUIRED(filter).filter;
    KIV_BUFFER(rows, capacity);
    const std::vector<kiv::RowId> selected = condition.Select();
    for (std::size_t i = 0; i < std::min(capacity, selected.size()); ++i) {
      rows[i] = static_cast<std::uint32_t>(selected[i]);
    }
    return selected.size();
  });
}

KivAnswer KivFilterSum(const KivFilter* filter, size_t field, KivFieldValue* sum) {
  return GiveAnswer([=] {
    const KivFilter& own = KIV_REQUIRED(filter);
    KivFieldValue& out = KIV_REQUIRED(sum);
    return GiveValue(own.filter.Sum(NameOf(own.rows, field)), out);
  });
}

KivStatus KivExpressionNew(const KivDataset* dataset, const char* text, size_t length, const char* names,
                           size_t namesLength, const KivFieldValue* values, size_t count, KivExpression** expression) {
  return Run([=] {
    const kiv::DatasetView& rows = KIV_REQUIRED(dataset).View();
    const kiv::TextView formula = KIV_TEXT(text, length);
    KivExpression*& made = KIV_REQUIRED(expression);
    made = new KivExpression{{rows, formula, ParametersOf(KIV_TEXT(names, namesLength), values, count)}, {}};
  });
}

void KivExpressionFree(KivExpression* expression) {
  delete expression;
}

KivAnswer KivExpressionType(const KivExpression* expression) {
  return static_cast<KivAnswer>(
      GiveLength([=] { return static_cast<std::size_t>(KIV_REQUIRED(expression).expression.Type()); }));
}

KivAnswer KivExpressionEvaluate(KivExpression* expression, uint32_t row, KivFieldValue* value) {
  return GiveAnswer([=] {
    KivExpression& own = KIV_REQUIRED(expression);
    KivFieldValue& out = KIV_REQUIRED(value);
    own.last = own.expression.Evaluate(kiv::RowId{row});
    return GiveValue(own.last, out);
  });
}

}  // extern "C"
