// SPDX-License-Identifier: MIT
// Fonts in memory.
#include "service_fixture.hpp"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <utility>

namespace vellum::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class MemoryFonts : public LegacyTest {
protected:
    uint32_t RegisterBytes(const Bytes &bytes) const {
        return service_.register_data(AsData(bytes).Get(), 0, 0, kVLScopeProcess);
    }
    uint32_t WithdrawContainer(uint32_t container) const {
        return service_.register_data(nullptr, container, 0, kVLScopeProcess);
    }
    std::vector<uint32_t> FontsIn(uint32_t container) const {
        std::vector<uint32_t> fonts(service_.find_from_container(container, 0, nullptr));
        service_.find_from_container(container, static_cast<uint32_t>(fonts.size()), fonts.data());
        return fonts;
    }
};

std::set<std::string> ApplicationFiles() {
    std::set<std::string> files;
    const FcFontSet *set = FcConfigGetFonts(FcConfigGetCurrent(), FcSetApplication);
    for (int i = 0; set && i < set->nfont; ++i) {
        FcChar8 *file = nullptr;
        FcPatternGetString(set->fonts[i], FC_FILE, 0, &file);
        files.insert(reinterpret_cast<const char *>(file));
    }
    return files;
}

TEST_F(MemoryFonts, AreFoundAtOnceAndNoMoreWhenWithdrawn) {
    const uint32_t id = RegisterBytes(FontNamed("Memory"));
    EXPECT_EQ(id, 1u);
    EXPECT_THAT(Fonts(), ElementsAre("Memory"));
    EXPECT_EQ(WithdrawContainer(id), id);
    EXPECT_THAT(Fonts(), IsEmpty());
    EXPECT_EQ(WithdrawContainer(id), 0u);
}

TEST_F(MemoryFonts, AreReadByWhoeverOpensTheirFile) {
    const Bytes bytes = FontNamed("Memory");
    const uint32_t id = RegisterBytes(bytes);
    const std::string file = *ApplicationFiles().begin();
    EXPECT_EQ(ReadText(file), std::string(bytes.begin(), bytes.end()));
    WithdrawContainer(id);
    EXPECT_EQ(ReadText(file), "");
}

TEST_F(MemoryFonts, CannotBeChangedThroughTheirFile) {
    const Bytes bytes = FontNamed("Memory");
    RegisterBytes(bytes);
    const std::string file = *ApplicationFiles().begin();
    std::ofstream(file, std::ios::in | std::ios::binary) << "changed";
    EXPECT_EQ(ReadText(file), std::string(bytes.begin(), bytes.end()));
}

TEST_F(MemoryFonts, ThatAreNoneHaveNoContainer) {
    EXPECT_EQ(RegisterBytes({}), 0u);
    EXPECT_EQ(RegisterBytes({'n', 'o', ' ', 'f', 'o', 'n', 't'}), 0u);
    EXPECT_EQ(service_.register_data(nullptr, 0, 0, kVLScopeProcess), 0u);
    EXPECT_EQ(WithdrawContainer(7), 0u);
    EXPECT_EQ(service_.find_from_container(7, 0, nullptr), 0u);
    EXPECT_EQ(service_.get_container(7), 0u);
    EXPECT_EQ(service_.get_container(0), 0u);
    EXPECT_THAT(Fonts(), IsEmpty());
}

TEST_F(MemoryFonts, HaveAnIdForEachFace) {
    const uint32_t first = RegisterBytes(MakeCollection({{"C", "One"}, {"C", "Two"}, {"C", "Three"}}));
    const uint32_t second = RegisterBytes(FontNamed("D"));
    EXPECT_NE(first, second);
    std::vector<uint32_t> ids = FontsIn(first);
    EXPECT_THAT(ids, SizeIs(3));
    for (const uint32_t id : ids) EXPECT_EQ(service_.get_container(id), first);
    const std::vector<uint32_t> others = FontsIn(second);
    ASSERT_THAT(others, SizeIs(1));
    EXPECT_EQ(service_.get_container(others[0]), second);
    ids.push_back(others[0]);
    EXPECT_THAT(std::set<uint32_t>(ids.begin(), ids.end()), SizeIs(4));

    WithdrawContainer(first);
    EXPECT_THAT(FontsIn(first), IsEmpty());
    for (size_t i = 0; i < 3; ++i) EXPECT_EQ(service_.get_container(ids[i]), 0u);
    EXPECT_EQ(service_.get_container(others[0]), second);
}

TEST_F(MemoryFonts, AreGivenOutAsFarAsThereIsRoom) {
    const uint32_t container = RegisterBytes(MakeCollection({{"C", "One"}, {"C", "Two"}, {"C", "Three"}}));
    std::vector<uint32_t> fonts(4, 99);
    EXPECT_EQ(service_.find_from_container(container, 2, fonts.data()), 3u);
    EXPECT_THAT(fonts, ElementsAre(::testing::Ne(99u), ::testing::Ne(99u), 99u, 99u));
    EXPECT_EQ(service_.find_from_container(container, 5, nullptr), 3u);
}

TEST_F(MemoryFonts, StayWhenOthersAreWithdrawn) {
    const std::string path = WriteFont("a.ttf", "File");
    const uint32_t first = RegisterBytes(FontNamed("One"));
    Register(path);
    RegisterBytes(FontNamed("Two"));
    Withdraw(path);
    EXPECT_THAT(ApplicationFonts(), ElementsAre("One", "Two"));
    WithdrawContainer(first);
    EXPECT_THAT(ApplicationFonts(), ElementsAre("Two"));
    ASSERT_TRUE(FcInitReinitialize());
    service_.font_notify(1, 0);
    EXPECT_THAT(ApplicationFonts(), ElementsAre("Two"));
}

// Programs that draw text remember faces by path.
TEST_F(MemoryFonts, DoNotTakeThePathOfOthersThatAreGone) {
    std::set<std::string> files;
    for (int i = 0; i < 50; ++i) {
        const uint32_t id = RegisterBytes(FontNamed("Font" + std::to_string(i)));
        files.merge(ApplicationFiles());
        WithdrawContainer(id);
    }
    EXPECT_THAT(files, SizeIs(50));
}

TEST_F(MemoryFonts, AreRegisteredBeyondAsManyDescriptorsAsAProcessMayOpen) {
    rlimit limit = {};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    limit.rlim_cur = 64;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    for (int i = 0; i < 200; ++i) {
        const uint32_t id = RegisterBytes(FontNamed("Font"));
        ASSERT_EQ(id, static_cast<uint32_t>(i + 1));
        WithdrawContainer(id);
    }
}

// The program closes what is not its own, and opens a file of its own by the number that came free.
class LostMemoryFonts : public MemoryFonts {
protected:
    // Puts a file at the number of the only font there is. Where the font was.
    std::string PutInPlaceOfFont(const std::string &path) const {
        const std::string place = *ApplicationFiles().begin();
        const int number = std::stoi(place.substr(place.rfind('/') + 1));
        const int file = open(path.c_str(), O_RDWR | O_CLOEXEC);
        EXPECT_EQ(dup3(file, number, O_CLOEXEC), number);
        close(file);
        return place;
    }

    static bool IsOpen(const std::string &place) { return ReadText(place) == "the program's"; }
};

TEST_F(LostMemoryFonts, LeaveTheDescriptorToTheProgram) {
    const uint32_t id = RegisterBytes(FontNamed("Memory"));
    const std::string place = PutInPlaceOfFont(home_.Write("database", "the program's"));
    EXPECT_EQ(WithdrawContainer(id), id);
    EXPECT_TRUE(IsOpen(place));
    EXPECT_THAT(Fonts(), IsEmpty());
    EXPECT_EQ(WithdrawContainer(id), 0u);
}

TEST_F(LostMemoryFonts, AreNoMoreWithTheNextCall) {
    const uint32_t id = RegisterBytes(FontNamed("Memory"));
    PutInPlaceOfFont(home_.Write("database", "the program's"));
    service_.font_notify(1, 0);
    EXPECT_THAT(Fonts(), IsEmpty());
    EXPECT_THAT(FontsIn(id), SizeIs(1));
}

TEST_F(LostMemoryFonts, AreNotReadFromAnotherFile) {
    const std::string path = WriteFont("a.ttf", "File");
    RegisterBytes(FontNamed("Memory"));
    PutInPlaceOfFont(WriteFont("b.ttf", "Stranger"));
    Register(path);
    Withdraw(path); // all that stays is read again
    EXPECT_THAT(Fonts(), IsEmpty());
    ASSERT_TRUE(FcInitReinitialize());
    service_.font_notify(1, 0);
    EXPECT_THAT(Fonts(), IsEmpty());
}

// Numbers begin again when there are no higher ones.
TEST_F(LostMemoryFonts, GiveTheirPlaceToOthers) {
    rlimit limit = {};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    limit.rlim_cur = 64;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    const uint32_t lost = RegisterBytes(FontNamed("Lost"));
    const std::string place = *ApplicationFiles().begin();
    close(std::stoi(place.substr(place.rfind('/') + 1)));
    uint32_t id = RegisterBytes(FontNamed("Found"));
    for (int i = 0; i < 100 && !ApplicationFiles().contains(place); ++i) {
        WithdrawContainer(id);
        id = RegisterBytes(FontNamed("Found"));
    }
    ASSERT_THAT(ApplicationFiles(), ElementsAre(place));
    EXPECT_THAT(Fonts(), ElementsAre("Found"));
    EXPECT_EQ(WithdrawContainer(lost), lost);
    EXPECT_THAT(Fonts(), ElementsAre("Found"));
    EXPECT_EQ(ReadText(place).size(), FontNamed("Found").size());
}

TEST_F(MemoryFonts, AreNoneWhenNoDescriptorIsLeft) {
    rlimit limit = {};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    EXPECT_THAT(Fonts(), IsEmpty());
    const uint32_t first = RegisterBytes(FontNamed("First"));
    const rlim_t former = std::exchange(limit.rlim_cur, 3);
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    EXPECT_EQ(RegisterBytes(FontNamed("Font")), 0u);
    limit.rlim_cur = former;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    EXPECT_NE(RegisterBytes(FontNamed("Font")), first);
    EXPECT_THAT(Fonts(), ElementsAre("First", "Font"));
}

} // namespace
} // namespace vellum::test
