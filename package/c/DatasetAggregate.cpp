#include "kivtools/c/DatasetAggregate.h"

#include "core/Numbers.h"
#include "kivtools/dataset/Aggregate.h"
#include "package/c/DatasetHandles.h"

struct KivAggregate {
  kiv::Aggregate aggregate;
  /// What the values that were given out last lie in.
  std::vector<kiv::AggregateGroup> groups;
  kiv::Value last;
};

using namespace kiv::c;

namespace {

const kiv::AggregateGroup& GroupAt(const KivAggregate& aggregate, std::size_t group) {
  if (group >= aggregate.groups.size()) {
    kiv::Text message = "Aggregate: grupul ";
    kiv::AppendDecimal(message, group);
    throw kiv::ListIndexError(message + " nu exista");
  }
  return aggregate.groups[group];
}

}  // namespace

extern "C" {

KivStatus KivAggregateNew(KivDataset* dataset, const char* what, size_t length, const char* groupBy,
                          size_t groupByLength, KivAggregate** aggregate) {
  return Run([=] {
    kiv::Dataset& rows = KIV_REQUIRED(dataset).Own();
    const kiv::TextView figure = KIV_TEXT(what, length);
    const kiv::TextView fields = KIV_TEXT(groupBy, groupByLength);
    KivAggregate*& made = KIV_REQUIRED(aggregate);
    made = new KivAggregate{{rows, figure, fields}, {}, {}};
  });
}

KivStatus KivAggregateNewWith(KivDataset* dataset, const char* what, size_t length, const char* groupBy,
                              size_t groupByLength, const char* names, size_t namesLength, const KivFieldValue* values,
                              size_t count, KivAggregate** aggregate) {
  return Run([=] {
    kiv::Dataset& rows = KIV_REQUIRED(dataset).Own();
    const kiv::TextView figure = KIV_TEXT(what, length);
    const kiv::TextView fields = KIV_TEXT(groupBy, groupByLength);
    const kiv::TextView given = KIV_TEXT(names, namesLength);
    KivAggregate*& made = KIV_REQUIRED(aggregate);
    made = new KivAggregate{{rows, figure, fields, ParametersOf(given, values, count)}, {}, {}};
  });
}

void KivAggregateFree(KivAggregate* aggregate) {
  delete aggregate;
}

KivAnswer KivAggregateGet(KivAggregate* aggregate, const KivFieldValue* key, size_t count, KivFieldValue* value) {
  return GiveAnswer([=] {
    KivAggregate& own = KIV_REQUIRED(aggregate);
    KivFieldValue& out = KIV_REQUIRED(value);
    own.last = count == 0 ? own.aggregate.Get() : own.aggregate.Get(GivenValues(key, count, "key").All());
    return GiveValue(own.last, out);
  });
}

KivLength KivAggregateGroupCount(KivAggregate* aggregate) {
  return GiveLength([=] {
    KivAggregate& own = KIV_REQUIRED(aggregate);
    own.groups = own.aggregate.Groups();
    return own.groups.size();
  });
}

KivAnswer KivAggregateGroupValue(KivAggregate* aggregate, size_t group, KivFieldValue* value) {
  return GiveAnswer([=] {
    const KivAggregate& own = KIV_REQUIRED(aggregate);
    KivFieldValue& out = KIV_REQUIRED(value);
    return GiveValue(GroupAt(own, group).value, out);
  });
}

KivAnswer KivAggregateGroupKey(KivAggregate* aggregate, size_t group, size_t field, KivFieldValue* value) {
  return GiveAnswer([=] {
    const KivAggregate& own = KIV_REQUIRED(aggregate);
    KivFieldValue& out = KIV_REQUIRED(value);
    const std::vector<kiv::Value>& key = GroupAt(own, group).key;
    if (field >= key.size()) {
      throw kiv::ListIndexError("Aggregate: cheia grupului nu are acest camp");
    }
    return GiveValue(key[field], out);
  });
}

}  // extern "C"
