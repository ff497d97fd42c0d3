#include "kivtools/Loader.h"

#include <array>

#include "kivtools/kiv.h"
#include "platform/DynamicLibrary.h"
#include "platform/Paths.h"

namespace kiv {

LoadedPackage::LoadedPackage(TextView path) : LoadedPackage(NativePath{platform::PathFromText(path)}) {}

LoadedPackage LoadedPackage::FromNativePath(const std::filesystem::path& path) {
  return LoadedPackage(NativePath{path});
}

LoadedPackage::LoadedPackage(NativePath native) : library_(std::make_unique<platform::DynamicLibrary>(native.path)) {
  finalize_ = Function<void()>("Finalize");
  // The C entry rather than Initialize: an exception cannot leave a Windows library that carries its own runtime.
  auto* const initialize = Function<decltype(KivInitialize)>("KivInitialize");
  if (initialize() != KIV_OK) {
    std::array<char, 512> message{};
    Function<decltype(KivLastErrorMessage)>("KivLastErrorMessage")(message.data(), message.size());
    throw Error(message.data());
  }
}

LoadedPackage::~LoadedPackage() {
  finalize_();
}

void* LoadedPackage::Symbol(const char* name) const {
  void* const address = library_->Symbol(name);
  if (address == nullptr) {
    throw Error(Text("LoadedPackage: biblioteca nu exporta ") + name);
  }
  return address;
}

}  // namespace kiv
