// SPDX-License-Identifier: MIT
// Memory that runs out while a fact of a face is derived leaves nothing wrong behind.
#include "describe/entities.hpp"
#include "describe/metadata_files.hpp"
#include "platform/font/freetype_library.hpp"
#include "support/allocations.hpp"
#include "support/bitmap_fonts.hpp"
#include "support/type1_font.hpp"
#include "values/string_uniquer.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <limits>
#include <new>

namespace vellum::test {
namespace {

class FaceFactsWithoutMemory : public ExhaustedMemoryTest {
protected:
    // The folder of metadata is looked for once in a process: all tests have the same.
    static void WriteMetadata() {
        static const FrameworkResources kResources;
        const auto face =
            Dict(Key("MTD_Typeface_ID_FullName_Aliases", Array(Text("Full Alias"))) +
                 Key("MTD_Typeface_ID_StyleName_Aliases", Text("Style Alias")) +
                 Key("MTD_Typeface_Repertoire_PrimaryLanguage", Text("ja")) +
                 Key("MTD_Typeface_Repertoire_PrimaryScriptLanguages", Array(Text("ja") + Text("en"))) +
                 Key("MTD_Typeface_info_IgnoreScriptAnalysis", Text("TRUE")) +
                 Key("MTD_Typeface_Weight_VisualDescriptor", Text("black")) +
                 Key("MTD_Typeface_info_Is_UI_Font", Text("TRUE")));
        kResources.Folder().Write("FontMetadata/a.ttf.vlist",
                                  List(Array(Dict(FileName("a.ttf") + Faces(face)))));
    }

    static Bytes FullFont() {
        std::vector<NameRecord> names = {MacintoshName(6, "Mac"), WindowsName(6, "Win"),
                                         WindowsName(256, "Weight")};
        for (const uint16_t id : {uint16_t{0}, uint16_t{1}, uint16_t{4}, uint16_t{5}, uint16_t{16}}) {
            names.push_back(WindowsName(id, "English " + std::to_string(id)));
            names.push_back(WindowsName(id, "French " + std::to_string(id), kFrench));
        }
        Os2Fields os2{.weight_class = 700};
        os2.unicode_ranges[0] = 1u << 11;
        return FontBuilder()
            .Names(names)
            .Characters({{'A', 'Z'}, {'a', 'z'}})
            .Table("OS/2", Os2Table(os2))
            .Table("fvar", FvarTable({{"wght", 100, 400, 900, 256}}, {}))
            .Build();
    }

    Ref<const GxFont> FreshFont() const {
        FacetFontPurgeCaches(nullptr);
        return CreateFontFromURL(url.Get());
    }

    // Asks a font, and survives that there is no memory. Whether an allocation failed.
    template <class Ask>
    static bool AskWithFailure(int successes, Ask ask, const Ref<const GxFont> &font) {
        return FailAfter(successes, [&] {
            try {
                ask(TClientFontEntity(font));
            } catch (const std::bad_alloc &) {
            }
        });
    }

    // Asks a new font a question with one allocation failing, from the first to the last; then with memory
    // again, when the answer must be that of a font which never lacked any, and be kept. Returns how many
    // allocations there are.
    template <class Ask>
    int AskWithoutMemory(Ask ask) const {
        const auto expected = ask(TClientFontEntity(FreshFont()));
        EXPECT_TRUE(expected);
        std::vector<int> wrong; // after which allocations
        int n = 0;
        for (bool failed = true; failed; ++n) {
            const auto font = FreshFont();
            failed = AskWithFailure(n, ask, font);
            const auto answer = ask(TClientFontEntity(font));
            if (!ValEqual(answer.Get(), expected.Get())) wrong.push_back(n);
        }
        EXPECT_THAT(wrong, ::testing::IsEmpty());
        return n;
    }

    int AskForProperty(const ValString *key, bool all) const {
        SCOPED_TRACE(TextOf(key) + (all ? ", all" : ""));
        return AskWithoutMemory(
            [=](const TClientFontEntity &entity) { return entity.CopyProperty(key, all); });
    }

    FontFolder folder;
    const Ref<const ValURL> url = (WriteMetadata(), folder.Add("a.ttf", FullFont()));
};

const ValString *const kNameKeys[] = {kVLFontPropertyName,          kVLFontPropertyFamilyName,
                                      kVLFontPropertyFullName,      kVLFontPropertySubfamilyName,
                                      kVLFontPropertyVersionName,   kVLFontPropertyCopyrightName,
                                      kVLFontPropertyLocalizedNames};

TEST_F(FaceFactsWithoutMemory, OfNamesAreRightNextTime) {
    for (const ValString *key : kNameKeys)
        for (const bool all : {false, true}) EXPECT_GT(AskForProperty(key, all), 2);
}

TEST_F(FaceFactsWithoutMemory, OfTablesAndMetadataAreRightNextTime) {
    for (const ValString *key :
         {kVLFontPropertyTraits, kVLFontPropertyURL, kVLFontPropertyCharacterSet,
          kVLFontPropertyVariationAxes, kVLFontPropertyVariations, kVLFontPropertyDesignLanguages,
          kVLFontPropertyFormat, kVLFontPropertyStringEncoding, kVLFontPropertyIgnoreScriptAnalysis,
          kVLFontPropertyFlags, kVLFontPropertyUnicodeRanges})
        EXPECT_GT(AskForProperty(key, false), 0);
}

TEST_F(FaceFactsWithoutMemory, OfLanguagesAreRightNextTime) {
    EXPECT_GT(AskForProperty(kVLFontPropertySupportedLanguages, false), 5);
}

TEST_F(FaceFactsWithoutMemory, OfEveryKindAreRightNextTimeWhicheverFailed) {
    AskWithoutMemory([](const TClientFontEntity &entity) { return entity.CopyRegistrationProperties(); });
}

TEST_F(FaceFactsWithoutMemory, OfFontsThatFreeTypeReadsAreRightNextTime) {
    for (const auto &[name, bytes] : {std::pair("a.pcf", BuildPcf({})), std::pair("a.pfb", BuildPfb())}) {
        SCOPED_TRACE(name);
        const auto file = folder.Add(name, bytes);
        const auto fresh = [&] {
            FacetFontPurgeCaches(nullptr);
            return CreateFontFromURL(file.Get());
        };
        const auto ask = [](const TClientFontEntity &entity) { return entity.CopyCharacterSet(); };
        const auto expected = ask(TClientFontEntity(fresh()));
        ASSERT_TRUE(ValCharacterSetContains(expected.Get(), 'A'));
        std::vector<int> wrong;
        int n = 0;
        for (bool failed = true; failed; ++n) {
            const auto font = fresh();
            failed = AskWithFailure(n, ask, font);
            if (!ValEqual(ask(TClientFontEntity(font)).Get(), expected.Get())) wrong.push_back(n);
        }
        EXPECT_THAT(wrong, ::testing::IsEmpty());
        EXPECT_GT(n, 10);
    }
}

// Where it is set up already, a refusal takes it down.
void TakeFreeTypeDown() {
    const TFreeType freetype;
    EXPECT_FALSE(TFreeType::Memory()->alloc(TFreeType::Memory(), std::numeric_limits<long>::max()));
}

// FreeType is set up once in a process: a child for each allocation.
TEST(FreeTypeWithoutMemory, IsSetUpWithEverythingNextTime) {
    ASSERT_TRUE(IsAllocatorWrapped());
    std::vector<int> wrong;
    int n = 0;
    for (bool failed = true; failed && n < 10'000; ++n) {
        const pid_t child = ::fork();
        if (child == 0) {
            TakeFreeTypeDown();
            FailAllocationAfter(n);
            { const TFreeType freetype; }
            const bool has_failed = HasAllocationFailed();
            FailAllocationAfter(-1);
            const TFreeType freetype;
            bool has_all = freetype.Library();
            for (const char *driver : {"truetype", "type1", "cff", "t1cid", "type42", "pcf", "bdf"})
                has_all = has_all && FT_Get_Module(freetype.Library(), driver);
            ::_exit(has_all ? has_failed : 2);
        }
        int status = -1;
        ::waitpid(child, &status, 0);
        if (!WIFEXITED(status) || WEXITSTATUS(status) > 1) wrong.push_back(n);
        failed = status != 0;
    }
    EXPECT_THAT(wrong, ::testing::IsEmpty());
    EXPECT_GT(n, 20);
}

// ---- one object for each name -----------------------------------------------------------------------

// Whether each string in a value is the one of its text.
bool IsInterned(const void *value) {
    const auto *text = Cast<ValString>(value);
    if (TValStringUniquer().GetUniqueString(text).Get() != text) return false;
    for (const void *element : Elements(Cast<ValArray>(value)))
        if (!IsInterned(element)) return false;
    for (const auto &entry : TValDict(Retain(Cast<ValDictionary>(value))))
        if (!IsInterned(entry.value)) return false;
    return true;
}

TEST_F(FaceFactsWithoutMemory, OfNamesAreOneObjectNextTime) {
    int fonts = 0; // each with names that nobody has seen yet
    for (const ValString *key : kNameKeys) {
        for (const bool all : {false, true}) {
            std::vector<int> wrong;
            const auto ask = [&](const TClientFontEntity &entity) { return entity.CopyProperty(key, all); };
            bool failed = true;
            for (int n = 0; failed; ++n) {
                const std::string file = "font" + std::to_string(++fonts) + ".ttf";
                const auto names = {WindowsName(0, "C " + file),         WindowsName(1, "F " + file),
                                    WindowsName(2, "S " + file),         WindowsName(4, "N " + file),
                                    WindowsName(5, "V " + file),         WindowsName(6, "P-" + file),
                                    WindowsName(1, "G " + file, kFrench)};
                const auto font =
                    CreateFontFromURL(folder.Add(file, FontBuilder().Names(names).Build()).Get());
                failed = AskWithFailure(n, ask, font);
                if (!IsInterned(ask(TClientFontEntity(font)).Get())) wrong.push_back(n);
            }
            EXPECT_THAT(wrong, ::testing::IsEmpty()) << TextOf(key) << ' ' << all;
        }
    }
}

} // namespace
} // namespace vellum::test
