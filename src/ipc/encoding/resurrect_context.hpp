// SPDX-License-Identifier: MIT
// The reader of the flattened form. It believes nothing: its bytes may come from anybody.
//
//     TValResurrectContext context(bytes, length);
//     Ref<const void> reply = context.Resurrect();
#pragma once

#include "ipc/encoding/recent_strings.hpp"
#include "ipc/encoding/result_stack.hpp"

#include <vellum/values.hpp>

#include <cstdint>
#include <string_view>

namespace vellum {

// Reads items one after the other. What is wrong with an item but leaves no doubt where the next one
// begins gives null (or what the operation says) and a line in the log, and reading goes on. Anything
// else refuses the whole reading: the bytes end too early, a count or a number's size is impossible,
// containers stand too deep in each other, keys were made to take long, or memory is exhausted. Then every
// answer is null from there on. Nothing is allocated for what the bytes that are left could not hold. The
// log gets at most kMaximumLogLines lines, and one for the refusal. Used by one thread at a time.
//
// Strings come from the process's pool of names, so that equal ones are one object.
class TValResurrectContext {
public:
    static constexpr unsigned kMaximumLogLines = 16;

    // Reads `length` bytes (borrowed; they must stay as they are while the context reads). With null
    // bytes there is nothing to read.
    TValResurrectContext(const uint8_t *bytes, size_t length) noexcept
        : cursor_(bytes), end_(bytes ? bytes + length : bytes) {}
    TValResurrectContext(const TValResurrectContext &) = delete;
    TValResurrectContext &operator=(const TValResurrectContext &) = delete;
    virtual ~TValResurrectContext() = default;

    // The next item, whatever its kind. Null when there is none, for an unknown tag (the cursor is
    // then past the tag alone), and where the operation of its kind gives null.
    virtual Ref<const void> Resurrect() noexcept;

    // The keys of the next item, if it is a dictionary, in their order; what they stand for is passed over,
    // and little is made of it. Null for anything else, and for a dictionary of more than `most` pairs.
    Ref<const ValArray> ResurrectKeys(size_t most) noexcept;

    // The rest read an item of their kind of which the tag has been read.

    // The empty string for what is no valid UTF-8.
    virtual Ref<const void> ResurrectValString() noexcept;

    // Null for an unknown type.
    virtual Ref<const void> ResurrectValNumber() noexcept;

    // False when the length is not 1; the payload is then left unread. Deliberate: where the next item
    // begins is part of the format.
    virtual Ref<const void> ResurrectValBoolean() noexcept;

    // Null for no bytes. Deliberate as well.
    virtual Ref<const void> ResurrectValData() noexcept;

    // Null for no bytes, and for what is no whole bitmap.
    virtual Ref<const void> ResurrectValCharacterSet() noexcept;

    // An item that is null stands in the array, or the set, as null.
    virtual Ref<const void> ResurrectValArray() noexcept;

    // Ends with the first pair that lacks its key or value; what follows that is left unread.
    virtual Ref<const void> ResurrectValDictionary() noexcept;

    virtual Ref<const void> ResurrectValSet() noexcept;

    // Null for what is no absolute URL.
    virtual Ref<const void> ResurrectValURL() noexcept;

    // Null for length 0; else made of the next 16 bytes, whatever the length says.
    virtual Ref<const void> ResurrectValUUID() noexcept;

    // Reads `count` elements of `size` bytes and turns each to the processor's order; false when there
    // are not that many bytes left, which refuses the reading.
    bool StreamInData(void *destination, size_t size, size_t count) noexcept;

    // How many bytes have not been read yet.
    size_t BytesLeft() const noexcept { return static_cast<size_t>(end_ - cursor_); }

    // True once the whole reading has been refused.
    bool IsRefused() const noexcept { return refused_; }

private:
    // What filling dictionaries and sets may take in all, beyond what each key takes by chance: a step for
    // each other key that is met on the way to a place, and for each item of containers that are compared.
    static constexpr size_t kPatience = size_t{1} << 18;
    static constexpr size_t kPatienceForEach = 8;

    bool ReadWord(uint32_t &word) noexcept;
    const uint8_t *ReadBytes(size_t length) noexcept;
    bool ReadPayload(const uint8_t *&bytes, size_t &length) noexcept;
    bool ReadItems(size_t count);
    bool ReadPairs(size_t count);
    bool ReadKeys(size_t count);
    template <class Build>
    Ref<const void> ResurrectContainer(size_t least_bytes, bool (TValResurrectContext::*read)(size_t),
                                       Build build) noexcept;
    Ref<const void> OrRefuse(const void *created) noexcept;
    void Refuse(const char *reason) noexcept;
    template <class... Arguments>
    void Complain(const char *format, Arguments... arguments) noexcept;

    const uint8_t *cursor_;
    const uint8_t *const end_;
    unsigned log_lines_ = 0;
    bool refused_ = false;
    bool skips_ = false; // strings and containers are read, and not made
    size_t nesting_ = 0;
    size_t patience_ = kPatience;
    TResultStack results_;
    TRecentStrings recent_;
    std::string_view last_bitmap_; // faces of a family stand together and cover the same
    Ref<const ValCharacterSet> last_set_;
};

} // namespace vellum
