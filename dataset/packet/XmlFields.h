#pragma once

#include <string>
#include <vector>

#include "dataset/packet/XmlElements.h"

namespace kiv::packet {

/// The fields of a dataset as XML describes them.
struct XmlFields {
  std::vector<FieldDef> fields;
  std::vector<std::string> attributes;  ///< by field, what its attribute in rows is called

  /// Reads <field>, which has begun, to its end.
  void Read(XmlElements& in, const ReadLimits& limits);

 private:
  void Take(XmlElements& in, const ReadLimits& limits);
};

}  // namespace kiv::packet
