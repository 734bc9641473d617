// SPDX-License-Identifier: MIT
// The order in which the faces of a register answer a request that names none of them: kept, so that "the
// best font that has this" is the first face on the way that has it, and nothing need be sorted.
//
// It is made when it is first needed, and brought up to date when it is next needed after a change, at the
// cost of the faces that are new. It answers what sorting would answer wherever the comparison is an order
// at all. Among faces of one family and style it may not be: values of one magnitude each come after the
// other, and tolerances add up. Such faces are marked, and an answer that one of them begins is sorted.
#pragma once

#include "platform/font/gx_font.hpp"
#include "platform/process/retry_pace.hpp"
#include "query/character_pages.hpp"
#include "query/comparison_key.hpp"
#include "query/family_ranks.hpp"
#include "store/font_table.hpp"
#include "store/table_follower.hpp"

#include <span>
#include <unordered_set>
#include <vector>

namespace vellum {

class FaceOrder final : public TTableFollower {
public:
    struct Face {
        FontReference reference;
        const GxFont *font; // the table's, and gone when it leaves the table
        ComparisonKey key;
        const FamilyRanks::Family *family; // equal families have equal ranks
        bool is_sound = true;              // false: its place among its neighbours is not to be relied on
        Ref<const ValCharacterSet> coverage = {}; // once it has been asked for
    };

    explicit FaceOrder(const FontTable &fonts);

    void FaceAdded(FontReference reference) override;
    void FaceRemoved(FontReference reference) override;

    // Brings it up to date with the table. Comes before what follows, which is valid until the table
    // changes. When it throws, the order may be in any state.
    void Update();

    // Every face of the table, in order.
    std::span<const Face> Faces() const noexcept { return faces_; }

    // The first face that has a character, and may be chosen for one; null for none.
    const Face *FindCharacter(uint32_t character);

private:
    static Comparison Compare(const Face &a, const Face &b) noexcept;
    static bool AreAlike(const Face &a, const Face &b) noexcept;

    void StartAnew();
    void DropRemoved();
    std::vector<FontReference> TakeAdded();
    std::vector<Face> MakeFaces(const std::vector<FontReference> &references);
    void Insert(std::vector<Face> faces);
    void MarkSoundness();
    const CharacterPages::Coverage *CoverageAt(size_t index);
    void ForgetCharacters() noexcept;

    const FontTable &fonts_;
    std::vector<Face> faces_;
    std::vector<FontReference> added_;          // since the last update; some may be gone again
    std::unordered_set<FontReference> removed_; // since the last update; some may be back
    RetryPace pace_;                            // for faces that could not be read
    FamilyRanks families_;

    // The coverages of the faces from the front, each once, as far as a question needed them.
    std::vector<CharacterPages::Coverage> coverages_;
    std::unordered_set<const ValCharacterSet *> seen_coverages_;
    size_t covered_ = 0; // faces that have been looked at for it
    RetryPace coverage_pace_;
    CharacterPages pages_;
};

} // namespace vellum
