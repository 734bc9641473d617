// SPDX-License-Identifier: MIT
#include "autoactivation/auto_activation_manager.hpp"

#include "values/lookup_trace.hpp"

namespace vellum {

Ref<const ValArray> TAutoActivationManager::CopyAutoActivatedFonts(VLScope) const {
    LookupTrace::Tell("activation", [&](TValMutableDict &stage) {
        stage.Set(TraceText("requested").Get(), request_.Get());
        stage.Set(TraceText("providers").Get(), skips_providers_ ? kValBooleanFalse : kValBooleanTrue);
        stage.Set(TraceText("search").Get(), skips_search_ ? kValBooleanFalse : kValBooleanTrue);
    });
    return nullptr;
}

Ref<const ValURL> TAutoActivationManager::CopyAutoActivatedFont(VLScope scope) const {
    const auto fonts = CopyAutoActivatedFonts(scope);
    return Retain(static_cast<const ValURL *>(ValArrayGetValue(fonts.Get(), 0)));
}

} // namespace vellum
