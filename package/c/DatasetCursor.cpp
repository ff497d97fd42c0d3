#include "kivtools/c/DatasetCursor.h"

#include "kivtools/dataset/Cursor.h"
#include "package/c/DatasetHandles.h"

using namespace kiv::c;

namespace {

/// Values that a host has handed over, of which there may be none.
class ListOfValues {
 public:
  ListOfValues(const KivFieldValue* values, std::size_t count, const char* name) {
    if (count > 0) {
      given_.emplace(values, count, name);
    }
  }
  [[nodiscard]] std::span<const kiv::ValueView> All() const noexcept {
    return given_ ? given_->All() : std::span<const kiv::ValueView>();
  }

 private:
  std::optional<GivenValues> given_;
};

}  // namespace

struct KivCursor {
  kiv::Cursor cursor;
};

extern "C" {

KivStatus KivCursorNew(KivDataset* dataset, KivCursor** cursor) {
  return Run([=] {
    KivCursor*& result = KIV_REQUIRED(cursor);
    result = new KivCursor{kiv::Cursor(KIV_REQUIRED(dataset).Own())};
  });
}

KivStatus KivCursorClone(const KivCursor* cursor, KivCursor** clone) {
  return Run([=] {
    KivCursor*& result = KIV_REQUIRED(clone);
    result = new KivCursor(KIV_REQUIRED(cursor));
  });
}

void KivCursorFree(KivCursor* cursor) {
  delete cursor;
}

KivStatus KivCursorOrderBy(KivCursor* cursor, const char* order, size_t length) {
  return Run([=] {
    const kiv::TextView wanted = KIV_TEXT(order, length);
    KIV_REQUIRED(cursor).cursor.OrderBy(wanted);
  });
}

KivLength KivCursorOrder(const KivCursor* cursor, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return KIV_REQUIRED(cursor).cursor.Order(); });
}

KivStatus KivCursorFilter(KivCursor* cursor, const char* condition, size_t length) {
  return Run([=] {
    const kiv::TextView wanted = KIV_TEXT(condition, length);
    kiv::Cursor& filtered = KIV_REQUIRED(cursor).cursor;
    if (wanted.empty()) {
      filtered.ClearFilter();
    } else {
      filtered.Filter(wanted);
    }
  });
}

KivStatus KivCursorFilterWith(KivCursor* cursor, const char* condition, size_t length, const char* names,
                              size_t namesLength, const KivFieldValue* values, size_t count) {
  return Run([=] {
    const kiv::TextView wanted = KIV_TEXT(condition, length);
    const kiv::TextView given = KIV_TEXT(names, namesLength);
    KIV_REQUIRED(cursor).cursor.Filter(wanted, ParametersOf(given, values, count));
  });
}

KivStatus KivCursorSetRange(KivCursor* cursor, const KivFieldValue* from, size_t fromCount, const KivFieldValue* to,
                            size_t toCount) {
  return Run([=] {
    const ListOfValues first(from, fromCount, "from");
    const ListOfValues last(to, toCount, "to");
    KIV_REQUIRED(cursor).cursor.SetRange(first.All(), last.All());
  });
}

KivAnswer KivCursorFirst(KivCursor* cursor) {
  return GiveAnswer([=] { return KIV_REQUIRED(cursor).cursor.First(); });
}
KivAnswer KivCursorLast(KivCursor* cursor) {
  return GiveAnswer([=] { return KIV_REQUIRED(cursor).cursor.Last(); });
}
KivAnswer KivCursorNext(KivCursor* cursor) {
  return GiveAnswer([=] { return KIV_REQUIRED(cursor).cursor.Next(); });
}
KivAnswer KivCursorPrior(KivCursor* cursor) {
  return GiveAnswer([=] { return KIV_REQUIRED(cursor).cursor.Prior(); });
}
KivAnswer KivCursorAtEnd(const KivCursor* cursor) {
  return GiveAnswer([=] { return KIV_REQUIRED(cursor).cursor.AtEnd(); });
}
KivAnswer KivCursorAtStart(const KivCursor* cursor) {
  return GiveAnswer([=] { return KIV_REQUIRED(cursor).cursor.AtStart(); });
}

KivAnswer KivCursorRow(const KivCursor* cursor, uint32_t* row) {
  return GiveAnswer([=] {
    const kiv::Cursor& standing = KIV_REQUIRED(cursor).cursor;
    std::uint32_t& result = KIV_REQUIRED(row);
    const bool isOn = !standing.AtStart() && !standing.AtEnd();
    if (isOn) {
      result = static_cast<std::uint32_t>(standing.Row());
    }
    return isOn;
  });
}

KivAnswer KivCursorLocate(KivCursor* cursor, const size_t* fields, const KivFieldValue* values, size_t count) {
  return GiveAnswer([=] {
    const GivenValues given(values, count, "values");
    const std::size_t* const places = &KIV_REQUIRED(fields);
    KivCursor& sought = KIV_REQUIRED(cursor);
    std::vector<kiv::FieldValue> wanted;
    for (std::size_t i = 0; i < count; ++i) {
      wanted.push_back({sought.cursor.FieldAt(places[i]), given.All()[i]});
    }
    return sought.cursor.Locate(wanted);
  });
}

KivAnswer KivCursorLocateNearest(KivCursor* cursor, const KivFieldValue* values, size_t count) {
  return GiveAnswer([=] {
    const ListOfValues given(values, count, "values");
    return KIV_REQUIRED(cursor).cursor.LocateNearest(given.All());
  });
}

KivLength KivCursorCount(KivCursor* cursor) {
  return GiveLength([=] { return KIV_REQUIRED(cursor).cursor.Count(); });
}

KivLength KivCursorPosition(KivCursor* cursor) {
  return GiveLength([=] { return KIV_REQUIRED(cursor).cursor.Position(); });
}

KivStatus KivCursorGoTo(KivCursor* cursor, size_t position) {
  return Run([=] { KIV_REQUIRED(cursor).cursor.GoTo(position); });
}

KivAnswer KivCursorGoToRow(KivCursor* cursor, uint32_t row) {
  return GiveAnswer([=] { return KIV_REQUIRED(cursor).cursor.GoTo(kiv::RowId{row}); });
}

}  // extern "C"
