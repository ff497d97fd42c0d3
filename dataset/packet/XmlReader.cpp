#include <optional>

#include "dataset/packet/FileSource.h"
#include "dataset/packet/XmlRows.h"
#include "kivtools/dataset/Xml.h"
#include "platform/Paths.h"

namespace kiv {
namespace {

using packet::XmlElements;
using Event = packet::XmlPull::Event;

/// From <table>, which has begun, to <rows>; returns the dataset's name.
Text ReadHead(XmlElements& in, packet::XmlFields& fields, const ReadLimits& limits) {
  Text name = in.RefuseWhere([&] { return FromUtf8(in.TakeAttribute("name")); });
  in.EndOfAttributes();
  Event event = in.NextElement();
  for (; event == Event::Start && in.Name() == "field"; event = in.NextElement()) {
    fields.Read(in, limits);
  }
  if (event != Event::Start || in.Name() != "rows") {
    in.Refuse("trebuie elementul <rows>");
  }
  in.EndOfAttributes();
  return name;
}

std::unique_ptr<store::Store> Read(XmlElements& in, const ReadLimits& limits) {
  packet::XmlFields fields;
  const Text name = ReadHead(in, fields, limits);
  auto loader = in.RefuseWhere([&] { return store::BlockLoader(name, Schema(fields.fields)); });
  packet::XmlRows rows(in, fields, limits, loader);
  rows.Read();
  in.ExpectEnd();
  in.ExpectEnd();
  auto store = in.RefuseWhere([&] {
    rows.AddRecordsInOrder();
    return loader.Finish();
  });
  in.NextElement();
  return store;
}

Dataset ReadFrom(const PacketSource& source, const Text& operation, const ReadLimits& limits) {
  XmlElements in(source, operation);
  in.ExpectStart("kivdata");
  if (in.TakeAttribute("version") != "1" || in.TakeAttribute("kind") != "offline") {
    in.Refuse("textul este de alt fel sau de alta versiune");
  }
  in.EndOfAttributes();
  in.ExpectStart("table");
  return Dataset(Read(in, limits));
}

}  // namespace

Dataset ReadXml(const PacketSource& source, const ReadLimits& limits) {
  return ReadFrom(source, "ReadXml", limits);
}

Dataset LoadXml(const std::filesystem::path& path, const ReadLimits& limits) {
  constexpr TextView kOperation = "LoadXml";
  platform::File file;
  file.Open(path, platform::OpenMode::ReadFile).OrThrow(kOperation, path);
  packet::FileSource source(file, path, kOperation);
  return ReadFrom([&](std::span<std::uint8_t> into) { return source.Read(into); },
                  Text(kOperation) + ": " + platform::ShownPath(path.native()), limits);
}

}  // namespace kiv
