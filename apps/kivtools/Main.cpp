#include <exception>
#include <string>

#include "apps/kivtools/Command.h"
#include "apps/kivtools/system/Console.h"

int main(int count, char** arguments) {
  try {
    const kivtools::PreparedConsole console;
    return kivtools::RunProgram(kivtools::ArgumentsAsUtf8(count, arguments));
  } catch (const std::exception& error) {
    kivtools::WriteError(std::string("kivtools: ") + error.what());
    return kivtools::kBadInput;
  }
}
