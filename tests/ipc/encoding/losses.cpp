// SPDX-License-Identifier: MIT
// The way is walked without bytes: a value is laid out as a row of items, each container in front of
// its own, and the row is gathered into values again.
#include "ipc/encoding/losses.hpp"

#include "ipc/encoding/reference_decoder.hpp"

#include <algorithm>
#include <utility>

namespace vellum::test {
namespace {

constexpr size_t kDeepest = 64;

struct RowItem {
    Model model;      // of a container, without its items
    size_t count = 0; // how many items belong to a container
};
using Row = std::vector<RowItem>;

bool IsContainer(const Model &model) {
    return model.kind == ModelKind::kArray || model.kind == ModelKind::kSet ||
           model.kind == ModelKind::kDictionary;
}

Model Leaf(const Model &value) {
    switch (value.kind) {
    case ModelKind::kString:
        return StringModel(IsUTF8(value.bytes) ? value.bytes : "");
    case ModelKind::kData:
        return value.bytes.empty() ? Model() : value;
    case ModelKind::kURL:
        return URLModel(value.absolute, value.absolute);
    default:
        return value;
    }
}

// False when the value stands too deep to be written.
bool LayOut(const Model &value, size_t nesting, Row &row) {
    if (value.IsNull()) return true;
    if (!IsContainer(value)) {
        row.push_back({Leaf(value)});
        return true;
    }
    const auto nulls = std::count_if(value.items.begin(), value.items.end(),
                                     [](const Model &item) { return item.IsNull(); });
    row.push_back({EmptyModel(value.kind), value.items.size() - static_cast<size_t>(nulls)});
    return nesting < kDeepest &&
           std::all_of(value.items.begin(), value.items.end(),
                       [&](const Model &item) { return LayOut(item, nesting + 1, row); });
}

Model Gather(const Row &row, size_t &at);

Model GatherDictionary(const Row &row, size_t &at, size_t count) {
    Model dictionary = EmptyModel(ModelKind::kDictionary);
    for (size_t i = 0; i < count; i += 2) {
        Model key = Gather(row, at);
        Model value = Gather(row, at);
        if (key.IsNull() || value.IsNull()) break;
        AddPair(dictionary, std::move(key), std::move(value));
    }
    return dictionary;
}

Model Gather(const Row &row, size_t &at) {
    const auto &[model, count] = row.at(at++);
    if (model.kind == ModelKind::kDictionary) return GatherDictionary(row, at, count);
    Model gathered = model;
    for (size_t i = 0; i < count; ++i) {
        Model item = Gather(row, at);
        if (model.kind == ModelKind::kSet) {
            AddMember(gathered, std::move(item));
        } else {
            gathered.items.push_back(std::move(item));
        }
    }
    return gathered;
}

} // namespace

std::vector<Model> AfterTheWay(const Model &value) {
    Row row;
    if (!LayOut(value, 0, row)) return {};
    std::vector<Model> items;
    for (size_t at = 0; at < row.size();) items.push_back(Gather(row, at));
    return items;
}

} // namespace vellum::test
