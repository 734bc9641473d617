// SPDX-License-Identifier: MIT
// An index of font files of a test's own: a real process with folders of its own.
#pragma once

#include "platform/beacon/metadata_items.hpp"
#include "support/named_font.hpp"
#include "support/service_home.hpp"
#include "support/started_service.hpp"

#include <vellum/values.hpp>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vellum::test {

// Points this process at folders of its own, too, so that it meets this service and no other.
class RunningBeacon {
public:
    RunningBeacon();
    RunningBeacon(const RunningBeacon &) = delete;
    RunningBeacon &operator=(const RunningBeacon &) = delete;

    bool Start() { return service_.Start(VELLUM_BEACON, home_.File("ready")); }
    int End(int signal) { return service_.End(signal); }
    pid_t Process() const { return service_.Process(); }

    // The only root, and where the database lies.
    FontFolder &Files() { return files_; }
    std::string Database() const { return home_.File("cache/vellum/font-index.db"); }
    const TempDir &Home() const { return home_; }

    // What a status says under a name, of now; 0 without an answer.
    static uint64_t Number(const char *key);
    static std::string State();

    // Returns when the index is at rest, and has seen a change since that one if one is given.
    static void WaitUntilIdle(uint64_t since = UINT64_MAX);

    // Returns when something is so, which is looked at whenever the index has changed or rests; false when
    // it does not come to be.
    static bool WaitUntil(const std::function<bool()> &is_so);

    // The paths that a query finds, below the root; nothing when nobody answers.
    std::optional<std::vector<std::string>> Ask(const std::string &query) const;
    std::vector<std::string> OfFamily(const std::string &family) const;

private:
    FontFolder files_;
    ServiceHome home_;
    StartedService service_;
};

} // namespace vellum::test
