// What the C interface makes of each kind of error that an operation may leave with.
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <new>
#include <thread>

#include "kivtools/dataset/Packet.h"
#include "package/c/Abi.h"

namespace kiv {
namespace {

struct Reported {
  std::int32_t result;
  std::int32_t code;
  Text message;
  friend bool operator==(const Reported&, const Reported&) = default;
};

std::ostream& operator<<(std::ostream& out, const Reported& reported) {
  return out << reported.result << ' ' << reported.code << ' ' << reported.message;
}

/// The outcome of KivSomething, an exported function whose operation ends so.
Reported KivSomething(const std::function<void()>& operation) {
  const std::int32_t result = c::Run(operation);
  std::array<char, 1100> message{};
  message.fill('~');
  const KivLength length = KivLastErrorMessage(message.data(), message.size());
  EXPECT_EQ(message.at(static_cast<std::size_t>(length)), '\0');
  return {result, KivLastError(), {message.data(), static_cast<std::size_t>(length)}};
}

TEST(CInterface, GivesEachErrorItsCodeAndMessage) {
  const struct {
    std::function<void()> operation;
    Reported expected;
  } cases[] = {
      {[] { throw c::ArgumentError("text: pointer nul"); }, {-9, 9, "KivSomething: text: pointer nul"}},
      {[] { throw c::HostFailure("sink: oprit"); }, {-1, 1, "KivSomething: sink: oprit"}},
      {[] { throw Error("general"); }, {-1, 1, "general"}},
      {[] { throw ConversionError("conversion"); }, {-2, 2, "conversion"}},
      {[] { throw DateEncodingError("date"); }, {-3, 3, "date"}},
      {[] { throw DivisionByZero("division"); }, {-4, 4, "division"}},
      {[] { throw InvalidCast("cast"); }, {-5, 5, "cast"}},
      {[] { throw ListIndexError("index"); }, {-6, 6, "index"}},
      {[] { throw OsError(5, "Acces interzis"); }, {-8, 8, OsError(5, "Acces interzis").what()}},
      {[] { throw PacketError(2, 45, "packet"); }, {-11, 11, "packet"}},
      {[] { throw std::bad_alloc(); }, {-10, 10, "KivSomething: memorie insuficienta"}},
      {[] { throw std::length_error("?"); }, {-10, 10, "KivSomething: rezultat prea lung"}},
      {[] { throw std::out_of_range("other"); }, {-1, 1, "other"}},
      {[] { throw 5; }, {-1, 1, "eroare necunoscuta"}},
  };
  for (const auto& [operation, expected] : cases) {
    EXPECT_EQ(KivSomething(operation), expected);
  }
  const AssertionFailure assertion("UTreeAVL2", 12);
  EXPECT_EQ(KivSomething([&] { throw assertion; }), (Reported{-7, 7, "Assertion failure"}));
}

TEST(CInterface, CutsAMessageThatIsLongerThanItsStore) {
  for (const std::size_t length : {1022U, 1023U, 1024U, 5000U}) {
    const Text message(length, 'x');
    EXPECT_EQ(KivSomething([&] { throw Error(message); }).message, message.substr(0, 1023)) << length;
    const Text whole = "KivSomething: " + message;
    EXPECT_EQ(KivSomething([&] { throw c::ArgumentError(message); }).message, whole.substr(0, 1023)) << length;
  }
}

TEST(CInterface, EachThreadHasItsOwnLastError) {
  KivSomething([] { throw Error("here"); });
  std::thread([] {
    EXPECT_EQ(KivLastError(), KIV_OK);
    EXPECT_EQ(KivLastErrorMessage(nullptr, 0), 0);
    KivSomething([] { throw ConversionError("there"); });
  }).join();
  EXPECT_EQ(KivLastError(), KIV_ERROR_GENERAL);
}

}  // namespace
}  // namespace kiv
