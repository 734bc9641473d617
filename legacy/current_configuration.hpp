// SPDX-License-Identifier: MIT
// Replacing the configuration that the program uses by one that is read anew.
//
// fontconfig does the same by itself whenever it finds a file changed (FcInitBringUptoDate): what programs
// must bear anyhow. A configuration lives as long as anybody refers to it, and the patterns that fontconfig
// gives out are copies or refer to what they need, so that a thread that is in the midst of a question gets
// its answer from the configuration that it began with. Who keeps a bare pointer to the configuration, or
// to a set in it, over a call that may replace it has a pointer to nothing: that is fontconfig's rule, too.
// The old one is not kept alive for such programs: fontconfig ends programs in which somebody holds a
// configuration when it is put away.
#pragma once

#include "fontconfig.hpp"

namespace vellum::legacy {

// What would be read now, with the system's fonts, and ready to take the place of `current`; null when that
// is none that fontconfig itself would replace: the program read files into it that a new one would not
// have, or looks below another root.
ConfigurationRef ReadSuccessor(FcConfig *current);

} // namespace vellum::legacy
