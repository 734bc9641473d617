// SPDX-License-Identifier: MIT
// A second reader of the flattened form, written from docs/encoding.md alone and sharing no code with
// the first: it copies, recurses and compares every key with every other, so that it is easily seen
// to do what the page says.
#pragma once

#include "ipc/encoding/reference_model.hpp"
#include "support/bytes.hpp"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vellum::test {

// True when the text is UTF-8 as Unicode defines it: no surrogates, nothing above U+10FFFF, and every
// character in as few bytes as will do.
bool IsUTF8(std::string_view text);

class ReferenceDecoder {
public:
    explicit ReferenceDecoder(const Bytes &bytes)
        : bytes_(reinterpret_cast<const char *>(bytes.data()), bytes.size()) {}

    // The next item; null when there is none, or when the reading is refused or was before.
    Model Next();

    bool IsRefused() const { return refused_; }
    size_t BytesLeft() const { return bytes_.size() - at_; }

private:
    struct Refusal {};

    std::string Take(size_t length);
    uint32_t TakeWord();
    size_t TakeLength();
    std::string TakePayload() { return Take(TakeLength()); }
    size_t TakeCount(size_t item_size);

    Model Item();
    Model String();
    Model Number();
    Model Boolean();
    Model Data();
    Model UUID();
    Model URL();
    Model CharacterSet();
    Model Array(size_t count);
    Model Set(size_t count);
    Model Dictionary(size_t count);
    Model Container(Model (ReferenceDecoder::*read)(size_t), size_t item_size);

    const std::string bytes_;
    size_t at_ = 0;
    size_t nesting_ = 0;
    bool refused_ = false;
};

} // namespace vellum::test
