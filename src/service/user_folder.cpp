// SPDX-License-Identifier: MIT
#include "service/user_folder.hpp"

#include "platform/process/process.hpp"

#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace vellum {

std::string MakeUserFolder(const char *variable, const char *below_home, const char *content) {
    const char *named = GetEnvironment(variable), *home = GetEnvironment("HOME");
    std::string folder;
    if (named && *named == '/')
        folder = std::string(named) + "/vellum";
    else if (home && *home == '/')
        folder = std::string(home) + "/" + below_home + "/vellum";
    else
        throw std::runtime_error("neither " + std::string(variable) + " nor HOME says where to keep " +
                                 content);
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) throw std::runtime_error("cannot make " + folder + ": " + error.message());
    return folder;
}

} // namespace vellum
