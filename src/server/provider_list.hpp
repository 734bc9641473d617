// SPDX-License-Identifier: MIT
// The processes that have announced themselves as providers of fonts.
#pragma once

#include <vellum/values.hpp>

#include <sys/types.h>

#include <string>
#include <string_view>
#include <vector>

namespace vellum {

class ProviderList {
public:
    // `uuid` names the provider's port, `process` is the one that has sent the message. False for what is
    // no UUID, and for one too many.
    bool Add(std::string_view uuid, pid_t process);

    // True when the process had announced it, or when it is gone anyway.
    bool Remove(std::string_view uuid, pid_t process);

    // Of those that are still alive, a dictionary each: "pid" and "portname", a ValUUID.
    Ref<const ValArray> Copy();

private:
    struct Provider {
        std::string uuid;
        pid_t process;
    };

    void DropDead();

    std::vector<Provider> providers_;
};

} // namespace vellum
