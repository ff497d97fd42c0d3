#include "kivtools/Package.h"

#include <array>
#include <span>

#include "package/OnceOnly.h"
#include "tools/Units.h"

namespace kiv {
namespace {

/// The units of the runtime library and of the host framework come first. They start with the process, before this
/// library is loaded; their entries keep the positions of the units that follow.
constexpr UnitEntry kRuntimeUnit = {[] {}, [] {}};
constexpr std::size_t kRuntimeUnits = 69;

constexpr std::array kOwnUnits = {
    OnceOnly<units::DatasetLib>::kEntry,       OnceOnly<units::Shfolder>::kEntry,
    OnceOnly<units::CEVersionInfo>::kEntry,    OnceOnly<units::WinUtil>::kEntry,
    OnceOnly<units::LargeFontScaler>::kEntry,  OnceOnly<units::BmpRoutines>::kEntry,
    OnceOnly<units::WideTools>::kEntry,        OnceOnly<units::UTreeAVL2>::kEntry,
    OnceOnly<units::UDepanarePointer>::kEntry, OnceOnly<units::UPanelElastic>::kEntry,
};

constexpr auto kUnits = [] {
  std::array<UnitEntry, kRuntimeUnits + kOwnUnits.size()> all{};
  all.fill(kRuntimeUnit);
  for (std::size_t i = 0; i < kOwnUnits.size(); ++i) {
    all[kRuntimeUnits + i] = kOwnUnits[i];
  }
  return all;
}();

constexpr PackageInfoTable kTable = {static_cast<std::int32_t>(kUnits.size()), kUnits.data()};

PackageModule module_record;

void FinalizeFirst(std::size_t count) {
  for (std::size_t i = count; i > 0; --i) {
    kUnits[i - 1].finalization();
  }
}

}  // namespace

const PackageModule& GetPackageModule() noexcept {
  return module_record;
}

extern "C" {

const PackageInfoTable* GetPackageInfoTable() noexcept {
  return &kTable;
}

void Initialize() {
  for (std::size_t started = 0; started < kUnits.size(); ++started) {
    try {
      kUnits[started].initialization();
    } catch (...) {
      FinalizeFirst(started);
      throw;
    }
  }
}

void Finalize() {
  FinalizeFirst(kUnits.size());
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
