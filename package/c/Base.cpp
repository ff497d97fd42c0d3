#include "kivtools/c/Base.h"

#include <array>
#include <new>

#include "kivtools/Package.h"
#include "kivtools/c/DatasetExchange.h"
#include "kivtools/dataset/Filter.h"
#include "kivtools/dataset/Packet.h"
#include "package/c/Abi.h"

namespace kiv::c {
namespace {

/// This thread's last failure. A fixed array, so that a failure for want of memory can be reported too.
struct LastError {
  std::int32_t code = KIV_OK;
  std::int32_t systemCode = 0;
  std::size_t length = 0;
  std::array<char, 1024> message{};
  std::int32_t chunk = -1;
  std::uint64_t offset = 0;
  std::uint64_t line = 0;  // 0 where it was no text
  std::uint64_t column = 0;
};

thread_local LastError last_error;

/// Appends to the message what still fits.
void Append(const char* text) noexcept {
  const std::size_t length = std::min(std::strlen(text), last_error.message.size() - 1 - last_error.length);
  std::memcpy(last_error.message.data() + last_error.length, text, length);
  last_error.length += length;
  last_error.message[last_error.length] = '\0';
}

std::int32_t Report(std::int32_t code, const char* message, std::int32_t systemCode = 0) noexcept {
  last_error.code = code;
  last_error.systemCode = systemCode;
  last_error.length = 0;
  Append(message);
  return -code;
}

std::int32_t Report(std::int32_t code, const char* operation, const char* message) noexcept {
  Report(code, operation);
  Append(": ");
  Append(message);
  return -code;
}

}  // namespace

std::int32_t ReportCurrentException(const char* operation) noexcept {
  try {
    throw;
  } catch (const ArgumentError& error) {
    return Report(KIV_ERROR_ARGUMENT, operation, error.what());
  } catch (const HostFailure& error) {
    return Report(KIV_ERROR_GENERAL, operation, error.what());
  } catch (const ConversionError& error) {
    return Report(KIV_ERROR_CONVERSION, error.what());
  } catch (const DateEncodingError& error) {
    return Report(KIV_ERROR_DATE, error.what());
  } catch (const DivisionByZero& error) {
    return Report(KIV_ERROR_DIVISION, error.what());
  } catch (const InvalidCast& error) {
    return Report(KIV_ERROR_CAST, error.what());
  } catch (const ListIndexError& error) {
    return Report(KIV_ERROR_LIST_INDEX, error.what());
  } catch (const PacketError& error) {
    const auto* const text = dynamic_cast<const TextPacketError*>(&error);
    last_error.chunk = error.Chunk();
    last_error.offset = error.Offset();
    last_error.line = text == nullptr ? 0 : text->Line();
    last_error.column = text == nullptr ? 0 : text->Column();
    return Report(KIV_ERROR_PACKET, error.what());
  } catch (const FilterError& error) {
    last_error.chunk = -1;
    last_error.offset = error.Position();
    return Report(KIV_ERROR_FILTER, error.what());
  } catch (const AssertionFailure& error) {
    return Report(KIV_ERROR_ASSERTION, error.what());
  } catch (const OsError& error) {
    return Report(KIV_ERROR_SYSTEM, error.what(), error.Code());
  } catch (const std::bad_alloc&) {
    return Report(KIV_ERROR_OUT_OF_MEMORY, operation, "memorie insuficienta");
  } catch (const std::length_error&) {
    return Report(KIV_ERROR_OUT_OF_MEMORY, operation, "rezultat prea lung");
  } catch (const std::exception& error) {
    return Report(KIV_ERROR_GENERAL, error.what());
  } catch (...) {
    return Report(KIV_ERROR_GENERAL, "eroare necunoscuta");
  }
}

}  // namespace kiv::c

using namespace kiv::c;

extern "C" {

int32_t KivLastError(void) {
  return last_error.code;
}

int32_t KivLastSystemCode(void) {
  return last_error.systemCode;
}

KivLength KivLastErrorMessage(char* buffer, size_t capacity) {
  // Not through GiveText: asking for the message must not replace it.
  return CopyOut(kiv::TextView(last_error.message.data(), last_error.length), buffer, buffer == nullptr ? 0 : capacity);
}

KivAnswer KivLastErrorPlace(int32_t* chunk, uint64_t* offset) {
  if (last_error.code != KIV_ERROR_PACKET && last_error.code != KIV_ERROR_FILTER) {
    return 0;
  }
  if (chunk != nullptr) {
    *chunk = last_error.chunk;
  }
  if (offset != nullptr) {
    *offset = last_error.offset;
  }
  return 1;
}

KivAnswer KivLastErrorLine(uint64_t* line, uint64_t* column) {
  if (last_error.code != KIV_ERROR_PACKET || last_error.line == 0) {
    return 0;
  }
  if (line != nullptr) {
    *line = last_error.line;
  }
  if (column != nullptr) {
    *column = last_error.column;
  }
  return 1;
}

KivStatus KivInitialize(void) {
  return Run([] { kiv::Initialize(); });
}

KivStatus KivFinalize(void) {
  return Run([] { kiv::Finalize(); });
}

KivLength KivVersion(char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [] { return kiv::TextView(KIV_VERSION); });
}

KivLength KivTextToUtf8(const char* text, size_t length, int32_t commaBelow, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] {
    return kiv::ToUtf8(KIV_TEXT(text, length),
                       commaBelow != 0 ? kiv::DiacriticForm::CommaBelow : kiv::DiacriticForm::Cedilla);
  });
}

KivLength KivUtf8ToText(const char* utf8, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::FromUtf8(KIV_TEXT(utf8, length)); });
}

}  // extern "C"
