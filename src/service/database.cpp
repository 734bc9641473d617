// SPDX-License-Identifier: MIT
#include "service/database.hpp"

#include <unistd.h>

#include <cstdio>

namespace vellum {

namespace {

std::string NameAside(const std::string &path) {
    std::string name = path + ".broken";
    for (int i = 2; ::access(name.c_str(), F_OK) == 0; ++i) name = path + ".broken-" + std::to_string(i);
    return name;
}

} // namespace

std::string SetDatabaseAside(const std::string &path) {
    const std::string aside = NameAside(path);
    for (const char *part : {"", "-wal"}) std::rename((path + part).c_str(), (aside + part).c_str());
    return aside;
}

} // namespace vellum
