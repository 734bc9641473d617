// SPDX-License-Identifier: MIT
#include "query/face_order.hpp"

#include "describe/client_font_entity.hpp"
#include "platform/process/passing_failures.hpp"
#include "values/merge_sort.hpp"
#include "values/val_str.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace vellum {

namespace {

// Whether comparing by one value puts faces in an order: no two values are within the tolerance without
// being equal, and no two that differ have one magnitude.
bool IsOrderedBy(std::span<const FaceOrder::Face> faces, double TraitKey::*value) {
    const double first = faces.front().key.traits.*value;
    const auto is_first = [&](const FaceOrder::Face &face) { return face.key.traits.*value == first; };
    if (std::ranges::all_of(faces, is_first)) return true;

    std::vector<double> values;
    for (const FaceOrder::Face &face : faces) values.push_back(face.key.traits.*value);
    if (std::ranges::any_of(values, [](double number) { return std::isnan(number); })) return false;
    std::ranges::sort(values);
    values.erase(std::unique(values.begin(), values.end()), values.end());
    const auto are_near = [](double a, double b) { return !DifferInTrait(a, b); };
    if (std::ranges::adjacent_find(values, are_near) != values.end()) return false;
    const auto magnitude = [](double number) { return std::abs(static_cast<float>(number)); };
    std::ranges::sort(values, {}, magnitude);
    return std::ranges::adjacent_find(values, {}, magnitude) == values.end();
}

bool IsOrdered(std::span<const FaceOrder::Face> faces) {
    return faces.size() == 1 ||
           (IsOrderedBy(faces, &TraitKey::weight) && IsOrderedBy(faces, &TraitKey::slant) &&
            IsOrderedBy(faces, &TraitKey::width));
}

// Never chosen for a character: see the rule for character sets.
bool IsEndstop(const FaceOrder::Face &face) {
    return face.key.postscript_name && TValStr(face.key.postscript_name).View() == "Endstop";
}

} // namespace

FaceOrder::FaceOrder(const FontTable &fonts) : fonts_(fonts) {
    StartAnew();
}

void FaceOrder::FaceAdded(FontReference reference) {
    added_.push_back(reference);
}

void FaceOrder::FaceRemoved(FontReference reference) {
    removed_.insert(reference);
}

void FaceOrder::StartAnew() {
    faces_.clear();
    families_.Clear();
    removed_.clear();
    added_.clear();
    fonts_.ForEach([&](FontReference reference, const GxFont *) { added_.push_back(reference); });
}

// Faces whose order was doubtful may be in order once one of them is gone: they are placed anew, with those
// that have come since behind them, as in the table.
void FaceOrder::DropRemoved() {
    if (removed_.empty()) return;
    std::unordered_set<FontReference> doubtful;
    std::erase_if(faces_, [&](const Face &face) {
        const bool is_gone = removed_.contains(face.reference);
        if (!is_gone && !face.is_sound) doubtful.insert(face.reference);
        return is_gone || !face.is_sound;
    });
    removed_.clear();
    if (families_.Count() > faces_.size() + added_.size() + FamilyRanks::kSpareFamilies) return StartAnew();
    if (doubtful.empty()) return;
    std::vector<FontReference> again;
    fonts_.ForEach([&](FontReference reference, const GxFont *) {
        if (doubtful.contains(reference)) again.push_back(reference);
    });
    added_.insert(added_.begin(), again.begin(), again.end());
}

// Those that are in the table now, in its order: a face that came, went and came back stands where it came
// last.
std::vector<FontReference> FaceOrder::TakeAdded() {
    std::unordered_set<FontReference> seen;
    std::vector<FontReference> present;
    for (auto next = added_.rbegin(); next != added_.rend(); ++next)
        if (fonts_.Find(*next) && seen.insert(*next).second) present.push_back(*next);
    std::ranges::reverse(present);
    added_.clear();
    return present;
}

void FaceOrder::Update() {
    const bool is_retry = pace_.TakeTurn();
    if (is_retry) StartAnew();
    if (!is_retry && added_.empty() && removed_.empty()) return;
    ForgetCharacters();
    const uint32_t failures = tPassingFailures;
    DropRemoved();
    Insert(MakeFaces(TakeAdded()));
    MarkSoundness();
    const bool failed = failures != tPassingFailures;
    if (is_retry)
        pace_.MadeAgain(failed);
    else if (failed)
        pace_.Failed();
}

std::vector<FaceOrder::Face> FaceOrder::MakeFaces(const std::vector<FontReference> &references) {
    std::vector<Face> faces;
    faces.reserve(references.size());
    std::vector<const ValString *> names;
    for (const FontReference reference : references) {
        const GxFont *font = fonts_.Find(reference);
        ComparisonKey key{TClientFontEntity(Retain(font))};
        names.push_back(key.family.Get());
        faces.push_back({reference, font, std::move(key), nullptr});
    }
    const auto families = families_.FindOrAdd(names);
    for (size_t i = 0; i < faces.size(); ++i) faces[i].family = families[i];
    return faces;
}

Comparison FaceOrder::Compare(const Face &a, const Face &b) noexcept {
    const uint32_t left = a.family->rank, right = b.family->rank;
    return left == right ? CompareWithinFamily(a.key, b.key) : Comparison{left < right ? -1 : 1};
}

// New faces stand behind those that they tie with, as in the table.
void FaceOrder::Insert(std::vector<Face> faces) {
    MergeSort(faces, [](const Face &a, const Face &b) { return Compare(a, b).order; });
    std::vector<Face> merged;
    merged.reserve(faces_.size() + faces.size());
    auto next = faces_.begin();
    for (Face &face : faces) {
        const auto place = std::partition_point(
            next, faces_.end(), [&](const Face &other) { return Compare(other, face).order <= 0; });
        std::move(next, place, std::back_inserter(merged));
        next = place;
        merged.push_back(std::move(face));
    }
    std::move(next, faces_.end(), std::back_inserter(merged));
    faces_ = std::move(merged);
}

// Faces that only their values and their subfamilies tell apart.
bool FaceOrder::AreAlike(const Face &a, const Face &b) noexcept {
    const TraitKey &left = a.key.traits, &right = b.key.traits;
    return a.family->rank == b.family->rank && left.is_present == right.is_present &&
           ((left.symbolic ^ right.symbolic) & kStyleBits) == 0;
}

void FaceOrder::MarkSoundness() {
    for (size_t from = 0, to; from < faces_.size(); from = to) {
        for (to = from + 1; to < faces_.size() && AreAlike(faces_[from], faces_[to]);) ++to;
        const auto alike = std::span(faces_).subspan(from, to - from);
        const bool is_sound = IsOrdered(alike);
        for (Face &face : alike) face.is_sound = is_sound;
    }
}

void FaceOrder::ForgetCharacters() noexcept {
    pages_.Clear();
    coverages_.clear();
    seen_coverages_.clear();
    covered_ = 0;
}

const CharacterPages::Coverage *FaceOrder::CoverageAt(size_t index) {
    while (coverages_.size() <= index && covered_ < faces_.size()) {
        Face &face = faces_[covered_];
        if (!face.coverage && !IsEndstop(face)) {
            const uint32_t failures = tPassingFailures;
            auto coverage = GxFontCopyCharacterSet(face.font);
            // What could not be read for the moment counts for nothing, and is asked for again.
            if (failures == tPassingFailures) face.coverage = std::move(coverage);
        }
        if (face.coverage && seen_coverages_.insert(face.coverage.Get()).second)
            coverages_.push_back({face.coverage.Get(), covered_});
        ++covered_;
    }
    return index < coverages_.size() ? &coverages_[index] : nullptr;
}

const FaceOrder::Face *FaceOrder::FindCharacter(uint32_t character) {
    const bool is_retry = coverage_pace_.TakeTurn();
    if (is_retry) ForgetCharacters();
    const uint32_t failures = tPassingFailures;
    size_t place = CharacterPages::kNone;
    try {
        place = pages_.Find(character, [this](size_t index) { return CoverageAt(index); });
    } catch (...) { // memory is exhausted: a coverage may have been passed over
        ForgetCharacters();
        throw;
    }
    const bool failed = failures != tPassingFailures; // a coverage could not be read, and was passed over
    if (is_retry)
        coverage_pace_.MadeAgain(failed);
    else if (failed)
        coverage_pace_.Failed();
    return place == CharacterPages::kNone ? nullptr : &faces_[place];
}

} // namespace vellum
