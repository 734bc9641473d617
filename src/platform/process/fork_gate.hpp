// SPDX-License-Identifier: MIT
// What makes a child that was forked able to use the library, whatever other threads of its parent did.
//
// A child has one thread; a lock that another one held stays locked in it for ever, and what that one was
// changing stays half changed. So each thread notes that it is inside the library, a fork waits until no
// other one is, and who comes meanwhile waits for the fork. A thread that is inside and waits for another
// process, or calls the program, counts as outside: that may last, or may itself be what forks. What such a
// thread holds, its children must do without: the proxy of the font server, and ports. Who waits for a lock
// that such a thread may hold waits outside as well, or neither of the two would let a fork come to pass.
//
// A fork does not wait for ever: one that may itself be waited for, in ways that nobody foresees, goes on
// after five seconds. Programs are started (posix_spawn, vfork) without any of this.
#pragma once

#include <cstdint>

namespace vellum {

// This thread is inside the library, as long as this lives. One inside another costs nothing.
class InLibrary {
public:
    InLibrary() noexcept {
        if (tDepth++ == 0) Enter();
    }
    ~InLibrary() {
        if (--tDepth == 0) Leave();
    }
    InLibrary(const InLibrary &) = delete;
    InLibrary &operator=(const InLibrary &) = delete;

private:
    friend class OutsideLibrary;
    friend struct Fork;

    // Neither touches errno.
    static void Enter() noexcept;
    static void Leave() noexcept;

    static inline constinit thread_local uint32_t tDepth = 0;
};

// This thread, if it is inside, is not for as long as this lives. To be made with no lock held but those of
// what a child does without.
class OutsideLibrary {
public:
    OutsideLibrary() noexcept : depth_(InLibrary::tDepth) {
        InLibrary::tDepth = 0;
        if (depth_ != 0) InLibrary::Leave();
    }
    ~OutsideLibrary() {
        if (depth_ != 0) InLibrary::Enter();
        InLibrary::tDepth = depth_;
    }
    OutsideLibrary(const OutsideLibrary &) = delete;
    OutsideLibrary &operator=(const OutsideLibrary &) = delete;

private:
    const uint32_t depth_;
};

// How often this process has been forked off since it first entered the library: 0 in the first one.
uint32_t CountOfForks() noexcept;

} // namespace vellum
