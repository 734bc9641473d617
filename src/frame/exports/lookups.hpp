// SPDX-License-Identifier: MIT
// What an exported lookup does, for other exported functions: nobody who listens hears of a question that
// no program asked.
#pragma once

#include <vellum/vellum.hpp>

namespace vellum {

// As VLCopyFontsWithProperties.
Ref<const ValArray> FindFontsWithProperties(const ValDictionary *request, VLScope scope,
                                            VLActivationOptions activation);

} // namespace vellum
