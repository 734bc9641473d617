// SPDX-License-Identifier: MIT
// A machine of a test's own on which applications lack fonts: a real font server, a real index of font
// files, and a companion that asks by a dialogue program of the test's.
#pragma once

#include "application.hpp"
#include "beacon/running_beacon.hpp"
#include "server/running_server.hpp"
#include "support/framework_resources.hpp"

#include <memory>
#include <string>

namespace vellum::test {

// Where the fonts lie that nobody has registered: on the volume of temporary files, or in memory.
enum class Volume { kUsual, kInMemory };

class Machine {
public:
    explicit Machine(Volume volume = Volume::kUsual);
    Machine(const Machine &) = delete;
    Machine &operator=(const Machine &) = delete;

    // Starts both services; the index is at rest.
    void Start();

    // What is found by the index, and by nobody else.
    const FontFolder &Files() const { return *files_; }

    // What is set: the entries of the preferences.
    void Prefer(const std::string &entries) const;

    // From now on there is a companion. What its dialogue program does, in the shell's language: "echo yes"
    // and "echo no" answer for once, "echo always" and "echo never" for ever.
    void AnswerWith(const std::string &script);

    // How often the user was asked until now.
    int Questions() const;

    // Has a library of the test's stand for the companion.
    void InstallCompanion(const std::string &library) const;
    void RemoveCompanion() const;

    RunningServer &Server() { return server_; }
    RunningBeacon &Beacon() { return beacon_; }
    const TempDir &Home() const { return beacon_.Home(); }

    // Where an application copies fonts that may soon be gone from where they are.
    std::string StableStorageOf(const Application &application) const {
        return Home().File("run/vellum/autoactivatedfonts-" + std::to_string(application.Process()));
    }

private:
    FrameworkResources resources_;
    RunningServer server_;
    RunningBeacon beacon_; // its folders are everybody's
    const std::unique_ptr<const FontFolder> files_;
};

} // namespace vellum::test
