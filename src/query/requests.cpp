// SPDX-License-Identifier: MIT
// Requests to a register in the process: its indexes narrow them down, what they don't know of is matched
// face by face, and what is left is put in order.
#include "describe/client_font_entity.hpp"
#include "describe/font_properties.hpp"
#include "query/face_order.hpp"
#include "query/trace_stages.hpp"
#include "store/local_glyphary_imp.hpp"
#include "values/lookup_trace.hpp"
#include "values/merge_sort.hpp"
#include "values/val_array.hpp"

#include <algorithm>
#include <unordered_set>

namespace vellum {

namespace {

// From so many candidates on, picking them out of the order of all faces costs less than sorting them.
constexpr size_t kManyFonts = 64;

TValMutableDict CopyOf(const ValDictionary *request) {
    TValMutableDict copy;
    size_t cursor = 0;
    for (const void *key, *value; ValDictionaryNext(request, &cursor, &key, &value);) copy.Set(key, value);
    return copy;
}

// Whether a face fits every key; tells which one it does not fit.
bool Fits(const TFontEntity &font, const ValDictionary *request) {
    size_t cursor = 0;
    for (const void *key, *value; ValDictionaryNext(request, &cursor, &key, &value);) {
        const auto *property = Cast<ValString>(key);
        if (font.MatchesProperty(property, value)) continue;
        TellDropped(font, property, value);
        return false;
    }
    return true;
}

// The faces on the way that fit, or the first of them; none when the place of one is not to be relied on.
template <class FitsFace>
std::optional<std::vector<FontReference>> WalkOrder(std::span<const FaceOrder::Face> faces, bool best_alone,
                                                    FitsFace fits) {
    std::vector<FontReference> found;
    for (const FaceOrder::Face &face : faces) {
        if (!fits(face)) continue;
        if (!face.is_sound) return std::nullopt;
        found.push_back(face.reference);
        if (best_alone) break;
    }
    return found;
}

} // namespace

int TLocalGlypharyImp::TFontRefSorter::operator()(FontReference a, FontReference b) const {
    return TClientFontEntity(Retain(registry_.enabled_.Find(a)))
        .Compare(TClientFontEntity(Retain(registry_.enabled_.Find(b))), context_);
}

void TLocalGlypharyImp::TFontRefSorter::Sort(std::vector<FontReference> &references) const {
    if (references.size() < 2) return;
    struct Item {
        FontReference reference;
        ComparisonKey key;
    };
    std::vector<Item> items;
    items.reserve(references.size());
    for (const FontReference reference : references)
        items.push_back(
            {reference, ComparisonKey(TClientFontEntity(Retain(registry_.enabled_.Find(reference))))});
    const auto compare = [&](const Item &a, const Item &b) { return CompareKeys(a.key, b.key, context_); };
    MergeSort(items, [&](const Item &a, const Item &b) { return compare(a, b).order; });
    std::ranges::transform(items, references.begin(), &Item::reference);

    if (!LookupTrace::Current()) return;
    for (size_t i = 0; i + 1 < items.size(); ++i)
        TellOrder(TClientFontEntity(Retain(registry_.enabled_.Find(items[i].reference))),
                  TClientFontEntity(Retain(registry_.enabled_.Find(items[i + 1].reference))),
                  compare(items[i], items[i + 1]));
}

FaceOrder &TLocalGlypharyImp::Order() const {
    if (!order_) order_ = std::make_unique<FaceOrder>(enabled_);
    auto &order = static_cast<FaceOrder &>(*order_);
    try {
        order.Update();
    } catch (...) { // memory is exhausted: it may be in any state
        order_.reset();
        throw;
    }
    return order;
}

// The fonts in the order that is kept; none where the context, or a doubtful order, asks for sorting. A
// preferred subfamily is asked for only where some of the fonts have it and some have not.
std::optional<std::vector<FontReference>>
TLocalGlypharyImp::KeptOrder(const std::vector<FontReference> &fonts,
                             const TFontEntityComparisonContext *context) const {
    if (context && context->NamesPostScriptName()) return std::nullopt;
    const ValString *preferred = context ? context->PreferredSubfamily() : nullptr;
    const std::unordered_set<FontReference> members(fonts.begin(), fonts.end());
    size_t preferred_fonts = 0;
    auto ordered = WalkOrder(Order().Faces(), false, [&](const FaceOrder::Face &face) {
        if (!members.contains(face.reference)) return false;
        if (preferred && face.key.subfamily.Get() == preferred) ++preferred_fonts;
        return true;
    });
    if (preferred_fonts > 0 && preferred_fonts < fonts.size()) return std::nullopt;
    return ordered;
}

void TLocalGlypharyImp::PutInOrder(std::vector<FontReference> &fonts,
                                   const TFontEntityComparisonContext *context) const {
    if (fonts.size() >= kManyFonts && !LookupTrace::Current()) {
        if (auto ordered = KeptOrder(fonts, context)) {
            fonts = std::move(*ordered);
            return;
        }
    }
    TFontRefSorter(*this, context).Sort(fonts);
}

std::vector<FontReference> TLocalGlypharyImp::KeepMatching(std::vector<FontReference> candidates,
                                                           const ValDictionary *rest) const {
    const auto is_out = [&](FontReference reference) {
        const GxFont *font = enabled_.Find(reference);
        return !font || !Fits(TClientFontEntity(Retain(font)), rest);
    };
    if (ValDictionaryGetCount(rest) > 0) std::erase_if(candidates, is_out);
    return candidates;
}

// Who listens hears of every font, in the order of the table.
std::vector<FontReference> TLocalGlypharyImp::ScanFonts(const ValDictionary *request, Wanted wanted) const {
    if (!LookupTrace::Current()) {
        const auto fits = [&](const FaceOrder::Face &face) {
            return TClientFontEntity(Retain(face.font)).MatchesProperties(request);
        };
        if (auto found = WalkOrder(Order().Faces(), wanted == Wanted::kBest, fits))
            return std::move(*found);
    }
    std::vector<FontReference> fonts;
    enabled_.ForEach([&](FontReference reference, const GxFont *) { fonts.push_back(reference); });
    TellScan(fonts.size());
    fonts = KeepMatching(std::move(fonts), request);
    const TFontEntityComparisonContext context(request);
    PutInOrder(fonts, &context);
    return fonts;
}

// What an index has for a request that is one key, of which nothing is left then: the most frequent
// question. None for other requests, and where somebody listens to how the answer comes about. A PostScript
// name is no such key, as other names stand in for it.
std::optional<std::vector<FontReference>>
TLocalGlypharyImp::FindFontsByOneKey(const ValDictionary *request) const {
    if (ValDictionaryGetCount(request) != 1 || LookupTrace::Current()) return std::nullopt;
    size_t cursor = 0;
    const void *key = nullptr, *value = nullptr;
    ValDictionaryNext(request, &cursor, &key, &value);
    const auto *property = Cast<ValString>(key);
    if (TFontProperties::GetPropertyID(property) == PropertyID::kName) return std::nullopt;
    const TFontIndex *index = GetIndexForProperty(property);
    return index ? std::optional(index->FontsForKey(value)) : std::nullopt;
}

// A request of which an index knows a part is answered by candidates alone: where they come to nothing,
// there is no answer, whatever else is requested.
std::vector<FontReference> TLocalGlypharyImp::FindFonts(const ValDictionary *request, Wanted wanted) const {
    if (auto fonts = FindFontsByOneKey(request)) {
        if (fonts->size() > 1) {
            const TFontEntityComparisonContext context(request);
            PutInOrder(*fonts, &context);
        }
        return std::move(*fonts);
    }
    TValMutableDict rest = CopyOf(request);
    TValMutableSet candidates(kValRawCallbacks);
    bool is_indexed = false;
    if (!SearchIndexedFontsForRequest(rest, candidates, is_indexed))
        return is_indexed ? std::vector<FontReference>() : ScanFonts(request, wanted);
    auto fonts = KeepMatching(ReferencesIn(candidates.Get()), rest.Get());
    const TFontEntityComparisonContext context(request);
    PutInOrder(fonts, &context);
    return fonts;
}

Ref<const ValURL> TLocalGlypharyImp::CopyFirstURL(const std::vector<FontReference> &fonts) const {
    for (const FontReference reference : fonts)
        if (const GxFont *font = enabled_.Find(reference))
            if (auto url = TClientFontEntity(Retain(font)).CopyURL()) return url;
    return nullptr;
}

Ref<const ValArray> TLocalGlypharyImp::CopyFontsForRequest(const ValDictionary *request, VLScope) const {
    TValMutableArray urls;
    for (const FontReference reference : FindFonts(request, Wanted::kAll))
        if (const auto url = CopyFirstURL({reference})) urls.Append(url.Get());
    return urls.IsEmpty() ? nullptr : urls.Publish();
}

Ref<const ValURL> TLocalGlypharyImp::CopyFontForRequest(const ValDictionary *request, VLScope) const {
    return CopyFirstURL(FindFonts(request, Wanted::kBest));
}

// One entry a face, from the face that is registered: its file may be gone by now.
Ref<const ValArray> TLocalGlypharyImp::CopyPropertiesForFontsMatchingRequest(const ValDictionary *request,
                                                                             const ValSet *keys,
                                                                             VLScope) const {
    TValMutableArray all;
    for (const FontReference reference : FindFonts(request, Wanted::kAll)) {
        const GxFont *font = enabled_.Find(reference);
        if (font) all.Append(TClientFontEntity(Retain(font)).CopyProperties(keys, false).Get());
    }
    return all.IsEmpty() ? nullptr : all.Publish();
}

Ref<const ValDictionary>
TLocalGlypharyImp::CopyPropertiesForFontMatchingRequest(const ValDictionary *request, const ValSet *keys,
                                                        VLScope) const {
    for (const FontReference reference : FindFonts(request, Wanted::kBest))
        if (const GxFont *font = enabled_.Find(reference))
            return TClientFontEntity(Retain(font)).CopyProperties(keys, false);
    return nullptr;
}

} // namespace vellum
