#include "kivtools/UDepanarePointer.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <deque>
#include <memory>
#include <optional>
#include <set>
#include <unordered_set>

#include "core/Units.h"
#include "kivtools/TrackedInstance.h"
#include "kivtools/UTreeAVL2.h"

namespace kiv {
namespace {

constexpr TextView kFree = ">free";
constexpr char kCallerMark = '^';

std::int32_t LowBits(const void* address) noexcept {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(address)));
}

/// What is known of an address: the class of the object created there last, ">free" once it is released, and "^" with
/// a caller's address. Sorted, each entry once. The entries are texts of the tracker's pool.
class History {
 public:
  void Clear() noexcept { entries_.clear(); }
  void Add(TextView entry) {
    const auto place = std::ranges::lower_bound(entries_, entry);
    if (place == entries_.end() || *place != entry) {
      entries_.insert(place, entry);
    }
  }
  [[nodiscard]] bool IsFreed() const noexcept { return std::ranges::binary_search(entries_, kFree); }

  /// The last of the callers in sorted order.
  [[nodiscard]] std::optional<TextView> PreviousCaller() const {
    std::optional<TextView> caller;
    for (const TextView entry : entries_) {
      if (entry.starts_with(kCallerMark)) {
        caller = entry.substr(1);
      }
    }
    return caller;
  }

 private:
  std::vector<TextView> entries_;
};

/// Objects whose addresses share the low 32 bits, which are the registry's key, are chained.
struct Record {
  const void* address = nullptr;
  History history;
  Record* next = nullptr;
};

/// The payload of a registry entry.
struct Payload {
  std::uint32_t known = 0;
  std::uint32_t record = 0;  // the first of the chain
};

class Tracker {
 public:
  /// The record of an address, null if it was never registered; the registry then has an entry that says so.
  Record* Find(const void* address) {
    const Payload entry = LoadPayload(registry_.Find(LowBits(address), true));
    if (entry.known == 0) {
      return nullptr;
    }
    Record* record = &records_[entry.record];
    while (record != nullptr && record->address != address) {
      record = record->next;
    }
    return record;
  }

  /// A record for an address that Find does not know.
  void Register(const void* address, TextView className) {
    Record& record = records_.emplace_back(Record{address, {}, nullptr});
    try {
      record.history.Add(Pooled(className));
      void* const payload = registry_.Find(LowBits(address), true);
      const Payload old = LoadPayload(payload);
      record.next = old.known == 0 ? nullptr : &records_[old.record];
      const Payload entry{1, static_cast<std::uint32_t>(records_.size() - 1)};
      std::memcpy(payload, &entry, sizeof entry);
    } catch (...) {
      records_.pop_back();
      throw;
    }
  }

  /// A text that lives as long as the tracker. Class names and callers are few, however many objects there are.
  TextView Pooled(TextView text) { return *texts_.emplace(text).first; }

  std::set<const void*>& Locked() noexcept { return locked_; }

 private:
  static Payload LoadPayload(const void* from) noexcept {
    Payload payload;
    std::memcpy(&payload, from, sizeof payload);
    return payload;
  }

  TKivAVLIndex registry_{sizeof(Payload), false};
  std::deque<Record> records_;
  std::unordered_set<Text> texts_;
  std::set<const void*> locked_;
};

std::unique_ptr<Tracker> tracker;

Tracker& Started(const char* operation) {
  if (tracker == nullptr) {
    throw Error(Text(operation) + ": biblioteca nu este pornita (Initialize)");
  }
  return *tracker;
}

/// The message of an error about a released object, depending on whether the call before is known.
Error Released(const Record& record, TextView message, TextView messageWithoutCaller) {
  const std::optional<TextView> caller = record.history.PreviousCaller();
  return Error(caller ? Text(message).append(" Apelul anterior a venit de la adresa ").append(*caller)
                      : Text(messageWithoutCaller));
}

}  // namespace

bool DoNewInstance(const void* address, TextView className) {
  Tracker& started = Started("DoNewInstance");
  Record* const record = started.Find(address);
  if (record == nullptr) {
    started.Register(address, className);
    return true;
  }
  if (!record->history.IsFreed()) {
    throw Error("Apelezi DoNewInstance de 2 ori!");
  }
  const TextView pooled = started.Pooled(className);
  record->history.Clear();
  record->history.Add(pooled);
  return true;
}

bool DoNewInstance(const host::Object* object) {
  if (object == nullptr) {
    throw Error("DoNewInstance: obiectul este nul");
  }
  return DoNewInstance(object, object->ClassName());
}

bool DoFreeInstance(const void* object) {
  Record* const record = Started("DoFreeInstance").Find(object);
  if (record == nullptr) {
    throw Error("Dai FreeInstance pentru un obiect care nu exista!");
  }
  if (record->history.IsFreed()) {
    throw Released(*record, "Dai FreeInstance de 2 ori!", "Dai FreeInstance de 2 ori!");
  }
  record->history.Add(kFree);
  return true;
}

bool IsValid(const void* object) {
  const Record* const record = Started("IsValid").Find(object);
  return record != nullptr && !record->history.IsFreed();
}

bool IsValidOrBust(const void* object) {
  const Record* const record = Started("IsValidOrBust").Find(object);
  if (record == nullptr) {
    throw Error("Obiectul pe care-l verifici NU A EXISTAT NICIODATA!!!! (" + std::to_string(LowBits(object)) + ")");
  }
  if (record->history.IsFreed()) {
    throw Released(*record, "Obiectul a fost distrus!", "Obiectul nu-i bun si nu pot verifica apelul");
  }
  return true;
}

void LockObjectDestruction(const void* object) {
  if (object != nullptr) {
    Started("LockObjectDestruction").Locked().insert(object);
  }
}

void UnLockObjectDestruction(const void* object) {
  if (object != nullptr && Started("UnLockObjectDestruction").Locked().erase(object) == 0) {
    throw Error("Incerci sa deblochezi un obiect care nu a fost in prealabil blocat");
  }
}

void RecordCaller(const void* object, TextView caller) {
  Tracker& started = Started("RecordCaller");
  Record* const record = started.Find(object);
  if (record == nullptr) {
    throw Error("RecordCaller: obiectul de la adresa " + std::to_string(LowBits(object)) + " nu exista");
  }
  record->history.Add(started.Pooled(kCallerMark + Text(caller)));
}

void RecordCaller(const void* object, const void* caller) {
  RecordCaller(object, std::to_string(LowBits(caller)));
}

std::function<void(const Error&)> OnTrackedInstanceError;

void detail::NoteTrackedNew(const void* memory, TextView className) {
  if (tracker != nullptr) {
    DoNewInstance(memory, className);
  }
}

bool detail::NoteTrackedDelete(const void* memory, const void* caller) noexcept {
  if (memory == nullptr || tracker == nullptr) {
    return true;
  }
  try {
    DoFreeInstance(memory);
  } catch (const Error& error) {
    if (OnTrackedInstanceError) {
      OnTrackedInstanceError(error);
    } else {
      std::fprintf(stderr, "%s\n", error.what());
    }
    return false;
  }
  try {
    RecordCaller(memory, caller);
  } catch (const std::exception&) {
    // Without memory for it the caller stays unknown; the release has been noted.
  }
  return true;
}

void units::UDepanarePointer::StartUp() {
  tracker = std::make_unique<Tracker>();
}

void units::UDepanarePointer::ShutDown() {
  tracker.reset();
}

}  // namespace kiv
