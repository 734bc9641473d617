// SPDX-License-Identifier: MIT
// TLocalGlypharyImp: a register that lives in this process; the table of its fonts and its indexes.
//
// Registration, changes and indexes are defined in store/, lookups and property copies in query/.
// As in every register, operations are called with the mutex held and are const for the callers
// behind the handles; the mutex guards every mutable member.
#pragma once

#include "frame/registry/glyphary_imp.hpp"
#include "platform/process/retry_pace.hpp"
#include "store/font_index.hpp"
#include "store/font_table.hpp"
#include "store/table_follower.hpp"

#include <array>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace vellum {

class FaceOrder;
class TFontEntityComparisonContext;

// The slots of the indexes; the numbers are the ids of GetIndex.
enum IndexID : uint16_t {
    kPathIndex = 0,
    kPostScriptNameIndex = 1,
    kFullNameIndex = 2,
    kFamilyNameIndex = 3,
    kSubfamilyNameIndex = 4,
    kDisabledPathIndex = 5, // the paths of disabled fonts; registration never feeds it
    kIndexCount = 6,
};

// The priority of every font of a register in a process: before all others.
constexpr uint32_t kProcessPriority = 60000;

class TLocalGlypharyImp final : public TGlypharyImp {
public:
    TLocalGlypharyImp();
    ~TLocalGlypharyImp() override;

    // ---- the protocol ----
    Ref<const ValArray> CopyPropertiesForFontsMatchingRequest(const ValDictionary *request,
                                                              const ValSet *keys,
                                                              VLScope scope) const override;
    Ref<const ValDictionary> CopyPropertiesForFontMatchingRequest(const ValDictionary *request,
                                                                  const ValSet *keys,
                                                                  VLScope scope) const override;
    Ref<const ValArray> CopyPropertiesForAllFonts(const ValSet *keys, VLScope scope) const override;
    Ref<const ValDictionary> CopyPropertiesForFonts(const ValArray *urls, const ValSet *keys,
                                                    VLScope scope) const override;
    Ref<const ValDictionary> CopyPropertyForFonts(const ValArray *urls, const ValString *key,
                                                  VLScope scope) const override;
    Ref<const ValDictionary> CopyPropertiesForFont(const ValURL *url, const ValSet *keys,
                                                   VLScope scope) const override;
    Ref<const ValDictionary> ExperimentalDataFunnel(const ValDictionary *query,
                                                    VLScope scope) const override;
    Ref<const ValArray> CopyAvailableFontNames(VLScope scope) const override;
    Ref<const ValArray> CopyAvailableFontFamilyNames(VLScope scope) const override;
    Ref<const ValArray> CopyAvailableFontURLs(VLScope scope) const override;
    Ref<const ValArray> CopyFamilyNamesForLanguage(const ValString *language, VLScope scope,
                                                   uint32_t reserved) const override;
    Ref<const ValURL> CopyFontForName(const ValString *name, VLScope scope) const override;
    Ref<const ValArray> CopyFontsForURL(const ValURL *url, VLScope scope) const override;
    Ref<const ValURL> CopyFontForRequest(const ValDictionary *request, VLScope scope) const override;
    Ref<const ValArray> CopyFontsForRequest(const ValDictionary *request, VLScope scope) const override;
    Ref<const ValURL> CopyFontForCharacter(uint32_t character, uint32_t options,
                                           uint32_t reserved) const override;
    bool RegisterFont(const ValURL *url, const ValDictionary *properties, VLFontFlags flags,
                      VLScope scope) const override;
    bool RegisterFonts(const ValArray *urls, const ValDictionary *properties, VLFontFlags flags,
                       VLScope scope, ErrorArray errors) const override;
    bool UnregisterFont(const ValURL *url, VLScope scope) const override;
    bool UnregisterFonts(const ValArray *urls, VLScope scope, ErrorArray errors) const override;
    bool EnableFont(const ValURL *url, VLScope scope) const override;
    bool DisableFont(const ValURL *url, VLScope scope) const override;
    bool IsFontRegistered(const ValURL *url) const override;
    bool IsFontEnabled(const ValURL *url) const override;
    VLScope GetFontScope(const ValURL *url) const override;
    uint32_t GetFontPriority(const ValURL *url) const override;
    uint32_t GetFontReference(const ValURL *url) const override;
    Ref<const ValURL> CopyFontDirectoryURL(const ValURL *url) const override;

    // ---- indexes ----
    Ref<const ValSet> SearchIndexedFontsForName(uint16_t id, const ValString *name) const override;
    uint16_t GetIndexCount(uint16_t &first_id) const override;

    // The index with an id below kIndexCount, made and filled when it is first asked for.
    TFontIndex *GetIndex(uint16_t id) const override;

    // The index that answers for a property key, or null for the keys that none does.
    TFontIndex *GetIndexForProperty(const ValString *key) const override;

    // ---- fonts in memory; see vellum.h for the exported forms ----
    virtual bool RegisterDataFont(const ValData *data, uint32_t legacy_container, VLFontFlags flags,
                                  VLScope scope) const;
    virtual bool UnregisterDataFont(const ValData *data, VLScope scope) const;

    // The font of a buffer (borrowed), or null; its legacy container in *legacy_container.
    virtual const GxFont *GetDataFont(const ValData *data, uint32_t *legacy_container) const;
    virtual uint32_t GetDataFontFountFont(const ValURL *url) const;
    virtual Ref<const ValURL> CopyURLForDataFont(const ValData *data, uint32_t legacy_font) const;

    // The order of two faces of a register under a context (borrowed, or null), as TFontEntity::Compare has
    // it; a reference without a face is a face without properties.
    class TFontRefSorter {
    public:
        TFontRefSorter(const TLocalGlypharyImp &registry,
                       const TFontEntityComparisonContext *context) noexcept
            : registry_(registry), context_(context) {}

        int operator()(FontReference a, FontReference b) const;

        // Sorts from the order in which the references stand; each face is read once.
        void Sort(std::vector<FontReference> &references) const;

    private:
        const TLocalGlypharyImp &registry_;
        const TFontEntityComparisonContext *context_;
    };

    // Copies a font file to stable storage; true, and the URL of the copy in `copy`, even when copying
    // failed: no file lies there then. False, and null, when there is no such storage or the source has no
    // path.
    bool MoveFileToStableStorage(const ValURL *source, Ref<const ValURL> &copy) const;

    // ---- the table ----
    // The face (borrowed), enabled or disabled; null for a reference that was never given or is gone.
    const GxFont *GetPossiblyDisabledFont(FontReference reference) const noexcept;

    // How often the set of registered fonts changed.
    uint32_t GetChangeCount() const noexcept { return change_count_; }

    // The first free font index from `candidate` on; see the definition for when it waits for ever.
    uint32_t FindNextFontIndex(uint32_t candidate) const;

private:
    FontReference TakeNextReference() const;
    void AddFace(FontReference reference, const GxFont *font) const;
    void RemoveFace(FontReference reference) const noexcept;
    bool IsInUse(const ValURL *url) const;
    const GxFont *FindDataFont(const ValData *data) const noexcept;
    void ForgetDataFont(FontReference reference, const GxFont *font) const noexcept;
    void NoteChange() const noexcept; // of what is registered, complete by now

    // The references under a URL in an index, copied: the index may change while they are walked.
    std::vector<FontReference> ReferencesForURL(uint16_t index, const ValURL *url) const;

    // The first face under a URL that fits its fragment, or 0; disabled ones after enabled ones.
    FontReference FindFont(const ValURL *url, bool disabled_too) const;
    Ref<const ValDictionary> CopyFontProperties(FontReference reference, const ValSet *keys) const;
    Ref<const void> CopyFontProperty(FontReference reference, const ValString *key) const;

    // Requests: the references of the faces that answer, in order; the best alone where that is enough.
    enum class Wanted { kAll, kBest };
    std::vector<FontReference> FindFonts(const ValDictionary *request, Wanted wanted) const;
    std::optional<std::vector<FontReference>> FindFontsByOneKey(const ValDictionary *request) const;
    std::vector<FontReference> ScanFonts(const ValDictionary *request, Wanted wanted) const;
    std::vector<FontReference> KeepMatching(std::vector<FontReference> candidates,
                                            const ValDictionary *rest) const;
    void PutInOrder(std::vector<FontReference> &fonts, const TFontEntityComparisonContext *context) const;
    std::optional<std::vector<FontReference>> KeptOrder(const std::vector<FontReference> &fonts,
                                                        const TFontEntityComparisonContext *context) const;
    FaceOrder &Order() const; // made when it is first asked for
    Ref<const ValURL> CopyFirstURL(const std::vector<FontReference> &fonts) const;

    void AddFontToIndex(TFontIndex &index, FontReference reference, const GxFont *font) const;
    void RemoveFontFromIndex(TFontIndex &index, FontReference reference, const GxFont *font) const;
    void AddAllFontsToIndex(TFontIndex &index) const;
    void TakeOutOfIndex(uint16_t id, FontReference reference, const GxFont *font) const noexcept;

    // The indexes of enabled fonts that are made, and the order.
    void AddFontToIndexes(FontReference reference, const GxFont *font) const noexcept;
    void RemoveFontFromIndexes(FontReference reference, const GxFont *font) const noexcept;

    mutable uint32_t change_count_ = 0;
    mutable uint32_t index_cursor_ = 0; // the font index that the next face gets
    const uint32_t process_id_;
    mutable FontTable enabled_;
    mutable FontTable disabled_;                // a face is in exactly one of the two
    mutable TValMutableDict data_fonts_;        // ValData to GxFont, which enabled_ holds
    mutable TValMutableDict legacy_containers_; // FontReference to container id; fonts in memory only
    mutable std::array<std::unique_ptr<TFontIndex>, kIndexCount> indexes_;
    mutable std::array<RetryPace, kIndexCount> index_paces_; // for fonts that could not be read
    mutable std::unique_ptr<TTableFollower> order_;          // a FaceOrder of enabled_
};

} // namespace vellum
