#pragma once

#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "dataset/packet/XmlPull.h"

namespace kiv::packet {

/// The tokens of XML as elements that are expected, and their attributes one by one.
class XmlElements : public XmlPull {
 public:
  using XmlPull::XmlPull;

  /// The next token that is no blank.
  Event NextElement();
  void ExpectStart(std::string_view name);
  void ExpectEnd();
  /// Whether the present element has an attribute.
  [[nodiscard]] bool HasAttribute(std::string_view name) const noexcept;
  /// Its value, empty where it has none.
  std::string TakeAttribute(std::string_view name);
  /// Does something that may throw Error for what the present token says, which is refused then. It may not read on:
  /// what a source throws is nothing that the text has to answer for.
  template <class Do>
  auto RefuseWhere(Do&& fails) const {
    try {
      return std::forward<Do>(fails)();
    } catch (const PacketError&) {
      throw;
    } catch (const Error& error) {
      Refuse(error.what());
    }
  }
  /// Refuses an element of which not every attribute was taken.
  void EndOfAttributes() const;
  /// Where the name stands among those that are known; refuses others.
  [[nodiscard]] std::size_t IndexOf(std::string_view name, std::span<const std::string_view> names) const;

 private:
  std::size_t taken_ = 0;  // of the present element's attributes
};

}  // namespace kiv::packet
