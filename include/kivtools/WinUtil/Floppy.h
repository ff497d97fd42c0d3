/// @file
/// Copying files onto floppy disks.
#pragma once

#include <functional>

#include "kivtools/Types.h"

namespace kiv {

/// Packs files into one archive when they do not fit a diskette. Empty until the host assigns it. Its arguments: the
/// source paths, the destination paths, and two results: the archive's destination path on the diskette and the path of
/// the archive that it has written on the local disk. Example: a host that packs nothing leaves it empty.
extern KIV_API std::function<void(const StringList&, const StringList&, Text&, Text&)> OnProcFaZipPentruDischeta;

}  // namespace kiv
