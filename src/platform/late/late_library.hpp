// SPDX-License-Identifier: MIT
// Shared libraries that are opened when one of their functions is needed, not when this one is loaded. Most
// programs ask the font server and read no font themselves: they have no use for a font parser, and some
// none for GLib.
//
// The neighbours here name the functions of one library each. Inside namespace vellum these hide the
// library's own declarations, so that a call looks like any other. One that is not named here does not
// link.
#pragma once

#include <atomic>

namespace vellum {

// Opened once and never closed. Any thread may use it. Opening runs code of other libraries under the
// loader's lock: who holds a lock while calling the functions opens the library before taking it.
class LateLibrary {
public:
    // By its soname, a constant.
    explicit constexpr LateLibrary(const char *name) noexcept : name_(name) {}
    LateLibrary(const LateLibrary &) = delete;
    LateLibrary &operator=(const LateLibrary &) = delete;

    bool IsOpen() const noexcept { return handle_.load(std::memory_order_acquire); }

    // False, and a failure that passes, where it cannot be opened: memory or descriptors have run out, or
    // it is not there. The next call tries again.
    bool Open() noexcept { return IsOpen() || OpenNow(); }

    // Null where the library cannot be opened or has no such function.
    void *Find(const char *function) noexcept;

private:
    bool OpenNow() noexcept;

    const char *const name_;
    std::atomic<void *> handle_ = nullptr;
};

template <class Signature>
class LateFunction;

// A function of a late library. Where that cannot be opened a call does nothing and gives zero, false or
// null: who needs to know asks Open.
template <class Result, class... Arguments>
class LateFunction<Result(Arguments...)> {
public:
    constexpr LateFunction(LateLibrary &library, const char *name) noexcept
        : library_(library), name_(name) {}
    LateFunction(const LateFunction &) = delete;
    LateFunction &operator=(const LateFunction &) = delete;

    Result operator()(Arguments... arguments) noexcept {
        Function *function = function_.load(std::memory_order_relaxed);
        if (!function) {
            function = reinterpret_cast<Function *>(library_.Find(name_));
            function_.store(function, std::memory_order_relaxed);
        }
        return function ? function(arguments...) : Result();
    }

private:
    using Function = Result(Arguments...);

    LateLibrary &library_;
    const char *const name_;
    std::atomic<Function *> function_ = nullptr;
};

} // namespace vellum

// Names a function of a late library, whose header has declared it.
#define VELLUM_LATE_FUNCTION(library, name)                                                                \
    inline constinit LateFunction<decltype(::name)> name {                                                 \
        library, #name                                                                                     \
    }
