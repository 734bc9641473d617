// SPDX-License-Identifier: MIT
// The bundle that the running program came in: the nearest folder, from that of the executable upward, with
// a file Info.vlist. What the program ships lies in its folder Resources.
//
//     App/Info.vlist
//     App/Resources/Fonts/...
//     App/bin/program
#pragma once

#include <vellum/values.hpp>

#include <optional>
#include <string>

namespace vellum {

struct MainBundle {
    std::string folder;
    Ref<const ValDictionary> info; // what Info.vlist says

    // The path of a resource; empty when it is not there. The folder of all has the empty name.
    std::string ResourcePath(const std::string &name) const;

    // The bundle of this process; none without. It is believed when it belongs to the user or to root
    // and not everybody may write to it, and never in a program that runs with more rights than its caller.
    // Throws std::bad_alloc.
    static std::optional<MainBundle> OfProcess();

    // The bundle of an executable, by its absolute path.
    static std::optional<MainBundle> Of(const std::string &executable);
};

} // namespace vellum
