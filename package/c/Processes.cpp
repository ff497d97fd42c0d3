#include "kivtools/c/Processes.h"

#include "kivtools/WinUtil/Processes.h"
#include "package/c/Abi.h"

using namespace kiv::c;

extern "C" {

KivStatus KivStartProgram(const char* program, size_t programLength, const char* parameters, size_t parametersLength,
                          uintptr_t* process) {
  return Run([=] {
    uintptr_t& result = KIV_REQUIRED(process);
    result = kiv::StartProgram(KIV_TEXT(program, programLength), KIV_TEXT(parameters, parametersLength));
  });
}

KivAnswer KivTerminateProgram(uintptr_t process) {
  return GiveAnswer([=] { return kiv::TerminateProgram(process); });
}

KivStatus KivSetPriviledgeForCurrentProcess(const char* name, size_t length) {
  return Run([=] { kiv::SetPriviledgeForCurrentProcess(KIV_TEXT(name, length)); });
}

KivStatus KivCreateLogOnToken(const char* user, size_t userLength, const char* domain, size_t domainLength,
                              const char* password, size_t passwordLength, uint32_t logonType, uintptr_t* token) {
  return Run([=] {
    uintptr_t& result = KIV_REQUIRED(token);
    result = kiv::CreateLogOnToken(KIV_TEXT(user, userLength), KIV_TEXT(domain, domainLength),
                                   KIV_TEXT(password, passwordLength), logonType);
  });
}

KivStatus KivStartProgramAsUser(const char* program, size_t programLength, const char* commandLine,
                                size_t commandLineLength, uintptr_t token) {
  return Run([=] {
    kiv::StartProgramAsUser(KIV_TEXT(program, programLength), KIV_TEXT(commandLine, commandLineLength), token);
  });
}

}  // extern "C"
