// SPDX-License-Identifier: MIT
// What the library learns once about the session of its process: whose it is, how the names of
// services are told apart in it, and where the frameworks' folders are.
#pragma once

#include <vellum/values.hpp>

#include <unistd.h>

#include <string>

namespace vellum {

// What a session is learned from; all are borrowed, and null is unset.
struct SessionEnvironment {
    const char *service_name_suffix;      // VL_SERVICE_NAME_SUFFIX
    const char *framework_resources_path; // VL_FRAMEWORK_RESOURCES_PATH
    const char *framework_path;           // of the legacy font service, where no variable names it
};

// Nothing of it changes once it is made.
class TSessionManagerImp {
public:
    // Throws std::bad_alloc when memory is exhausted.
    explicit TSessionManagerImp(const SessionEnvironment &environment);

    char *ResolveServiceName(char *buffer, size_t size, const char *base) const noexcept;

    const ValString *GetFrameworkDirPath() const noexcept { return framework_path_.Get(); }
    const ValString *GetFrameworkResourcesDirPath() const noexcept { return resources_path_.Get(); }
    uid_t GetEffectiveUserID() const noexcept { return user_; }
    double GetCreationTime() const noexcept { return creation_time_; }

private:
    void SetFrameworkDirPaths(const SessionEnvironment &environment);

    const uid_t user_;
    const double creation_time_;
    const std::string suffix_; // empty: none
    Ref<const ValString> framework_path_;
    Ref<const ValString> resources_path_;
};

// A handle on the session of this process, which is made by the first handle and never torn down.
class TSessionManager {
public:
    // Throws std::bad_alloc when the session could not be made.
    TSessionManager();

    // Writes the name that the service `base` has in this session, and a zero, and returns the buffer.
    // A name that is too long is cut. One that would lead to another folder, because it holds a "/" or
    // begins with ".", is refused: the buffer gets the empty string, under which no service is found.
    // Nothing is written to a buffer of size 0.
    char *ResolveServiceName(char *buffer, size_t size, const char *base) const noexcept {
        return imp_.ResolveServiceName(buffer, size, base);
    }

    // The folder of the legacy font service's framework, and the folder of the framework's resources,
    // which holds a folder for each language. Borrowed; null when there is none.
    const ValString *GetFrameworkDirPath() const noexcept { return imp_.GetFrameworkDirPath(); }
    const ValString *GetFrameworkResourcesDirPath() const noexcept {
        return imp_.GetFrameworkResourcesDirPath();
    }

    uid_t GetEffectiveUserID() const noexcept { return imp_.GetEffectiveUserID(); }

    // When the session was made, in seconds since 1970.
    double GetCreationTime() const noexcept { return imp_.GetCreationTime(); }

private:
    const TSessionManagerImp &imp_;
};

} // namespace vellum
