// SPDX-License-Identifier: MIT
// TValURL: a URL as a value of C++.
#pragma once

#include "values/val_str.hpp"

namespace vellum {

// A URL or none. Parts are none where the URL has none; see values.h for what they are.
class TValURL {
public:
    TValURL() noexcept = default;
    explicit TValURL(vellum::Ref<const ValURL> url) noexcept : url_(std::move(url)) {}

    // A file URL from a POSIX path, which may be of any bytes but zero; none from an empty one.
    static TValURL FromPath(std::string_view path, bool is_directory = false);

    // From a URL's text; none when it is no URL, or relative.
    static TValURL FromText(std::string_view text);

    explicit operator bool() const noexcept { return static_cast<bool>(url_); }
    const ValURL *Get() const noexcept { return url_.Get(); }
    const vellum::Ref<const ValURL> &Ref() const noexcept { return url_; }

    friend bool operator==(const TValURL &a, const TValURL &b) noexcept {
        return ValEqual(a.Get(), b.Get());
    }

    TValURL Absolute() const noexcept { return TValURL(Adopt(ValURLCopyAbsolute(Get()))); }

    // The absolute text (borrowed); empty for none.
    std::string_view Text() const noexcept;

    TValStr Scheme() const noexcept { return TValStr(Adopt(ValURLCopyScheme(Get()))); }
    TValStr Host() const noexcept { return TValStr(Adopt(ValURLCopyHost(Get()))); }

    // The POSIX path of a file URL.
    TValStr Path() const noexcept { return TValStr(Adopt(ValURLCopyFileSystemPath(Get()))); }

    // Decoded.
    TValStr Fragment() const noexcept { return TValStr(Adopt(ValURLCopyDecodedFragment(Get()))); }
    TValStr Extension() const noexcept { return TValStr(Adopt(ValURLCopyPathExtension(Get()))); }

    // The escaped fragment takes the place of the URL's own; none takes it away.
    TValURL WithFragment(const TValStr &fragment) const noexcept {
        return TValURL(Adopt(ValURLCopyWithFragment(Get(), fragment.Get())));
    }

private:
    vellum::Ref<const ValURL> url_;
};

} // namespace vellum
