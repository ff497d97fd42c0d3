#include "dataset/packet/XmlFields.h"

#include <algorithm>

#include "dataset/packet/ValueText.h"
#include "dataset/packet/XmlNames.h"
#include "dataset/packet/XmlValues.h"

namespace kiv::packet {

using store::Cell;

namespace {

FieldFlags ReadFlags(XmlElements& in) {
  FieldFlags flags = FieldFlags::None;
  const auto take = [&](std::string_view name, FieldFlags isOne, FieldFlags isZero) {
    const std::string value = in.TakeAttribute(name);
    if (!value.empty() && value != "0" && value != "1") {
      in.Refuse(ShownPiece(value) + " nu este 0 sau 1");
    }
    flags = value.empty() ? flags : flags | (value == "1" ? isOne : isZero);
  };
  take("key", kKey, FieldFlags::None);
  take("required", kRequired, FieldFlags::None);
  take("readonly", kReadOnly, FieldFlags::None);
  take("check", kCheck, kNoCheck);
  return flags;
}

Value ReadDefault(XmlElements& in, const FieldDef& field) {
  const bool isBase64 = in.HasAttribute("default64");
  if (!isBase64 && !in.HasAttribute("default")) {
    return {};
  }
  const std::string text = in.TakeAttribute(isBase64 ? "default64" : "default");
  XmlValue holder;
  Cell cell;
  if (!(isBase64 ? holder.TakeBase64(field.type, text, cell) : holder.Take(field.type, text, cell))) {
    in.Refuse("valoarea implicita nu este una a campului");
  }
  return store::ValueOf(field.type, cell);
}

std::int32_t ReadSize(XmlElements& in) {
  const std::string size = in.TakeAttribute("size");
  Cell cell;
  if (!size.empty() && !ReadValue(FieldType::Int32, size, cell)) {
    in.Refuse(ShownPiece(size) + " nu este o lungime");
  }
  return static_cast<std::int32_t>(cell.bits);
}

}  // namespace

void XmlFields::Read(XmlElements& in, const ReadLimits& limits) {
  in.RefuseWhere([&] { Take(in, limits); });
  in.ExpectEnd();
}

void XmlFields::Take(XmlElements& in, const ReadLimits& limits) {
  const Text name = FromUtf8(in.TakeAttribute("name"));
  const std::string attribute = in.TakeAttribute("attr");
  FieldDef field(name, static_cast<FieldType>(in.IndexOf(in.TakeAttribute("type"), kXmlTypes)));
  field.size = ReadSize(in);
  if (const std::string collation = in.TakeAttribute("collation"); !collation.empty()) {
    field.collation = static_cast<Collation>(in.IndexOf(collation, kXmlCollations));
  }
  field.flags = ReadFlags(in);
  field.defaultValue = ReadDefault(in, field);
  in.EndOfAttributes();
  attributes.push_back(XmlAttributeOf(fields.size(), name));
  if (!attribute.empty() && attribute != attributes.back()) {
    in.Refuse("campul " + store::Quoted(name) + " are alt atribut decat " + attributes.back());
  }
  if (fields.size() == std::min<std::size_t>(limits.maxFields, store::kMostFields)) {
    in.Refuse("textul are mai multe campuri decat este permis");
  }
  fields.push_back(std::move(field));
}

}  // namespace kiv::packet
