// SPDX-License-Identifier: MIT
#include "beacon/crawl_roots.hpp"

#include "platform/fs/folder.hpp"
#include "platform/fs/volume_flags.hpp"
#include "platform/log/log.hpp"
#include "platform/process/process.hpp"

#include <linux/magic.h>
#include <sys/vfs.h>

#include <algorithm>
#include <fstream>

namespace vellum {

namespace {

constexpr const char *kUsualRoots[] = {"/opt", "/srv", "/media", "/run/media", "/mnt"};

// Folders of what programs fetch again when it is gone.
constexpr std::string_view kFetched[] = {"node_modules", "bower_components", "__pycache__",
                                         "lost+found",   "CMakeFiles",       "site-packages"};

// What is shown as files and is none.
constexpr uint32_t kWindowsIntoTheSystem[] = {PROC_SUPER_MAGIC,   SYSFS_MAGIC,   DEVPTS_SUPER_MAGIC,
                                              CGROUP_SUPER_MAGIC, DEBUGFS_MAGIC, CGROUP2_SUPER_MAGIC,
                                              SECURITYFS_MAGIC,   TRACEFS_MAGIC, BPF_FS_MAGIC};

std::string ConfigurationFile() {
    const char *config = GetEnvironment("XDG_CONFIG_HOME"), *home = GetEnvironment("HOME");
    if (config && *config == '/') return std::string(config) + "/vellum/index-roots";
    return home && *home == '/' ? std::string(home) + "/.config/vellum/index-roots" : std::string();
}

// The folder as the kernel names it; "" is the root of all.
std::string Normal(const std::string &path) {
    std::string real = RealFolderPath(path);
    return real == "/" ? std::string() : real;
}

class RootsBuilder {
public:
    void Add(const std::string &path, bool was_named) {
        if (!LeadsToFolder(path.c_str())) return; // a drive that is not there now
        found_.roots.push_back({Normal(path), was_named});
    }
    void LeaveOut(const std::string &path) {
        if (LeadsToFolder(path.c_str())) found_.left_out.push_back(Normal(path));
    }
    bool IsEmpty() const noexcept { return !was_any_named_; }

    void ReadList(const std::string &list) {
        for (size_t at = 0; at <= list.size();) {
            const size_t end = std::min(list.find(':', at), list.size());
            if (list[at] == '/') AddNamed(list.substr(at, end - at));
            at = end + 1;
        }
    }

    void ReadConfiguration(const std::string &path) {
        std::ifstream file(path);
        for (std::string line; std::getline(file, line);) {
            if (line.empty() || line.front() == '#') continue;
            if (line.front() == '/')
                AddNamed(line);
            else if (line.starts_with("!/"))
                LeaveOut(line.substr(1));
            else
                Log(LogLevel::kWarning, "%s: '%s' is no absolute path, and is passed over", path.c_str(),
                    line.c_str());
        }
    }

    CrawlRoots Publish() {
        auto &roots = found_.roots;
        std::ranges::stable_sort(roots, {}, &CrawlRoot::path);
        std::vector<CrawlRoot> outermost;
        for (CrawlRoot &root : roots)
            if (outermost.empty() || !IsIn(root.path, outermost.back().path))
                outermost.push_back(std::move(root));
        roots = std::move(outermost);
        return std::move(found_);
    }

private:
    static bool IsIn(const std::string &path, const std::string &folder) noexcept {
        return path == folder || (path.starts_with(folder) && path[folder.size()] == '/');
    }
    void AddNamed(const std::string &path) {
        was_any_named_ = true;
        Add(path, true);
    }

    CrawlRoots found_;
    bool was_any_named_ = false;
};

} // namespace

bool CrawlRoots::PassesOver(const std::string &folder, std::string_view name) const {
    return name.starts_with('.') || std::ranges::find(kFetched, name) != std::end(kFetched) ||
           std::ranges::find(left_out, folder) != left_out.end();
}

CrawlRoots FindCrawlRoots() {
    RootsBuilder builder;
    if (const char *list = GetEnvironment("VELLUM_INDEX_ROOTS")) {
        builder.ReadList(list);
        return builder.Publish();
    }
    builder.ReadConfiguration(ConfigurationFile());
    if (!builder.IsEmpty()) return builder.Publish();
    if (const char *home = GetEnvironment("HOME"); home && *home == '/') builder.Add(home, false);
    for (const char *root : kUsualRoots) builder.Add(root, false);
    return builder.Publish();
}

bool IsOnOwnDisk(const std::string &folder) noexcept {
    struct statfs system = {};
    const char *path = folder.empty() ? "/" : folder.c_str();
    if (::statfs(path, &system) != 0) return false;
    const auto kind = static_cast<uint32_t>(system.f_type);
    return std::ranges::find(kWindowsIntoTheSystem, kind) == std::end(kWindowsIntoTheSystem) &&
           GetVolumeFlags(path) & kVolumeIsLocal;
}

} // namespace vellum
