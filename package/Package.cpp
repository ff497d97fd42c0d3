#include "kivtools/Package.h"

#include <algorithm>
#include <array>

#include "core/Units.h"
#include "package/OnceOnly.h"
#include "package/StartOrder.h"

namespace kiv {
namespace {

/// The units of the runtime library and of the host framework come first. They start with the process, before this
/// library is loaded; their entries keep the positions of the units that follow.
constexpr UnitEntry kRuntimeUnit = {[] {}, [] {}};
constexpr std::size_t kRuntimeUnits = 69;

template <class... Units>
constexpr std::array<UnitEntry, sizeof...(Units)> EntriesOf(const std::tuple<Units...>& /*all*/) {
  return {OnceOnly<Units>::kEntry...};
}

constexpr auto kUnits = [] {
  constexpr auto kOwn = EntriesOf(units::InStartOrder());
  std::array<UnitEntry, kRuntimeUnits + kOwn.size()> all{};
  std::fill_n(all.begin(), kRuntimeUnits, kRuntimeUnit);
  std::copy(kOwn.begin(), kOwn.end(), all.begin() + kRuntimeUnits);
  return all;
}();

constexpr PackageInfoTable kTable = {static_cast<std::int32_t>(kUnits.size()), kUnits.data()};

PackageModule module_record;

}  // namespace

const PackageModule& GetPackageModule() noexcept {
  return module_record;
}

extern "C" {

const PackageInfoTable* GetPackageInfoTable() noexcept {
  return &kTable;
}

void Initialize() {
  InitializeUnits(kUnits);
}

void Finalize() {
  FinalizeUnits(kUnits);
}

void PackageLoadEntry(Handle module, std::uint32_t reason) noexcept {
  constexpr std::uint32_t kProcessDetach = 0;
  constexpr std::uint32_t kProcessAttach = 1;
  module_record.isLibrary = true;
  module_record.handle = module;
  if (reason == kProcessAttach) {
    module_record.attached = true;
  } else if (reason == kProcessDetach) {
    module_record.attached = false;
  }
}

}  // extern "C"
}  // namespace kiv
