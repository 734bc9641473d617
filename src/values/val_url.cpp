// SPDX-License-Identifier: MIT
// TValURL: a URL as a value of C++.
#include "values/val_url.hpp"

#include "platform/val/url.hpp"
#include "values/out_of_memory.hpp"

namespace vellum {

TValURL TValURL::FromPath(std::string_view path, bool is_directory) {
    const auto bytes = OrBadAlloc(MakeString(path));
    return TValURL(Adopt(ValURLCreateWithFileSystemPath(bytes.Get(), is_directory, nullptr)));
}

TValURL TValURL::FromText(std::string_view text) {
    return TValURL(MakeURL(OrBadAlloc(MakeString(text))));
}

std::string_view TValURL::Text() const noexcept {
    return url_ ? AbsoluteText(*url_) : std::string_view();
}

} // namespace vellum
