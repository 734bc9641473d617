// SPDX-License-Identifier: MIT
#include "platform/app/application.hpp"

#include "platform/app/control_group.hpp"
#include "platform/app/main_bundle.hpp"
#include "platform/fs/file.hpp"
#include "platform/late/glib.hpp"
#include "platform/process/process.hpp"
#include "platform/val/static_string.hpp"

#include <sys/auxv.h>

#include <algorithm>
#include <charconv>
#include <memory>

namespace vellum {

namespace {

constinit const StaticString kBundleIdentifier("BundleIdentifier");

// No file of the system's that is read here comes near it.
constexpr uint64_t kLongestFile = 1 << 20;

constexpr size_t kLongestIdentifier = 255;

// An identifier is a key in the settings: text that can stand there.
bool IsIdentifier(std::string_view text) noexcept {
    if (text.empty() || text.size() > kLongestIdentifier) return false;
    while (!text.empty()) {
        const Character c = DecodeCharacter(text);
        if (!IsScalar(c.value) || c.value < 0x20 || c.value == 0x7F || c.value == '/') return false;
        text.remove_prefix(c.length);
    }
    return true;
}

std::string BundleIdentifier() {
    const auto bundle = MainBundle::OfProcess();
    const void *name = bundle ? ValDictionaryGetValue(bundle->info.Get(), &kBundleIdentifier) : nullptr;
    if (ValGetType(name) != kValTypeString) return {};
    return std::string(Text(static_cast<const ValString *>(name)));
}

std::string ReadText(const std::string &path) {
    // Files of /proc say that they are empty.
    TFileIdentity identity;
    const TDescriptor file = OpenRegularFile(path.c_str(), kLongestFile, &identity);
    if (!file.IsOpen()) return {};
    TBuffer content(size_t{1} << 16);
    const TReadResult read = ReadFully(file.Get(), 0, content.Writable());
    return {reinterpret_cast<const char *>(content.View().data()), read.failed ? 0 : read.length};
}

struct GLibDeleter {
    void operator()(GKeyFile *file) const noexcept { g_key_file_free(file); }
    void operator()(char *text) const noexcept { (g_free)(text); } // newer ones have a macro
};

// Flatpak itself writes the file, in a root folder that belongs to nobody else.
std::string FlatpakIdentifier(const std::string &path) {
    const std::string text = ReadText(path);
    if (text.empty()) return {};
    const std::unique_ptr<GKeyFile, GLibDeleter> file(sGLib.Open() ? g_key_file_new() : nullptr);
    if (!file || !g_key_file_load_from_data(file.get(), text.data(), text.size(), G_KEY_FILE_NONE, nullptr))
        return {};
    const std::unique_ptr<char, GLibDeleter> name(
        g_key_file_get_string(file.get(), "Application", "name", nullptr));
    return name ? std::string(name.get()) : std::string();
}

bool IsSet(const char *variable) noexcept {
    const char *value = GetEnvironment(variable);
    return value && *value;
}

// The seventh field of the process's state is the device of its terminal; the second may hold anything,
// and ends with the last bracket.
bool HasTerminal(const std::string &path) {
    const std::string text = ReadText(path);
    std::string_view state = text;
    const size_t name_end = state.rfind(')');
    if (name_end == std::string_view::npos) return false;
    state.remove_prefix(name_end + 1);
    for (int field = 3; field <= 7; ++field) {
        state.remove_prefix(std::min(state.find_first_not_of(' '), state.size()));
        if (field < 7) state.remove_prefix(std::min(state.find(' '), state.size()));
    }
    int device = 0;
    std::from_chars(state.data(), state.data() + state.size(), device);
    return device != 0;
}

} // namespace

Ref<const ValString> CopyApplicationIdentifier(const ApplicationSources &sources) {
    if (::getauxval(AT_SECURE) != 0) return nullptr;
    std::string name = BundleIdentifier();
    if (!IsIdentifier(name)) name = FlatpakIdentifier(sources.flatpak_info);
    if (!IsIdentifier(name))
        name = ApplicationOfControlGroup(ControlGroup(ReadText(sources.control_groups)));
    return IsIdentifier(name) ? MakeString(name) : nullptr;
}

bool DeclaresTrue(const ValDictionary *information, const ValString *key) noexcept {
    const void *value = ValDictionaryGetValue(information, key);
    if (ValGetType(value) == kValTypeBoolean)
        return ValBooleanGetValue(static_cast<const ValBoolean *>(value));
    return ValGetType(value) == kValTypeNumber &&
           ValNumberGetFloat64(static_cast<const ValNumber *>(value)) != 0;
}

// Every program here is younger than the fix.
bool HasCompatibilityFix(std::string_view) noexcept {
    return true;
}

bool IsDaemonProcess(const ApplicationSources &sources) {
    return !HasDisplay() && IsSystemService(ControlGroup(ReadText(sources.control_groups))) &&
           !HasTerminal(sources.process_state);
}

bool HasDisplay() noexcept {
    return IsSet("DISPLAY") || IsSet("WAYLAND_DISPLAY");
}

} // namespace vellum
