// SPDX-License-Identifier: MIT
// The lines of `vellum monitor`, of a register that takes fonts in and out: without a font server, no font
// goes while the tool runs.
#include "support/named_font.hpp"
#include "tools/change_lines.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace vellum::tool {
namespace {

using Form = ChangeLines::Form;

class ChangeLinesTest : public testing::Test {
protected:
    void Register(const Ref<const ValURL> &font) {
        ASSERT_TRUE(VLRegisterFont(font.Get(), 0, kVLScopeProcess | kVLScopeLegacyTold));
    }
    void Unregister(const Ref<const ValURL> &font) {
        ASSERT_TRUE(VLUnregisterFont(font.Get(), 0, kVLScopeProcess | kVLScopeLegacyTold));
    }

    Ref<const ValArray> Fonts() const {
        const void *const item = font_.Get();
        return Adopt(ValArrayCreate(&item, 1));
    }

    // What is written of a font that comes and goes.
    std::string LinesOfARoundTrip(Form form, size_t most) {
        const ChangeLines lines(out_, form, most);
        Register(font_);
        Unregister(font_);
        VLDeliverNotifications();
        VLDeliverNotifications();
        count_ = lines.Count();
        return out_.str();
    }

    const test::FontFolder folder_{};
    const Ref<const ValURL> font_ = folder_.Add("a.ttf", test::NamedFace{.family = "Alpha"});
    const std::string url_ = "file://" + folder_.File("a.ttf");
    std::ostringstream out_;
    size_t count_ = 0;
};

TEST_F(ChangeLinesTest, AFontThatComesAndGoesHasALineForEach) {
    EXPECT_EQ(LinesOfARoundTrip(Form::kText, 0), "added  " + url_ + "\nremoved  " + url_ + '\n');
    EXPECT_EQ(count_, 2U);
}

TEST_F(ChangeLinesTest, AFontThatComesAndGoesHasAnObjectForEach) {
    EXPECT_EQ(LinesOfARoundTrip(Form::kJson, 0), "{\"change\":\"added\",\"url\":\"" + url_ +
                                                     "\"}\n{\"change\":\"removed\",\"url\":\"" + url_ +
                                                     "\"}\n");
}

TEST_F(ChangeLinesTest, NoMoreIsWrittenThanWasAskedFor) {
    EXPECT_EQ(LinesOfARoundTrip(Form::kText, 1), "added  " + url_ + '\n');
    EXPECT_EQ(count_, 1U);
}

TEST_F(ChangeLinesTest, ADisabledFontIsRemovedAndAnEnabledOneAdded) {
    Register(font_);
    VLDeliverNotifications();
    const ChangeLines lines(out_, Form::kText, 0);
    VLDisableFonts(Fonts().Get(), 0, kVLScopeProcess | kVLScopeLegacyTold);
    VLDeliverNotifications();
    EXPECT_EQ(out_.str(), "removed  " + url_ + '\n');
    VLEnableFonts(Fonts().Get(), 0, kVLScopeProcess | kVLScopeLegacyTold);
    VLDeliverNotifications();
    EXPECT_EQ(out_.str(), "removed  " + url_ + "\nadded  " + url_ + '\n');
}

TEST_F(ChangeLinesTest, NothingIsWrittenAfterTheEnd) {
    { const ChangeLines lines(out_, Form::kText, 0); }
    Register(font_);
    VLDeliverNotifications();
    EXPECT_EQ(out_.str(), "");
}

} // namespace
} // namespace vellum::tool
