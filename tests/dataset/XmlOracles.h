#pragma once

#include <expat.h>

#include <optional>
#include <pugixml.hpp>
#include <string>
#include <string_view>

#include "dataset/packet/XmlPull.h"

/// What other readers make of a text: its elements, attributes and texts in one line, blanks in texts left out.
namespace kiv {

class SeenXml {
 public:
  void Start(std::string_view name) { seen_.append("<").append(name); }
  void Attribute(std::string_view name, std::string_view value) {
    seen_.append(" ").append(name).append("=[").append(value).append("]");
  }
  void EndOfAttributes() { seen_ += ">"; }
  void Content(std::string_view text) {
    for (const char character : text) {
      seen_ += packet::XmlPull::IsBlank(character) ? "" : std::string(1, character);
    }
  }
  void End(std::string_view name) { seen_.append("</").append(name).append(">"); }
  [[nodiscard]] const std::string& Get() const noexcept { return seen_; }

 private:
  std::string seen_;
};

/// Nothing where the reader refuses the text.
inline std::optional<std::string> SeenByExpat(std::string_view text) {
  SeenXml seen;
  XML_Parser parser = XML_ParserCreate(nullptr);
  XML_SetUserData(parser, &seen);
  XML_SetElementHandler(
      parser,
      [](void* user, const char* name, const char** attributes) {
        auto& to = *static_cast<SeenXml*>(user);
        to.Start(name);
        for (; *attributes != nullptr; attributes += 2) {
          to.Attribute(attributes[0], attributes[1]);
        }
        to.EndOfAttributes();
      },
      [](void* user, const char* name) { static_cast<SeenXml*>(user)->End(name); });
  XML_SetCharacterDataHandler(parser, [](void* user, const char* content, int size) {
    static_cast<SeenXml*>(user)->Content({content, static_cast<std::size_t>(size)});
  });
  const bool isRead = XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1) == XML_STATUS_OK;
  XML_ParserFree(parser);
  return isRead ? std::optional(seen.Get()) : std::nullopt;
}

inline void See(const pugi::xml_node& node, SeenXml& seen) {
  if (node.type() == pugi::node_pcdata) {
    seen.Content(node.value());
    return;
  }
  if (node.type() == pugi::node_element) {
    seen.Start(node.name());
    for (const pugi::xml_attribute& attribute : node.attributes()) {
      seen.Attribute(attribute.name(), attribute.value());
    }
    seen.EndOfAttributes();
  }
  for (const pugi::xml_node& child : node.children()) {
    See(child, seen);
  }
  if (node.type() == pugi::node_element) {
    seen.End(node.name());
  }
}

inline std::optional<std::string> SeenByPugixml(std::string_view text) {
  pugi::xml_document document;
  if (!document.load_buffer(text.data(), text.size())) {
    return std::nullopt;
  }
  SeenXml seen;
  See(document, seen);
  return seen.Get();
}

inline std::string SeenByUs(const PacketSource& source) {
  const Text operation = "Xml";
  packet::XmlPull pull(source, operation);
  SeenXml seen;
  for (;;) {
    switch (pull.Next()) {
      case packet::XmlPull::Event::Start:
        seen.Start(pull.Name());
        for (const auto& attribute : pull.Attributes()) {
          seen.Attribute(attribute.name, attribute.value);
        }
        seen.EndOfAttributes();
        break;
      case packet::XmlPull::Event::End:
        seen.End(pull.Name());
        break;
      case packet::XmlPull::Event::Text:
        seen.Content(pull.Content());
        break;
      case packet::XmlPull::Event::Done:
        return seen.Get();
    }
  }
}

}  // namespace kiv
