// SPDX-License-Identifier: MIT
// Axes and instances as HarfBuzz reads them, within the parser's limits.
#include "platform/font/variations.hpp"

#include "platform/font/harfbuzz.hpp"
#include "platform/font/limits.hpp"

#include <algorithm>

namespace vellum {
namespace {

std::vector<TVariationAxis> ReadAxes(hb_face_t *face, unsigned int count) {
    std::vector<hb_ot_var_axis_info_t> infos(count);
    hb_ot_var_get_axis_infos(face, 0, &count, infos.data());
    std::vector<TVariationAxis> axes;
    axes.reserve(count);
    for (const auto &info : infos) {
        axes.push_back({info.tag, static_cast<uint16_t>(info.name_id), static_cast<double>(info.min_value),
                        static_cast<double>(info.default_value), static_cast<double>(info.max_value)});
    }
    return axes;
}

TNamedInstance ReadInstance(hb_face_t *face, unsigned int index, unsigned int axes) {
    std::vector<float> coordinates(axes);
    hb_ot_var_named_instance_get_design_coords(face, index, &axes, coordinates.data());
    return {static_cast<uint16_t>(hb_ot_var_named_instance_get_subfamily_name_id(face, index)),
            static_cast<uint16_t>(hb_ot_var_named_instance_get_postscript_name_id(face, index)),
            std::vector<double>(coordinates.begin(), coordinates.end())};
}

} // namespace

TVariations ReadVariations(TBytes fvar, size_t instances) {
    const TTableFunction tables = [fvar](GxTag tag) { return tag == MakeTag("fvar") ? fvar : TBytes(); };
    const TFaceHandle face = MakeFace(tables);
    const unsigned int axes = hb_ot_var_get_axis_count(face.get());
    TVariations variations;
    if (axes == 0 || axes > limits::kAxes) return variations;
    variations.axes = ReadAxes(face.get(), axes);
    const std::vector<double> defaults = variations.Defaults();
    const unsigned int count = hb_ot_var_get_named_instance_count(face.get());
    for (unsigned int i = 0; i < count && variations.instances.size() < instances; ++i) {
        TNamedInstance instance = ReadInstance(face.get(), i, axes);
        if (instance.coordinates != defaults) variations.instances.push_back(std::move(instance));
    }
    return variations;
}

std::vector<double> TVariations::Defaults() const {
    std::vector<double> defaults;
    defaults.reserve(axes.size());
    for (const TVariationAxis &axis : axes) defaults.push_back(axis.default_value);
    return defaults;
}

std::vector<uint16_t> TVariations::NameIdentifiers() const {
    std::vector<uint16_t> names;
    for (const TVariationAxis &axis : axes) names.push_back(axis.name);
    for (const TNamedInstance &instance : instances) {
        names.push_back(instance.subfamily_name);
        if (instance.postscript_name != TNamedInstance::kNoName) names.push_back(instance.postscript_name);
    }
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

} // namespace vellum
