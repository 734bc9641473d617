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
#include <span>

namespace vellum {

// Opened once and never closed. Any thread may use it.
//
// Opening waits for the loader, which another thread may have while code that it loads asks for fonts: who
// holds a lock while calling the functions opens the library before taking it.
class LateLibrary {
public:
    struct Function {
        const char *name;
        std::atomic<void *> *address; // null until the library is open
    };

    // By its soname, with the functions that are called. Both stay where they are.
    constexpr LateLibrary(const char *name, std::span<const Function> functions) noexcept
        : name_(name), functions_(functions) {}
    LateLibrary(const LateLibrary &) = delete;
    LateLibrary &operator=(const LateLibrary &) = delete;

    bool IsOpen() const noexcept { return is_open_.load(std::memory_order_acquire); }

    // False, and a failure that passes, where it cannot be opened: memory or descriptors have run out, it
    // is not there, or so old that it lacks a function. The first time is logged. The next call tries
    // again.
    bool Open() noexcept { return IsOpen() || OpenNow(); }

private:
    bool OpenNow() noexcept;
    bool Fail() noexcept;

    const char *const name_;
    const std::span<const Function> functions_;
    std::atomic<bool> is_open_ = false;
    std::atomic<bool> is_told_ = false; // that it could not be opened
};

// A call of a late library's function before that is open: a failure that passes.
void NoteClosedLibrary() noexcept;

template <class Signature>
class LateFunction;

// A function of a late library. While that is not open a call does nothing and gives zero, false or null.
template <class Result, class... Arguments>
class LateFunction<Result(Arguments...)> {
public:
    constexpr LateFunction() noexcept = default;
    LateFunction(const LateFunction &) = delete;
    LateFunction &operator=(const LateFunction &) = delete;

    Result operator()(Arguments... arguments) const noexcept {
        if (void *address = address_.load(std::memory_order_acquire))
            return reinterpret_cast<Result (*)(Arguments...)>(address)(arguments...);
        NoteClosedLibrary();
        return Result();
    }

    constexpr std::atomic<void *> *Address() noexcept { return &address_; }

private:
    std::atomic<void *> address_ = nullptr;
};

} // namespace vellum

// Defines a late library and its functions. FUNCTIONS(FUNCTION) calls FUNCTION with the name of each, which
// a header has declared.
#define VELLUM_LATE_LIBRARY(library, soname, FUNCTIONS)                                                    \
    FUNCTIONS(VELLUM_LATE_FUNCTION)                                                                        \
    inline constexpr LateLibrary::Function library##Functions[] = {FUNCTIONS(VELLUM_LATE_ENTRY)};          \
    inline constinit LateLibrary library {                                                                 \
        soname, library##Functions                                                                         \
    }
#define VELLUM_LATE_FUNCTION(name) inline constinit LateFunction<decltype(::name)> name;
#define VELLUM_LATE_ENTRY(name) {#name, name.Address()},
