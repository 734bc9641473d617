// SPDX-License-Identifier: MIT
#include "describe/directory_flags.hpp"

#include "platform/fs/volume_flags.hpp"
#include "values/val_str.hpp"

namespace vellum {

static_assert(+kVolumeIsLocal == +kVLFontFlagLocalVolume && +kVolumeIsRoot == +kVLFontFlagRootVolume);

uint32_t DirectoryFlags(const ValURL *url) {
    const auto path = Adopt(ValURLCopyFileSystemPath(url));
    return path ? GetVolumeFlags(ValStringGetBytes(path.Get(), nullptr)) : 0;
}

} // namespace vellum
