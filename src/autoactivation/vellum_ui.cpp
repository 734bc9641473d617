// SPDX-License-Identifier: MIT
#include "autoactivation/vellum_ui.hpp"

#include "ipc/session/session_manager.hpp"
#include "platform/process/fork_gate.hpp"
#include "platform/val/string.hpp"

#include <dlfcn.h>
#include <pthread.h>

#include <new>
#include <string>

namespace vellum {

namespace {

constexpr std::string_view kCompanion = "/libGlypharyUI.so";

alignas(TVellumUIImp) std::byte sStorage[sizeof(TVellumUIImp)];
constinit const TVellumUIImp *sCompanion = nullptr; // set once, under sOnce
pthread_once_t sOnce = PTHREAD_ONCE_INIT;

void CreateCompanion() noexcept {
    sCompanion = new (sStorage) TVellumUIImp();
}

// Empty without an absolute path: the loader would search for any other.
std::string CompanionPath() {
    const std::string_view resources = Text(TSessionManager().GetFrameworkResourcesDirPath());
    return resources.starts_with('/') ? std::string(resources).append(kCompanion) : std::string();
}

void *LoadCompanion() noexcept {
    try {
        const std::string path = CompanionPath();
        return path.empty() ? nullptr : ::dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL);
    } catch (...) { // memory is exhausted
        return nullptr;
    }
}

template <class Function>
void Find(void *library, const char *name, Function *&function) noexcept {
    function = reinterpret_cast<Function *>(::dlsym(library, name));
}

} // namespace

TVellumUIImp::TVellumUIImp() noexcept {
    void *library = LoadCompanion();
    if (!library) return;
    Find(library, "CopyConfirmedFontsForAutoActivationRequest", copy_confirmed_fonts);
    Find(library, "VLUIWarnUserNotToModifyGuardedFonts", warn_of_guarded_fonts);
    Find(library, "VLUIConfirmAllowOverrideOfProtectedFont", confirm_override);
}

namespace {

// The user may take minutes: no thread of the program waits that long to fork.
const void *Ask(CopyConfirmedFontsForAutoActivationRequestFunction &copy_confirmed_fonts,
                const ValDictionary *request, const ValArray *fonts, bool &remembers) noexcept {
    const OutsideLibrary calling;
    return copy_confirmed_fonts(request, fonts, &remembers);
}

} // namespace

TVellumUI::TVellumUI() noexcept : imp_((::pthread_once(&sOnce, CreateCompanion), sCompanion)) {}

Ref<const ValArray> TVellumUI::CopyConfirmedFontsForAutoActivationRequest(const ValDictionary *request,
                                                                          const ValArray *fonts,
                                                                          bool &remembers) const noexcept {
    remembers = false;
    if (!imp_->copy_confirmed_fonts) return nullptr;
    const void *confirmed = Ask(*imp_->copy_confirmed_fonts, request, fonts, remembers);
    if (ValGetType(confirmed) == kValTypeArray &&
        ValArrayGetCount(static_cast<const ValArray *>(confirmed)))
        return Adopt(static_cast<const ValArray *>(confirmed));
    ValRelease(confirmed);
    return nullptr;
}

} // namespace vellum
