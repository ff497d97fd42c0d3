#include <gtest/gtest.h>

#include <tuple>

#include "Expect.h"
#include "kivtools/Package.h"
#include "kivtools/TrackedInstance.h"
#include "kivtools/UDepanarePointer.h"

namespace kiv {
namespace {

const void* At(std::uintptr_t address) {
  return reinterpret_cast<const void*>(address);
}

/// The message that an operation throws, empty if it throws none.
template <class Operation>
Text Complaint(Operation&& operation) {
  try {
    operation();
  } catch (const Error& error) {
    return error.what();
  }
  return {};
}

Text NewComplaint(const void* p) {
  return Complaint([p] { EXPECT_TRUE(DoNewInstance(p, "TClasa")); });
}
Text FreeComplaint(const void* p) {
  return Complaint([p] { EXPECT_TRUE(DoFreeInstance(p)); });
}
Text BustComplaint(const void* p) {
  return Complaint([p] { EXPECT_TRUE(IsValidOrBust(p)); });
}
Text UnLockComplaint(const void* p) {
  return Complaint([p] { UnLockObjectDestruction(p); });
}

class LifetimeTracker : public testing::Test {
 protected:
  LifetimeTracker() { Initialize(); }
  ~LifetimeTracker() override { Finalize(); }
};

TEST_F(LifetimeTracker, NamesEachMistake) {
  const void* const p = At(4096);
  EXPECT_FALSE(IsValid(p));
  EXPECT_EQ(FreeComplaint(p), "Dai FreeInstance pentru un obiect care nu exista!");
  EXPECT_EQ(BustComplaint(p), "Obiectul pe care-l verifici NU A EXISTAT NICIODATA!!!! (4096)");
  for (int life = 0; life < 2; ++life) {  // an address may be used again
    EXPECT_EQ(NewComplaint(p), "");
    EXPECT_TRUE(IsValid(p));
    EXPECT_EQ(BustComplaint(p), "");
    EXPECT_EQ(NewComplaint(p), "Apelezi DoNewInstance de 2 ori!");
    EXPECT_TRUE(IsValid(p));
    EXPECT_EQ(FreeComplaint(p), "");
    EXPECT_FALSE(IsValid(p));
    EXPECT_EQ(FreeComplaint(p), "Dai FreeInstance de 2 ori!") << "callers of the last life are forgotten";
    EXPECT_EQ(BustComplaint(p), "Obiectul nu-i bun si nu pot verifica apelul");
    RecordCaller(p, At(70'000));
    RecordCaller(p, At(8));  // the greatest text is shown, not the last call
    EXPECT_EQ(FreeComplaint(p), "Dai FreeInstance de 2 ori! Apelul anterior a venit de la adresa 8");
    EXPECT_EQ(BustComplaint(p), "Obiectul a fost distrus! Apelul anterior a venit de la adresa 8");
  }
  ExpectError<Error>([] { RecordCaller(At(12), "x"); }, "RecordCaller: obiectul de la adresa 12 nu exista");
  EXPECT_EQ(BustComplaint(At(0x80000000U)), "Obiectul pe care-l verifici NU A EXISTAT NICIODATA!!!! (-2147483648)");
}

TEST_F(LifetimeTracker, ReadsClassNamesAsHistoryEntries) {
  DoNewInstance(At(16), ">free");
  EXPECT_FALSE(IsValid(At(16)));
  DoNewInstance(At(32), "^cineva");
  DoFreeInstance(At(32));
  EXPECT_EQ(FreeComplaint(At(32)), "Dai FreeInstance de 2 ori! Apelul anterior a venit de la adresa cineva");
}

TEST_F(LifetimeTracker, KnowsObjectsOfTheFramework) {
  struct Form : host::Object {
    [[nodiscard]] TextView ClassName() const override { return "TForm"; }
  } form;
  EXPECT_TRUE(DoNewInstance(&form));
  EXPECT_TRUE(IsValid(&form));
  ExpectError<Error>([] { DoNewInstance(static_cast<const host::Object*>(nullptr)); },
                     "DoNewInstance: obiectul este nul");
}

TEST_F(LifetimeTracker, LocksAreARecordOnly) {
  constexpr TextView kNotLocked = "Incerci sa deblochezi un obiect care nu a fost in prealabil blocat";
  const void* const p = At(0xFFFFFFF0U);
  LockObjectDestruction(nullptr);
  UnLockObjectDestruction(nullptr);
  EXPECT_EQ(UnLockComplaint(p), kNotLocked);
  LockObjectDestruction(p);
  LockObjectDestruction(p);
  EXPECT_EQ(NewComplaint(p), "");
  EXPECT_EQ(FreeComplaint(p), "");
  EXPECT_EQ(UnLockComplaint(p), "");
  EXPECT_EQ(UnLockComplaint(p), kNotLocked);
}

TEST_F(LifetimeTracker, TellsFullAddressesApart) {
  if constexpr (sizeof(void*) > 4) {
    for (std::uint64_t high = 0; high < 3; ++high) {
      EXPECT_EQ(NewComplaint(At(static_cast<std::uintptr_t>(high << 32U | 64U))), "");
    }
    const void* const middle = At(static_cast<std::uintptr_t>(std::uint64_t{1} << 32U | 64U));
    EXPECT_EQ(FreeComplaint(middle), "");
    EXPECT_FALSE(IsValid(middle));
    EXPECT_TRUE(IsValid(At(64)));
    LockObjectDestruction(middle);
    EXPECT_NE(UnLockComplaint(At(64)), "");
  }
}

int destroyed = 0;

struct Plain final : TrackedInstance<Plain> {
  explicit Plain(bool fails = false) {
    if (fails) {
      throw std::runtime_error("constructor");
    }
  }
  ~Plain() { ++destroyed; }
  int value = 7;
};
struct Base : TrackedInstance<Base> {
  virtual ~Base() { ++destroyed; }
};
struct Padding {
  virtual ~Padding() = default;
  std::int64_t value = 0;
};
struct Derived final : Padding, Base {  // the tracked part does not lie at its start
  ~Derived() override { ++destroyed; }
};

TEST_F(LifetimeTracker, TracksClassesThatDeriveFromTheMixIn) {
  Text reported;
  OnTrackedInstanceError = [&reported](const Error& error) { reported = error.what(); };
  destroyed = 0;
  auto* const plain = new Plain;
  const void* const address = plain;
  EXPECT_TRUE(IsValid(address));
  EXPECT_EQ(plain->value, 7);
  delete plain;
  EXPECT_FALSE(IsValid(address));
  EXPECT_EQ(destroyed, 1);
  delete static_cast<Plain*>(const_cast<void*>(address));
  EXPECT_EQ(destroyed, 1) << "a deleted object is left alone";
  EXPECT_TRUE(reported.starts_with("Dai FreeInstance de 2 ori! Apelul anterior a venit de la adresa ")) << reported;

  auto* const derived = new Derived;
  const void* const whole = derived;
  EXPECT_TRUE(IsValid(whole));
  delete static_cast<Base*>(derived);
  EXPECT_FALSE(IsValid(whole));
  EXPECT_EQ(destroyed, 3);

  reported.clear();
  EXPECT_THROW(new Plain(true), std::runtime_error);
  EXPECT_EQ(reported, "");
  static_assert(detail::TypeName<std::vector<int>>().starts_with("std::vector<int"));
  EXPECT_EQ(detail::TypeName<Text::value_type>(), "char");
  OnTrackedInstanceError = nullptr;
}

TEST(LifetimeTrackerLifeCycle, RefusesWorkOutsideInitializeAndStartsEmptyAgain) {
  EXPECT_EQ(NewComplaint(At(16)), "DoNewInstance: biblioteca nu este pornita (Initialize)");
  EXPECT_NE(FreeComplaint(At(16)), "");
  EXPECT_NE(BustComplaint(At(16)), "");
  EXPECT_NE(UnLockComplaint(At(16)), "");
  EXPECT_THROW(std::ignore = IsValid(At(16)), Error);
  EXPECT_THROW(LockObjectDestruction(At(16)), Error);
  delete new Plain;  // works untracked
  for (int round = 0; round < 2; ++round) {
    Initialize();
    EXPECT_FALSE(IsValid(At(16)));
    EXPECT_EQ(NewComplaint(At(16)), "");
    LockObjectDestruction(At(16));
    Finalize();
  }
}

}  // namespace
}  // namespace kiv
