// SPDX-License-Identifier: MIT
// The index of a set of fonts, over sets that change under it as no program can be made to change them.
#include "legacy/font_set_index.hpp"

#include <gtest/gtest.h>

namespace vellum::legacy {
namespace {

class FontSetIndex : public ::testing::Test {
protected:
    static FcPattern *FontIn(const char *file) {
        FcPattern *font = FcPatternCreate();
        FcPatternAddString(font, FC_FILE, reinterpret_cast<const FcChar8 *>(file));
        return font;
    }

    void Add(const char *file) { FcFontSetAdd(set_.get(), FontIn(file)); }

    // As if the set had been freed and another one made where it lay.
    void Replace(int place, const char *file) {
        FcPatternDel(set_->fonts[place], FC_FILE);
        FcPatternAddString(set_->fonts[place], FC_FILE, reinterpret_cast<const FcChar8 *>(file));
    }

    bool Has(const char *file) { return index_.Has(set_.get(), file); }

    const FontSetRef set_{FcFontSetCreate()};
    TFontSetIndex index_;
};

TEST_F(FontSetIndex, KnowsTheFilesOfTheSetAndThoseThatCome) {
    Add("/a");
    Add("/a");
    EXPECT_TRUE(Has("/a"));
    EXPECT_FALSE(Has("/b"));
    Add("/b");
    EXPECT_TRUE(Has("/b"));
    EXPECT_FALSE(index_.Has(nullptr, "/a"));
}

TEST_F(FontSetIndex, ForgetsTheFilesOfAnotherSet) {
    Add("/a");
    EXPECT_TRUE(Has("/a"));
    const FontSetRef other(FcFontSetCreate());
    EXPECT_FALSE(index_.Has(other.get(), "/a"));
    FcFontSetAdd(other.get(), FontIn("/b"));
    EXPECT_TRUE(index_.Has(other.get(), "/b"));
    EXPECT_TRUE(Has("/a"));
    EXPECT_FALSE(Has("/b"));
}

TEST_F(FontSetIndex, BelievesNothingOfASetAtTheSamePlaceThatItDoesNotSee) {
    Add("/a");
    Add("/b");
    EXPECT_TRUE(Has("/a"));
    Replace(0, "/c");
    EXPECT_FALSE(Has("/a"));
    EXPECT_TRUE(Has("/c"));
}

TEST_F(FontSetIndex, BeginsAnewWhenTheLastFontIsAnother) {
    Add("/a");
    Add("/b");
    EXPECT_FALSE(Has("/c"));
    Replace(0, "/c");
    Replace(1, "/d");
    EXPECT_TRUE(Has("/c"));
    EXPECT_TRUE(Has("/d"));
}

TEST_F(FontSetIndex, BeginsAnewWhenTheSetHasBecomeSmaller) {
    Add("/a");
    Add("/b");
    EXPECT_TRUE(Has("/b"));
    FcPatternDestroy(set_->fonts[--set_->nfont]);
    EXPECT_FALSE(Has("/b"));
    EXPECT_TRUE(Has("/a"));
}

} // namespace
} // namespace vellum::legacy
