// SPDX-License-Identifier: MIT
// A model of how the register of a process changes: what stands in its tables and its indexes after each
// change, and what the change answers. It reads no file and shares nothing with the register: it knows its
// fonts beforehand, has texts for URLs, and goes through lists where the register looks into tables.
#pragma once

#include "support/named_font.hpp"

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vellum::test {

struct ModelFace {
    std::string url;                               // with what selects the face in its file
    std::string path;                              // of a font in memory: the URL's host
    std::string postscript_name;                   // empty: the face has none
    std::optional<int> weight;                     // of a variable face: where it stands
    std::array<std::vector<std::string>, 5> names; // by index; the one of paths has none
};

using ModelFaceRef = std::shared_ptr<const ModelFace>;

// What a parser finds in a file, by its path; nothing in files that are broken or not there.
using ModelFiles = std::map<std::string, std::vector<ModelFaceRef>>;

struct ModelURL {
    std::string text;
    std::string path; // normalized; of a font in memory: the host; empty: the URL has neither
    std::optional<std::string> postscript_name; // what the fragment asks for
    std::optional<int> weight;
};

// A buffer, and the first face in it, less the URL and the path, which nobody knows beforehand. Null for a
// buffer that can not be registered.
struct ModelBuffer {
    Bytes bytes;
    ModelFaceRef face;
};

// The fonts that the model knows.
ModelFiles WriteModelFiles(const FontFolder &folder);
std::vector<ModelBuffer> MakeModelBuffers();

// The form in which texts are equal that differ in letter case alone: of ASCII and of Latin-1's letters.
std::string WithoutCase(std::string_view text);

// Faces go by their number here: the first that a register enters is 0.
class ModelOfChanges {
public:
    using Faces = std::vector<size_t>;
    using URLs = std::vector<ModelURL>;
    using Texts = std::vector<std::string>;

    enum Slot : uint16_t {
        kPath,
        kPostScriptName,
        kFullName,
        kFamilyName,
        kSubfamilyName,
        kDisabledPath,
        kSlotCount
    };

    struct Key {
        Faces faces;
        bool has_set = false; // it had several faces once
    };
    using Index = std::map<std::string, Key>; // by path, or by name without case

    ModelOfChanges(const ModelFiles &files, uint32_t process_id) : files_(files), process_id_(process_id) {}

    // ---- changes ----
    bool RegisterFont(const ModelURL &url);
    bool RegisterFonts(const URLs &urls, Texts &errors);
    bool UnregisterFont(const ModelURL &url);
    bool UnregisterFonts(const URLs &urls);
    bool EnableFont(const ModelURL &url);
    bool DisableFont(const ModelURL &url);
    Texts EnableFonts(const URLs &urls);
    Texts DisableFonts(const URLs &urls);

    // `face` is the buffer's, as it is named now.
    bool RegisterDataFont(size_t buffer, const ModelFaceRef &face, uint32_t container);
    bool UnregisterDataFont(size_t buffer);

    // ---- what there is ----
    uint32_t ChangeCount() const { return change_count_; }
    size_t FaceCount() const { return faces_.size(); } // of all that ever were
    uint32_t ReferenceOf(size_t face) const;
    const ModelFace *FaceAt(size_t face) const; // null when it is gone
    const Faces &Enabled() const { return enabled_; }
    bool IsEnabled(size_t face) const { return faces_[face].table == Table::kEnabled; }

    bool IsMade(uint16_t slot) const { return indexes_[slot].has_value(); }
    const Index &GetIndex(uint16_t slot); // made when it is first asked for

    // The faces under a key of an index, a path or a name, which is made if need be.
    Faces Find(uint16_t slot, const std::string &key);

    const ModelFace *FaceOfBuffer(size_t buffer) const; // null when it is not registered
    size_t NumberOfBuffer(size_t buffer) const { return buffers_.at(buffer); }
    uint32_t ContainerOfBuffer(size_t buffer) const;
    bool IsOfDisabledBuffer(const ModelURL &url) const;

private:
    enum class Table { kNone, kEnabled, kDisabled };
    struct Entry {
        ModelFaceRef face;
        Table table;
    };

    std::vector<ModelFaceRef> Parse(const ModelURL &url) const;
    void Enter(const ModelFaceRef &face);
    void RemoveForGood(size_t face);
    void AddTo(uint16_t slot, size_t face);
    void AddToIndexesOfEnabled(size_t face);
    void RemoveFrom(uint16_t slot, size_t face);
    void RemoveFromIndexes(size_t face);

    const ModelFiles &files_;
    const uint32_t process_id_;
    uint32_t change_count_ = 0;
    std::vector<Entry> faces_;
    Faces enabled_; // in the order in which they became so
    std::array<std::optional<Index>, kSlotCount> indexes_;
    std::map<size_t, size_t> buffers_;      // to the face that a buffer was registered as
    std::map<size_t, uint32_t> containers_; // of such faces
};

} // namespace vellum::test
