// SPDX-License-Identifier: MIT
// The two registers of a process with fonts of a test's own, and short ways of asking them through the
// exported functions.
//
// The registers are singletons of the process: each test runs in a process of its own. No font is sought
// anywhere else: that is not what is tested here.
#pragma once

#include "frame/handles/global_glyphary.hpp"
#include "frame/handles/local_glyphary.hpp"
#include "query/query_fixture.hpp"

#include <cstdlib>

namespace vellum::test {

inline constexpr VLActivationOptions kNoActivation =
    kVLActivationNotFromProviders | kVLActivationNotFromSearch;

// A value where one of another kind is expected.
template <class T>
const T *As(const void *value) {
    return static_cast<const T *>(value);
}

class QueryRegisters : public ::testing::Test {
protected:
    QueryRegisters() {
        ::setenv("VELLUM_IGNORE_SERVER", "1", 1); // the shared register is one of this process
        ::setenv("VELLUM_FONTS_ROOT", system.Path().c_str(), 1);
    }

    // A font of the shared register; before that register is asked.
    Ref<const ValURL> AddShared(const std::string &name, const Bytes &bytes) {
        system.Add("usr/share/fonts/" + name, bytes);
        return FileURL(system.Path() + "//usr/share/fonts/" + name);
    }
    Ref<const ValURL> AddShared(const std::string &name, const FontNames &names) {
        return AddShared(name, FontWith(names).Build());
    }
    Ref<const ValURL> Add(const std::string &name, const Bytes &bytes) {
        auto url = folder.Add(name, bytes);
        EXPECT_TRUE(VLRegisterFont(url.Get(), 0, kVLScopeProcess));
        return url;
    }
    Ref<const ValURL> Add(const std::string &name, const FontNames &names) {
        return Add(name, FontWith(names).Build());
    }

    static std::vector<std::string> FindAll(const RequestEntries &entries, VLScope scope = kVLScopeAll) {
        return NamesIn(Adopt(VLCopyFontsWithProperties(Request(entries).Get(), scope, kNoActivation)));
    }
    static std::string Find(const RequestEntries &entries, VLScope scope = kVLScopeAll) {
        return NameIn(Adopt(VLCopyFontWithProperties(Request(entries).Get(), scope, kNoActivation)));
    }
    static std::string Named(const char *name, VLScope scope = kVLScopeAll) {
        return NameIn(Adopt(VLCopyFontWithName(String(name).Get(), scope, kNoActivation)));
    }
    static std::string Drawing(uint32_t character, VLScope scope = kVLScopeProcess) {
        return NameIn(Adopt(VLCopyFontForCharacter(character, scope, 0)));
    }
    static void ExpectNoRegister() {
        EXPECT_FALSE(TLocalGlyphary::IsCreated());
        EXPECT_FALSE(TGlobalGlyphary::IsCreated());
    }

    FontFolder folder, system;
};

} // namespace vellum::test
