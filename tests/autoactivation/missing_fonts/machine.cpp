// SPDX-License-Identifier: MIT
#include "machine.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace vellum::test {

namespace {

namespace fs = std::filesystem;

constexpr char kCompanion[] = "libGlypharyUI.so";

// On a volume; temporary folders lie where TMPDIR says.
std::unique_ptr<const FontFolder> MakeFolder(Volume volume) {
    const std::string usual = fs::temp_directory_path();
    if (volume == Volume::kInMemory) ::setenv("TMPDIR", "/dev/shm", 1);
    auto folder = std::make_unique<const FontFolder>();
    ::setenv("TMPDIR", usual.c_str(), 1);
    return folder;
}

} // namespace

Machine::Machine(Volume volume) : files_(MakeFolder(volume)) {
    ::setenv("VELLUM_INDEX_ROOTS", files_->Path().c_str(), 1);
    ::unsetenv("DISPLAY");
    ::unsetenv("WAYLAND_DISPLAY");
    ::unsetenv("XDG_CURRENT_DESKTOP");
    ::unsetenv("VELLUM_COMPANION_ASKS");
}

void Machine::Start() {
    ASSERT_TRUE(server_.Start());
    ASSERT_TRUE(beacon_.Start());
    RunningBeacon::WaitUntilIdle();
}

void Machine::Prefer(const std::string &entries) const {
    Home().Write("config/vellum/com.orrery.Fount.vlist", "<vlist><dict>" + entries + "</dict></vlist>");
}

void Machine::AnswerWith(const std::string &script) {
    ::setenv("DISPLAY", ":4711", 1);
    Home().Write("answer", "echo asked >> \"$HOME/questions\"\n" + script + "\n");
    InstallCompanion(VELLUM_COMPANION_UNDER_TEST);
}

int Machine::Questions() const {
    std::ifstream questions(Home().File("questions"));
    return static_cast<int>(
        std::distance(std::istream_iterator<std::string>(questions), std::istream_iterator<std::string>()));
}

void Machine::InstallCompanion(const std::string &library) const {
    RemoveCompanion();
    fs::create_symlink(library, resources_.Folder().File(kCompanion));
}

void Machine::RemoveCompanion() const {
    fs::remove(resources_.Folder().File(kCompanion));
}

} // namespace vellum::test
