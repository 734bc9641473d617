// SPDX-License-Identifier: MIT
// The writer of the flattened form.
//
//     TValFlattenContext context(buffer.Get(), false);
//     context.Flatten(request);
//     if (context.IsOk()) ... context.GetBytePtr(), context.GetLength() ...
#pragma once

#include "platform/val/data.hpp"

#include <vellum/values.hpp>

namespace vellum {

// Appends items to a buffer. A value that cannot be flattened (of a kind that the format does not
// have, too large, nested too deep) or that there is no memory for ends the context for good, and
// leaves its buffer empty: never a part of a value. Used by one thread at a time.
class TValFlattenContext {
public:
    // Writes behind what the buffer holds. With `adopt` the caller's reference is taken over, without
    // it one is added. The buffer belongs to the context as long as that lives.
    TValFlattenContext(ValData *output, bool adopt) noexcept;
    TValFlattenContext(const TValFlattenContext &) = delete;
    TValFlattenContext &operator=(const TValFlattenContext &) = delete;
    virtual ~TValFlattenContext() = default;

    // The buffer (borrowed).
    virtual const ValData *GetStream() const noexcept { return output_.Get(); }

    // Appends the item of a value; nothing for null, or when an earlier value has failed.
    virtual void Flatten(const void *value) noexcept;

    virtual const uint8_t *GetBytePtr() const noexcept { return ValDataGetBytes(output_.Get()); }
    virtual size_t GetLength() const noexcept { return ValDataGetLength(output_.Get()); }

    // Append the item of a value of this kind. A missing one is written like an empty one; a missing
    // number is not written.
    virtual void FlattenValString(const ValString *string) noexcept;
    virtual void FlattenValNumber(const ValNumber *number) noexcept;
    virtual void FlattenValBoolean(const ValBoolean *boolean) noexcept;
    virtual void FlattenValData(const ValData *data) noexcept;
    virtual void FlattenValCharacterSet(const ValCharacterSet *set) noexcept;
    virtual void FlattenValArray(const ValArray *array) noexcept;
    virtual void FlattenValDictionary(const ValDictionary *dictionary) noexcept;
    virtual void FlattenValSet(const ValSet *set) noexcept;
    virtual void FlattenValURL(const ValURL *url) noexcept;
    virtual void FlattenValUUID(const ValUUID *uuid) noexcept;

    // Appends a big-endian word.
    void StreamOut32bitEntity(uint32_t word) noexcept;

    // Appends `count` elements of `element_size` bytes, each turned to big-endian.
    void StreamOut(const void *elements, size_t element_size, size_t count) noexcept;

    // False once a value has failed.
    bool IsOk() const noexcept { return ok_; }

protected:
    // Without a buffer yet; not ok until it has one.
    TValFlattenContext() noexcept = default;
    void SetOutput(Ref<ValData> output) noexcept;

    // From then on nothing is written any more.
    void Close() noexcept { open_ = false; }

    // Empties the output and ends the context.
    virtual void Fail() noexcept;

    // Makes the buffer hold `bytes` more than it has bytes; false when it cannot. A context may take
    // bytes out of its buffer for that.
    virtual bool MakeRoom(size_t bytes) noexcept;

    ValData *Output() const noexcept { return output_.Get(); }

private:
    uint8_t *Extend(size_t bytes) noexcept;
    uint8_t *BeginItem(uint32_t tag, size_t length, size_t payload) noexcept;
    void AppendItem(uint32_t tag, const void *bytes, size_t length) noexcept;
    template <class Container>
    void FlattenContainer(uint32_t tag, const Container *container) noexcept;

    Ref<ValData> output_;
    size_t nesting_ = 0;
    bool ok_ = false;
    bool open_ = false; // ok, and not closed
};

} // namespace vellum
