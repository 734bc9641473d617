// SPDX-License-Identifier: MIT
#include "tools/change_results.hpp"

#include "tools/exit_code.hpp"
#include "tools/file_faces.hpp"
#include "tools/text.hpp"

#include <iostream>
#include <string>

namespace vellum::tool {

Json ToJson(const Changed &file) {
    return {{"path", file.path},
            {"done", !file.problem},
            {"faces", file.faces},
            {"problem", file.problem ? Json(file.problem->reason) : Json()}};
}

// Of a file that is gone it is not known which faces it had.
std::string ToLine(const Changed &file) {
    std::string line = Printable(file.path);
    if (file.faces.size() == 1) line += "  " + file.faces.front();
    if (file.faces.size() > 1) line += "  " + Grouped(file.faces.size()) + " faces";
    return line;
}

void ChangeResults::Add(const Changed &file) {
    if (options_.json)
        items_.push_back(ToJson(file));
    else if (options_.jsonl)
        std::cout << Dump(ToJson(file), -1) << '\n';
    else if (!file.problem)
        Show(file);
    if (file.problem)
        refusals_.push_back(*file.problem);
    else
        ++done_;
}

void ChangeResults::Show(const Changed &file) const {
    std::cout << (options_.dry_run ? "would be " : "") << names_.done << "  " << ToLine(file) << '\n';
}

int ChangeResults::Finish() {
    Report(refusals_);
    if (options_.json) {
        const Json document = {{"schema", {{"name", "vellum.change"}, {"version", 1}}},
                               {"action", names_.name},
                               {"scope", options_.scope},
                               {"dryRun", options_.dry_run},
                               {"items", items_},
                               {"refused", tool::ToJson(refusals_)}};
        std::cout << Dump(document, 2) << '\n';
    }
    if (done_ == 0) return Judge({0, refusals_});
    return refusals_.empty() ? kDone : kNothingFound;
}

} // namespace vellum::tool
