// A host under the lifetime tracker that makes each classic mistake once and prints what the tracker says of it.
#include <kivtools/Package.h>
#include <kivtools/TrackedInstance.h>

#include <cstdio>

namespace {

// Deriving is all that it takes.
class Factura final : public kiv::TrackedInstance<Factura> {
 public:
  explicit Factura(int number) : number_(number) {}
  [[nodiscard]] int Number() const { return number_; }

 private:
  int number_;
};

/// Runs one step; prints the tracker's error if there is one.
template <class Step>
void Try(const char* mistake, Step&& step) {
  std::printf("%s: ", mistake);
  try {
    step();
    std::printf("\n");
  } catch (const kiv::Error& error) {
    std::printf("%s\n", error.what());
  }
}

void Mistakes() {
  kiv::OnTrackedInstanceError = [](const kiv::Error& error) { std::printf("%s", error.what()); };

  auto* const factura = new Factura(120);
  Factura* const copy = factura;  // the second pointer that somebody forgot
  Try("checked while alive", [=] {
    kiv::IsValidOrBust(copy);
    std::printf("factura %d", copy->Number());
  });
  Try("created twice", [=] { kiv::DoNewInstance(factura, "Factura"); });
  Try("unlocked without a lock", [=] { kiv::UnLockObjectDestruction(factura); });
  delete factura;
  Try("deleted twice", [=] { delete copy; });
  Try("used after its release", [=] { kiv::IsValidOrBust(copy); });

  int never = 0;
  Try("used without ever being created", [&] { kiv::IsValidOrBust(&never); });
  Try("released without ever being created", [&] { kiv::DoFreeInstance(&never); });

  // An object that reports by itself, without naming its callers.
  kiv::DoNewInstance(&never, "Tampon");
  kiv::DoFreeInstance(&never);
  Try("released twice, caller unknown", [&] { kiv::DoFreeInstance(&never); });
  Try("used after its release, caller unknown", [&] { kiv::IsValidOrBust(&never); });
}

}  // namespace

int main() {
  kiv::Initialize();
  Mistakes();
  kiv::Finalize();
}
