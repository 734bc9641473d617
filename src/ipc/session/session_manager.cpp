// SPDX-License-Identifier: MIT
#include "ipc/session/session_manager.hpp"

#include "platform/fs/folder.hpp"
#include "platform/process/process.hpp"
#include "values/out_of_memory.hpp"

#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <initializer_list>
#include <new>
#include <string_view>

namespace vellum {

namespace {

// Where it stands in a suffix, it and everything behind it are no part of a name: what validates an
// installation adds it to the suffix, and still meets the services of that installation.
constexpr std::string_view kValidatorMarker = "VALIDATOR_%V";

// What the legacy font service calls its framework's folder.
constexpr std::string_view kFrameworkName = "Fount.framework";

// In a framework, as in every bundle.
constexpr std::string_view kResourcesFolder = "/Resources";
constexpr std::string_view kEnglishFolder = "/en";

std::string_view ViewOf(const char *text) noexcept {
    return text ? text : std::string_view();
}

double SecondsSince1970() noexcept {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

// How many characters a marker takes away from the end of "base_suffix". One underscore in front of
// the marker goes with it, and where nothing is left of the suffix, the underscore that joins it too.
size_t DroppedLength(std::string_view suffix) noexcept {
    const size_t marker = suffix.find(kValidatorMarker);
    if (marker == std::string_view::npos) return 0;
    const size_t from_marker = suffix.size() - marker;
    if (marker == 0) return from_marker + 1;
    if (suffix[marker - 1] != '_') return from_marker;
    return from_marker + 1 + (marker == 1 ? 1 : 0);
}

// Writes as much of the parts, together, as `length` allows; the number of bytes.
size_t Join(char *out, size_t length, std::initializer_list<std::string_view> parts) noexcept {
    size_t written = 0;
    for (std::string_view part : parts) written += part.copy(out + written, length - written);
    return written;
}

bool LeadsElsewhere(std::string_view name) noexcept {
    return name.starts_with('.') || name.find('/') != std::string_view::npos;
}

Ref<const ValString> MakePath(std::string_view path) {
    if (path.empty()) return nullptr;
    return OrBadAlloc(Adopt(ValStringCreateWithFileSystemRepresentation(path.data(), path.size())));
}

// The path as far as the name of the framework's folder; empty when the name is not in it.
std::string_view FrameworkIn(std::string_view path) noexcept {
    const size_t name = path.find(kFrameworkName);
    return name == std::string_view::npos ? "" : path.substr(0, name + kFrameworkName.size());
}

// The folder in which a framework's English localisation lies; empty when it has none.
std::string ResourcesOf(std::string_view framework) {
    const std::string resources = RealFolderPath(std::string(framework).append(kResourcesFolder));
    if (resources.empty() || RealFolderPath(resources + std::string(kEnglishFolder)).empty()) return {};
    return resources;
}

constinit std::atomic<const TSessionManagerImp *> sSession{nullptr};
pthread_once_t sOnce = PTHREAD_ONCE_INIT;

// Runs once in a process; nothing may be thrown out of it, and nothing is ever torn down.
void CreateSession() noexcept {
    try {
        const SessionEnvironment environment{GetEnvironment("VL_SERVICE_NAME_SUFFIX"),
                                             GetEnvironment("VL_FRAMEWORK_RESOURCES_PATH"),
                                             VELLUM_FRAMEWORK_DIR};
        sSession.store(new TSessionManagerImp(environment), std::memory_order_release);
    } catch (...) { // memory is exhausted: this process stays without a session
    }
}

const TSessionManagerImp &Session() {
    ::pthread_once(&sOnce, CreateSession);
    const TSessionManagerImp *session = sSession.load(std::memory_order_acquire);
    if (!session) throw std::bad_alloc();
    return *session;
}

} // namespace

TSessionManagerImp::TSessionManagerImp(const SessionEnvironment &environment)
    : user_(::geteuid()), creation_time_(SecondsSince1970()),
      suffix_(ViewOf(environment.service_name_suffix)) {
    SetFrameworkDirPaths(environment);
}

void TSessionManagerImp::SetFrameworkDirPaths(const SessionEnvironment &environment) {
    std::string_view framework = ViewOf(environment.framework_path);
    const std::string_view given = ViewOf(environment.framework_resources_path);
    if (!given.empty() && IsFolder(given)) {
        resources_path_ = MakePath(given);
        if (const std::string_view found = FrameworkIn(given); !found.empty()) framework = found;
    }
    framework_path_ = MakePath(framework);
    if (!resources_path_) resources_path_ = MakePath(ResourcesOf(framework));
}

char *TSessionManagerImp::ResolveServiceName(char *buffer, size_t size, const char *base) const noexcept {
    if (size == 0) return buffer;
    const std::string_view name = ViewOf(base);
    size_t length = name.size();
    if (!suffix_.empty()) {
        const size_t dropped = DroppedLength(suffix_);
        length += 1 + suffix_.size();
        if (length > dropped) length -= dropped;
    }
    const size_t written = Join(buffer, std::min(length, size - 1), {name, "_", suffix_});
    buffer[LeadsElsewhere({buffer, written}) ? 0 : written] = '\0';
    return buffer;
}

TSessionManager::TSessionManager() : imp_(Session()) {}

} // namespace vellum
