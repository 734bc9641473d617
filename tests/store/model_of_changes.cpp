// SPDX-License-Identifier: MIT
// The model's fonts, then its rules.
#include "store/model_of_changes.hpp"

#include "support/font_builder.hpp"

#include <algorithm>

namespace vellum::test {

// ---- fonts ----

namespace {

constexpr const char *kFolders[] = {"a", "a/b", "a/b/c", "a2", "d"};
constexpr int kDefaultWeight = 400; // MakeVariableFont's

const Bytes kNoFont = {'n', 'o', ' ', 'f', 'o', 'n', 't'};

ModelFace FaceNamed(const NamedFace &face) {
    ModelFace model;
    model.postscript_name = face.postscript_name;
    if (!face.postscript_name.empty()) model.names[1] = {face.postscript_name};
    model.names[2] = {face.FullName()};
    model.names[3] = {face.family};
    model.names[4] = {face.style};
    return model;
}

// A named instance has the PostScript name in the file besides the one that is made for it.
ModelFace InstanceOf(const NamedFace &face, int weight) {
    const std::string style = "W" + std::to_string(weight);
    ModelFace model = FaceNamed({face.family, style});
    model.names[1].push_back(face.postscript_name);
    model.weight = weight;
    return model;
}

class ModelFilesWriter {
public:
    explicit ModelFilesWriter(const FontFolder &folder) : folder_(folder) {}

    void Add(const std::string &name, const Bytes &bytes, std::vector<ModelFace> faces) {
        folder_.Write(name, bytes);
        AddFaces(name, std::move(faces));
    }
    void AddMissing(const std::string &name) { AddFaces(name, {}); }
    void AddCollection(const std::string &name, const std::vector<NamedFace> &faces) {
        std::vector<ModelFace> known;
        for (const NamedFace &face : faces) known.push_back(FaceNamed(face));
        Add(name, faces.size() == 1 ? MakeFont(faces[0]) : MakeCollection(faces), known);
    }
    void AddVariable(const std::string &name, const NamedFace &face, const std::vector<int> &weights) {
        std::vector<ModelFace> known = {FaceNamed(face)};
        known[0].weight = kDefaultWeight;
        for (const int weight : weights) {
            if (weight != kDefaultWeight) known.push_back(InstanceOf(face, weight));
        }
        Add(name, MakeVariableFont(face, weights), known);
    }

    ModelFiles files;

private:
    void AddFaces(const std::string &name, std::vector<ModelFace> faces) {
        const bool alone = faces.size() == 1;
        auto &known = files[folder_.File(name)];
        for (ModelFace &face : faces) {
            face.path = folder_.File(name);
            face.url = "file://" + face.path;
            if (!alone) face.url += "#postscript-name=" + face.postscript_name;
            if (!alone && &face != &faces[0] && face.weight)
                face.url += ";var:wght=" + std::to_string(*face.weight);
            known.push_back(std::make_shared<ModelFace>(std::move(face)));
        }
    }

    const FontFolder &folder_;
};

// Files of one face; the same names come again in other folders, in another letter case too.
void AddSingles(ModelFilesWriter &writer) {
    for (int i = 0; i < 18; ++i) {
        const std::string family = (i % 4 == 3 ? "f" : "F") + std::to_string(i % 6);
        const std::string name = std::string(kFolders[i % 5]) + "/s" + std::to_string(i) + ".ttf";
        writer.AddCollection(name, {{family, i % 2 ? "Bold" : "Regular"}});
    }
}

// The last of the pairs has one name twice.
void AddCollections(ModelFilesWriter &writer) {
    for (int i = 0; i < 7; ++i) {
        const std::string family = "P" + std::to_string(i % 4), name = "p" + std::to_string(i) + ".ttc";
        writer.AddCollection(std::string(kFolders[i % 5]) + "/" + name,
                             {{family}, {family, i == 6 ? "Regular" : "Bold"}});
    }
    for (int i = 0; i < 4; ++i) {
        const std::string n = std::to_string(i);
        writer.AddCollection(std::string(kFolders[i]) + "/t" + n + ".ttc",
                             {{"T" + n}, {"F" + n}, {"T" + n, "Bold"}});
    }
}

// A face with two family names and two style names, and more of them that differ in case.
void AddFacesOfSeveralNames(ModelFilesWriter &writer) {
    for (const auto &[file, preferred] :
         {std::pair("a/g.ttf", "Gamma"), std::pair("d/g.ttf", "GAMMA BOLD")}) {
        ModelFace face = FaceNamed({"Gamma Bold", "Regular", "Gamma-Bold"});
        face.names[3].push_back(preferred);
        face.names[4].push_back("Bold");
        auto names = PlainNames("Gamma Bold", "Regular", "Gamma-Bold");
        names.push_back(WindowsName(16, std::string_view(preferred)));
        names.push_back(WindowsName(17, std::string_view("Bold")));
        writer.Add(file, FontBuilder().Names(names).Build(), {face});
    }
}

void AddFacesOfAccentedNames(ModelFilesWriter &writer) {
    for (const auto &[file, wide, narrow] : {std::tuple("a/u.ttf", u"\u00C4rger", "\u00C4rger"),
                                             std::tuple("a/b/u.ttf", u"\u00E4RGER", "\u00E4RGER")}) {
        ModelFace face = FaceNamed({"U", "Regular"});
        face.names[3] = {narrow};
        auto names = PlainNames("U", "Regular", "U-Regular");
        names[0] = WindowsName(1, std::u16string_view(wide));
        writer.Add(file, FontBuilder().Names(names).Build(), {face});
    }
}

} // namespace

ModelFiles WriteModelFiles(const FontFolder &folder) {
    ModelFilesWriter writer(folder);
    AddSingles(writer);
    AddCollections(writer);
    writer.AddVariable("a/v0.ttf", {"V"}, {300, 700});
    writer.AddVariable("a/b/v1.ttf", {"V"}, {300, 700});
    writer.AddVariable("a2/v2.ttf", {"X"}, {300, 400, 900});
    writer.AddVariable("d/v3.ttf", {"F1"}, {700});
    AddFacesOfSeveralNames(writer);
    AddFacesOfAccentedNames(writer);
    writer.AddCollection("d/nameless.ttf", {{"Nameless", "Regular", ""}});
    writer.Add("a/broken.ttf", kNoFont, {});
    writer.Add("a/b/c/empty.ttf", {}, {});
    writer.AddMissing("a/missing.ttf");
    writer.AddMissing("nowhere/missing.ttf");
    return std::move(writer.files);
}

std::vector<ModelBuffer> MakeModelBuffers() {
    const auto face = [](const NamedFace &named, std::optional<int> weight = std::nullopt) {
        ModelFace model = FaceNamed(named);
        model.weight = weight;
        return std::make_shared<const ModelFace>(model);
    };
    const NamedFace own = {"D0"}, known = {"F1", "Bold"}, first = {"D2"}, variable = {"D3"};
    return {{MakeFont(own), face(own)},
            {MakeFont(known), face(known)},
            {MakeCollection({first, {"F2"}}), face(first)},
            {MakeVariableFont(variable, {700}), face(variable, kDefaultWeight)},
            {MakeFont({"Nameless", "Regular", ""}), nullptr},
            {kNoFont, nullptr}};
}

std::string WithoutCase(std::string_view text) {
    std::string lower(text);
    for (size_t i = 0; i < lower.size(); ++i) {
        const auto byte = static_cast<uint8_t>(lower[i]);
        const bool accented = i > 0 && static_cast<uint8_t>(lower[i - 1]) == 0xC3;
        const bool upper =
            accented ? byte >= 0x80 && byte <= 0x9E && byte != 0x97 : byte >= 'A' && byte <= 'Z';
        if (upper) lower[i] = static_cast<char>(byte + 0x20);
    }
    return lower;
}

// ---- rules ----

namespace {

// A face without a name fits none.
bool Fits(const ModelFace &face, const ModelURL &url) {
    const std::string &name = face.postscript_name;
    if (url.postscript_name && (name.empty() || WithoutCase(*url.postscript_name) != WithoutCase(name)))
        return false;
    return !url.weight || url.weight == face.weight;
}

// A file's path and the folders above it, but for the root.
std::vector<std::string> PathKeys(const std::string &path) {
    std::vector<std::string> keys = {path};
    for (size_t end = path.rfind('/'); end != path.npos && end > 0; end = path.rfind('/', end - 1))
        keys.push_back(path.substr(0, end));
    return keys;
}

std::vector<std::string> KeysOf(const ModelFace &face, uint16_t slot) {
    if (slot == ModelOfChanges::kPath || slot == ModelOfChanges::kDisabledPath) return PathKeys(face.path);
    std::vector<std::string> keys;
    for (const std::string &name : face.names[slot]) keys.push_back(WithoutCase(name));
    return keys;
}

} // namespace

uint32_t ModelOfChanges::ReferenceOf(size_t face) const {
    const auto number = static_cast<uint32_t>(face % 32767);
    return 0x80000000 | ((number << 16) & 0x7FFF0000) | (process_id_ & 0xFFFF);
}

const ModelFace *ModelOfChanges::FaceAt(size_t face) const {
    return faces_[face].table == Table::kNone ? nullptr : faces_[face].face.get();
}

bool ModelOfChanges::RegisterFont(const ModelURL &url) {
    if (!Find(kPath, url.path).empty()) return false;
    const auto faces = Parse(url);
    if (faces.empty()) return false;
    ++change_count_;
    for (const ModelFaceRef &face : faces) Enter(face);
    return true;
}

bool ModelOfChanges::RegisterFonts(const URLs &urls, Texts &errors) {
    for (const ModelURL &url : urls) {
        if (!RegisterFont(url)) errors.push_back(url.text);
    }
    return errors.empty();
}

// Faces that are disabled stay in their table: nothing finds them there, and their numbers stay taken.
bool ModelOfChanges::UnregisterFont(const ModelURL &url) {
    Faces found = Find(kPath, url.path);
    for (const size_t face : Find(kDisabledPath, url.path)) found.push_back(face);
    for (const size_t face : found) {
        RemoveFromIndexes(face);
        if (IsEnabled(face)) RemoveForGood(face);
    }
    ++change_count_;
    return true;
}

bool ModelOfChanges::UnregisterFonts(const URLs &urls) {
    for (const ModelURL &url : urls) UnregisterFont(url);
    return true;
}

bool ModelOfChanges::DisableFont(const ModelURL &url) {
    GetIndex(kDisabledPath);
    const Faces found = Find(kPath, url.path);
    for (const size_t face : found) {
        if (!IsEnabled(face) || !Fits(*faces_[face].face, url)) continue;
        faces_[face].table = Table::kDisabled;
        std::erase(enabled_, face);
        RemoveFromIndexes(face);
        AddTo(kDisabledPath, face);
    }
    return !found.empty();
}

bool ModelOfChanges::EnableFont(const ModelURL &url) {
    const Faces found = Find(kDisabledPath, url.path);
    for (const size_t face : found) {
        if (faces_[face].table != Table::kDisabled || !Fits(*faces_[face].face, url)) continue;
        faces_[face].table = Table::kEnabled;
        enabled_.push_back(face);
        AddToIndexesOfEnabled(face);
        RemoveFrom(kDisabledPath, face);
    }
    return !found.empty();
}

ModelOfChanges::Texts ModelOfChanges::EnableFonts(const URLs &urls) {
    Texts changed;
    for (const ModelURL &url : urls) {
        if (EnableFont(url)) changed.push_back(url.text);
    }
    return changed;
}

ModelOfChanges::Texts ModelOfChanges::DisableFonts(const URLs &urls) {
    Texts changed;
    for (const ModelURL &url : urls) {
        if (DisableFont(url)) changed.push_back(url.text);
    }
    return changed;
}

bool ModelOfChanges::RegisterDataFont(size_t buffer, const ModelFaceRef &face, uint32_t container) {
    if (FaceOfBuffer(buffer) || !face) return false;
    ++change_count_;
    buffers_[buffer] = faces_.size();
    containers_[faces_.size()] = container;
    Enter(face);
    return true;
}

bool ModelOfChanges::UnregisterDataFont(size_t buffer) {
    const ModelFace *registered = FaceOfBuffer(buffer);
    if (!registered) return false;
    const Faces found = Find(kPath, registered->path);
    if (found.empty()) return false;
    for (const size_t face : found) {
        RemoveFromIndexes(face);
        RemoveForGood(face);
    }
    ++change_count_;
    return true;
}

const ModelFace *ModelOfChanges::FaceOfBuffer(size_t buffer) const {
    const auto entry = buffers_.find(buffer);
    return entry == buffers_.end() ? nullptr : faces_[entry->second].face.get();
}

bool ModelOfChanges::IsOfDisabledBuffer(const ModelURL &url) const {
    return std::any_of(buffers_.begin(), buffers_.end(), [&](const auto &entry) {
        const Entry &registered = faces_[entry.second];
        return registered.table == Table::kDisabled && registered.face->path == url.path;
    });
}

uint32_t ModelOfChanges::ContainerOfBuffer(size_t buffer) const {
    const auto entry = containers_.find(buffers_.at(buffer));
    return entry == containers_.end() ? 0 : entry->second;
}

// What the URL's fragment selects is not asked: a file is registered as a whole.
std::vector<ModelFaceRef> ModelOfChanges::Parse(const ModelURL &url) const {
    const auto file = files_.find(url.path);
    return file == files_.end() ? std::vector<ModelFaceRef>() : file->second;
}

void ModelOfChanges::Enter(const ModelFaceRef &face) {
    const size_t number = faces_.size();
    faces_.push_back({face, Table::kEnabled});
    enabled_.push_back(number);
    AddToIndexesOfEnabled(number);
}

// Out of the enabled ones; a font in memory is known as such no more.
void ModelOfChanges::RemoveForGood(size_t face) {
    const ModelFaceRef removed = faces_[face].face;
    faces_[face].table = Table::kNone;
    std::erase(enabled_, face);
    containers_.erase(face);
    std::erase_if(buffers_, [&](const auto &entry) { return faces_[entry.second].face == removed; });
}

// ---- indexes ----

const ModelOfChanges::Index &ModelOfChanges::GetIndex(uint16_t slot) {
    if (!indexes_[slot]) {
        indexes_[slot].emplace();
        for (const size_t face : enabled_) AddTo(slot, face);
    }
    return *indexes_[slot];
}

ModelOfChanges::Faces ModelOfChanges::Find(uint16_t slot, const std::string &key) {
    const bool is_path = slot == kPath || slot == kDisabledPath;
    const Index &index = GetIndex(slot);
    const auto entry = index.find(is_path ? key : WithoutCase(key));
    return entry == index.end() ? Faces() : entry->second.faces;
}

void ModelOfChanges::AddTo(uint16_t slot, size_t face) {
    if (!indexes_[slot]) return;
    for (const std::string &text : KeysOf(*faces_[face].face, slot)) {
        Key &key = (*indexes_[slot])[text];
        if (std::find(key.faces.begin(), key.faces.end(), face) != key.faces.end()) continue;
        key.faces.push_back(face);
        if (key.faces.size() > 1) key.has_set = true;
    }
}

void ModelOfChanges::AddToIndexesOfEnabled(size_t face) {
    for (uint16_t slot = 0; slot < kDisabledPath; ++slot) AddTo(slot, face);
}

void ModelOfChanges::RemoveFrom(uint16_t slot, size_t face) {
    if (!indexes_[slot]) return;
    for (const std::string &text : KeysOf(*faces_[face].face, slot)) {
        const auto key = indexes_[slot]->find(text);
        if (key == indexes_[slot]->end()) continue;
        std::erase(key->second.faces, face);
        if (key->second.faces.empty()) indexes_[slot]->erase(key);
    }
}

void ModelOfChanges::RemoveFromIndexes(size_t face) {
    for (uint16_t slot = 0; slot < kSlotCount; ++slot) RemoveFrom(slot, face);
}

} // namespace vellum::test
