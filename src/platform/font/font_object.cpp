// SPDX-License-Identifier: MIT
// Life and death of GxFont objects.
#include "platform/font/font_object.hpp"

#include "platform/font/live_data_fonts.hpp"

namespace vellum {
namespace {

// Only fonts made from buffers can stand among the live data fonts.
void Finalize(ValObject *object) noexcept {
    auto *font = static_cast<GxFont *>(object);
    if (!font->file) ForgetLiveDataFont(font);
    delete font->companion.load(std::memory_order_acquire);
    font->~GxFont();
}

constexpr ValKind kFontKind = {kValTypeOther, "font", Finalize, nullptr, nullptr, nullptr};

} // namespace

Ref<const GxFont> MakeFont(TFacePtr face, Ref<const ValURL> file, bool alone) {
    return Ref<const GxFont>::Adopt(AllocateObject<GxFont>(0, std::move(face), std::move(file), alone));
}

} // namespace vellum

GxFont::GxFont(vellum::TFacePtr its_face, vellum::Ref<const ValURL> its_file, bool is_alone) noexcept
    : ValObject(vellum::kFontKind), face(std::move(its_face)), file(std::move(its_file)), alone(is_alone) {}
