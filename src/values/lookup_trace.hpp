// SPDX-License-Identifier: MIT
// The trace of a lookup: the stages that a question goes through, for whoever wants to know why the
// answer is what it is.
//
// Stages are collected while the question is being answered, and handed over when all locks are let go;
// frame/exports does both ends. In between, each place that decides something tells it:
//
//     LookupTrace::Tell("scan", [&](TValMutableDict &stage) { stage.Set(key, value); });
//
// Where nobody listens, that is one branch. docs/trace.md lists the stages.
#pragma once

#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"

#include <string_view>

namespace vellum {

class LookupTrace {
public:
    LookupTrace() = default;
    LookupTrace(const LookupTrace &) = delete;
    LookupTrace &operator=(const LookupTrace &) = delete;

    // The trace of the question that this thread is answering; null when nobody listens.
    static LookupTrace *Current() noexcept { return sCurrent; }

    // Makes a trace (null: none) the thread's, for the life of this object.
    class Scope {
    public:
        explicit Scope(LookupTrace *trace) noexcept : former_(std::exchange(sCurrent, trace)) {}
        Scope(const Scope &) = delete;
        Scope &operator=(const Scope &) = delete;
        ~Scope() { sCurrent = former_; }

    private:
        LookupTrace *former_;
    };

    // Adds a stage; `fill(stage)` sets what it says beside its name. When memory is exhausted the stage is
    // left out: no question is answered otherwise because somebody listens.
    template <class Fill>
    static void Tell(std::string_view stage, Fill fill) noexcept {
        if (!sCurrent) return;
        try {
            TValMutableDict entry = sCurrent->Begin(stage);
            fill(entry);
            sCurrent->stages_.Append(entry.Publish().Get());
        } catch (...) {
            sCurrent->is_whole_ = false;
        }
    }

    const TValMutableArray &Stages() const noexcept { return stages_; }

    // False when a stage had to be left out.
    bool IsWhole() const noexcept { return is_whole_; }

private:
    static TValMutableDict Begin(std::string_view stage);

    static inline constinit thread_local LookupTrace *sCurrent = nullptr;

    TValMutableArray stages_;
    bool is_whole_ = true;
};

// A key of a stage, or a text in it; interned.
Ref<const ValString> TraceText(std::string_view text);

} // namespace vellum
