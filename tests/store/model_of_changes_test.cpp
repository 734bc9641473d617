// SPDX-License-Identifier: MIT
// A register and the model of it go through the same changes, drawn by lot, and are compared after each: in
// what the change answers, in every table and index, and in what is asked of single fonts. When they
// differ, the changes that lead there are cut down to few.
#include "describe/client_font_entity.hpp"
#include "describe/gx_font_wrapper.hpp"
#include "model_of_changes.hpp"
#include "store/local_glyphary_imp.hpp"
#include "support/values.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <random>
#include <set>

namespace vellum::test {
namespace {

using Model = ModelOfChanges;

// ---- what is drawn ----

using Random = std::mt19937;

size_t Below(Random &random, size_t end) {
    return random() % end;
}

template <class T>
const T &OneOf(Random &random, const std::vector<T> &items) {
    return items[Below(random, items.size())];
}

// A URL of a buffer's font is known only once the font is registered.
struct StepURL {
    enum Form { kFace, kHost, kOtherName, kFormCount };

    ModelURL url; // when no buffer is meant
    std::optional<size_t> buffer = std::nullopt;
    Form form = kFace;
};

enum class Change {
    kRegister,
    kRegisterAll,
    kUnregister,
    kUnregisterAll,
    kEnable,
    kEnableAll,
    kDisable,
    kDisableAll,
    kRegisterData,
    kUnregisterData,
    kCount
};

constexpr const char *kChangeNames[] = {
    "RegisterFont", "RegisterFonts", "UnregisterFont", "UnregisterFonts",  "EnableFont",
    "EnableFonts",  "DisableFont",   "DisableFonts",   "RegisterDataFont", "UnregisterDataFont"};

bool IsBatch(Change change) {
    return change < Change::kRegisterData && static_cast<int>(change) % 2 == 1;
}

struct Step {
    Change change = Change::kRegister;
    std::vector<StepURL> urls;
    size_t buffer = 0;
    uint32_t container = 0;
    std::optional<uint16_t> slot; // the index that is asked for afterwards
};

std::string Described(const Step &step) {
    std::string text = kChangeNames[static_cast<size_t>(step.change)];
    for (const StepURL &url : step.urls) {
        const std::string buffer = "buffer " + std::to_string(url.buffer.value_or(0)) + " form ";
        text += " " + (url.buffer ? buffer + std::to_string(url.form) : url.url.text);
    }
    if (step.urls.empty()) text += " buffer " + std::to_string(step.buffer);
    if (step.slot) text += ", index " + std::to_string(*step.slot);
    return text;
}

// The fonts, and the URLs that are drawn from.
class World {
public:
    World() : files(WriteModelFiles(folder)), buffers(MakeModelBuffers()) {
        for (const auto &[path, faces] : files) AddURLsOfFile(path, faces);
        for (const char *name : {"a", "a/b", "a/b/c", "a2", "d", "nowhere"})
            AddURLsOfFolder(folder.File(name));
        AddURLsOfFolder(folder.Path());
        AddURLsOfFolder(folder.Path().substr(0, folder.Path().rfind('/')));
        strange_ = {{"file:///", "/", {}, {}},
                    {"file:///no/such/folder", "/no/such/folder", {}, {}},
                    {"http://example.org/a.ttf", "", {}, {}},
                    {"file://inMemory_0x10#postscript-name=D0-Regular", "inMemory_0x10", "D0-Regular", {}}};
        for (const ModelBuffer &buffer : buffers) data.push_back(AsData(buffer.bytes));
    }

    Step Draw(Random &random) const {
        Step step;
        step.change =
            static_cast<Change>(std::discrete_distribution<int>({24, 5, 6, 2, 20, 4, 20, 4, 9, 6})(random));
        size_t count = step.change >= Change::kRegisterData ? 0 : 1;
        if (IsBatch(step.change)) count = Below(random, 5);
        for (size_t i = 0; i < count; ++i) step.urls.push_back(DrawURL(random, step.change));
        step.buffer = Below(random, buffers.size());
        step.container = static_cast<uint32_t>(Below(random, 3));
        if (Below(random, 6) == 0) step.slot = static_cast<uint16_t>(Below(random, Model::kSlotCount));
        return step;
    }

    const FontFolder folder;
    const ModelFiles files;
    const std::vector<ModelBuffer> buffers;
    std::vector<Ref<const ValData>> data;

private:
    // Who registers files calls them by their plain names: faces are called as their file was.
    StepURL DrawURL(Random &random, Change change) const {
        const bool registers = change == Change::kRegister || change == Change::kRegisterAll;
        const size_t lot = Below(random, 100);
        if (lot < 45) return {OneOf(random, files_)};
        if (lot < 70) return {OneOf(random, faces_)};
        if (lot < 75) return {OneOf(random, registers ? files_ : spellings_)};
        if (lot < 83) return {OneOf(random, folders_)};
        if (lot < 86) return {OneOf(random, strange_)};
        return {{},
                Below(random, buffers.size()),
                static_cast<StepURL::Form>(Below(random, StepURL::kFormCount))};
    }

    void AddURLsOfFile(const std::string &path, const std::vector<ModelFaceRef> &faces) {
        const std::string text = "file://" + path;
        const size_t slash = text.rfind('/');
        files_.push_back({text, path, {}, {}});
        spellings_.push_back({text.substr(0, slash) + "//./x/.." + text.substr(slash), path, {}, {}});
        faces_.push_back({text + "#postscript-name=Nobody", path, "Nobody", {}});
        faces_.push_back({text + "#page=2", path, {}, {}});
        for (const ModelFaceRef &face : faces) AddURLsOfFace(text, *face);
    }

    void AddURLsOfFace(const std::string &file, const ModelFace &face) {
        const std::string &name = face.postscript_name;
        for (const std::string &spelling : {name, WithoutCase(name)})
            faces_.push_back({file + "#postscript-name=" + spelling, face.path, spelling, {}});
        if (!face.weight) return;
        const std::string place = "var:wght=" + std::to_string(*face.weight);
        faces_.push_back({file + "#" + place, face.path, {}, face.weight});
        faces_.push_back({file + "#postscript-name=" + name + ";" + place, face.path, name, face.weight});
    }

    void AddURLsOfFolder(const std::string &path) {
        const std::string text = "file://" + path;
        folders_.push_back({text, path, {}, {}});
        folders_.push_back({text + "/", path, {}, {}});
        for (const char *name : {"F1-Bold", "P1-REGULAR", "V-W700"})
            folders_.push_back({text + "#postscript-name=" + name, path, name, {}});
    }

    std::vector<ModelURL> files_, faces_, spellings_, folders_, strange_;
};

// ---- what is compared ----

// How often each change failed and succeeded.
using Outcomes = std::array<std::array<size_t, 2>, static_cast<size_t>(Change::kCount)>;

class Comparison {
public:
    // An index is looked at `patience` steps after it was made: a look makes what should be there already.
    Comparison(const World &world, size_t patience)
        : world_(world), model_(world.files, static_cast<uint32_t>(::getpid())), patience_(patience),
          hosts_(world.buffers.size()) {}

    // Both go one step. The first difference, or nothing.
    std::string Take(const Step &step) {
        difference_.clear();
        ++steps_;
        const std::vector<ModelURL> urls = Resolve(step.urls);
        if (IsLeftOut(step.change, urls)) return difference_;
        const bool answer = Apply(step, urls);
        outcomes[static_cast<size_t>(step.change)][answer] += 1;
        if (step.slot) model_.GetIndex(*step.slot);
        if (step.slot) registry_.GetIndex(*step.slot);
        CompareTables();
        for (uint16_t slot = 0; slot < Model::kSlotCount; ++slot) {
            if (model_.IsMade(slot) && (++ages_[slot] > patience_ || step.slot == slot)) CompareIndex(slot);
        }
        CompareBuffers();
        CompareNames();
        if (model_.IsMade(Model::kPath)) CompareURLs(urls);
        return difference_;
    }

    Outcomes outcomes = {};

private:
    template <class T>
    void Same(const char *what, const std::string &of, const T &registered, const T &modelled) {
        if (!difference_.empty() || registered == modelled) return;
        difference_ = std::string(what) + " " + of +
                      "\n  register: " + ::testing::PrintToString(registered) +
                      "\n  model:    " + ::testing::PrintToString(modelled);
    }

    std::vector<ModelURL> Resolve(const std::vector<StepURL> &step_urls) const {
        std::vector<ModelURL> urls;
        for (const StepURL &step_url : step_urls)
            urls.push_back(step_url.buffer ? URLOfBuffer(*step_url.buffer, step_url.form) : step_url.url);
        return urls;
    }

    // Of the font that the buffer is or was; of none before it was registered.
    ModelURL URLOfBuffer(size_t buffer, StepURL::Form form) const {
        const std::string host = hosts_[buffer].empty() ? "inMemory_0x20" : hosts_[buffer];
        const ModelFaceRef &face = world_.buffers[buffer].face;
        const std::string name = form == StepURL::kFace && face ? face->postscript_name : "Nobody";
        if (form == StepURL::kHost) return {"file://" + host, host, {}, {}};
        return {"file://" + host + "#postscript-name=" + name, host, name, {}};
    }

    // The model does not say what registering or unregistering the URL of a font in memory does to one
    // that is disabled.
    bool IsLeftOut(Change change, const std::vector<ModelURL> &urls) const {
        return change <= Change::kUnregisterAll &&
               std::any_of(urls.begin(), urls.end(),
                           [&](const ModelURL &url) { return model_.IsOfDisabledBuffer(url); });
    }

    const ValURL *ValueOf(const std::string &text) {
        auto &url = values_[text];
        if (!url) url = MakeURL(text);
        return url.Get();
    }
    Ref<const ValArray> ArrayOf(const std::vector<ModelURL> &urls) {
        std::vector<Ref<const ValURL>> values;
        for (const ModelURL &url : urls) values.push_back(Retain(ValueOf(url.text)));
        return Array(values);
    }

    struct Answer {
        bool succeeded = false;
        Model::Texts listed = {}; // the failures of a batch, or what it changed
    };

    bool Apply(const Step &step, const std::vector<ModelURL> &urls) {
        const Answer registered = Register(step, urls), modelled = Follow(step, urls, registered.succeeded);
        Same("answer", "", registered.succeeded, modelled.succeeded);
        Same("array", "", registered.listed, modelled.listed);
        return registered.succeeded;
    }

    // The register has an equal copy of a buffer each time.
    Answer Register(const Step &step, const std::vector<ModelURL> &urls) {
        const auto array = ArrayOf(urls);
        const ValURL *const url = urls.empty() ? nullptr : ValueOf(urls[0].text);
        const auto data = AsData(world_.buffers[step.buffer].bytes);
        Ref<const ValArray> listed;
        switch (step.change) {
        case Change::kRegister:
            return {registry_.RegisterFont(url, nullptr, 0, kVLScopeProcess)};
        case Change::kRegisterAll: {
            const bool all = registry_.RegisterFonts(array.Get(), nullptr, 0, kVLScopeProcess, &listed);
            return {all, Texts(listed)};
        }
        case Change::kUnregister:
            return {registry_.UnregisterFont(url, kVLScopeProcess)};
        case Change::kUnregisterAll: {
            const bool all = registry_.UnregisterFonts(array.Get(), kVLScopeProcess, &listed);
            return {all, Texts(listed)};
        }
        case Change::kEnable:
            return {registry_.EnableFont(url, kVLScopeProcess)};
        case Change::kDisable:
            return {registry_.DisableFont(url, kVLScopeProcess)};
        case Change::kEnableAll:
            listed = registry_.EnableFonts(array.Get(), kVLScopeProcess);
            return {static_cast<bool>(listed), Texts(listed)};
        case Change::kDisableAll:
            listed = registry_.DisableFonts(array.Get(), kVLScopeProcess);
            return {static_cast<bool>(listed), Texts(listed)};
        case Change::kRegisterData:
            return {registry_.RegisterDataFont(data.Get(), step.container, 0, kVLScopeProcess)};
        default:
            return {registry_.UnregisterDataFont(data.Get(), kVLScopeProcess)};
        }
    }

    // The model after the register: where a new font in memory lies, only the register can say.
    Answer Follow(const Step &step, const std::vector<ModelURL> &urls, bool registered) {
        Model::Texts listed;
        switch (step.change) {
        case Change::kRegister:
            return {model_.RegisterFont(urls[0])};
        case Change::kRegisterAll: {
            const bool all = model_.RegisterFonts(urls, listed);
            return {all, listed};
        }
        case Change::kUnregister:
            return {model_.UnregisterFont(urls[0])};
        case Change::kUnregisterAll:
            return {model_.UnregisterFonts(urls)};
        case Change::kEnable:
            return {model_.EnableFont(urls[0])};
        case Change::kDisable:
            return {model_.DisableFont(urls[0])};
        case Change::kEnableAll:
            listed = model_.EnableFonts(urls);
            return {!listed.empty(), listed};
        case Change::kDisableAll:
            listed = model_.DisableFonts(urls);
            return {!listed.empty(), listed};
        case Change::kRegisterData:
            return {model_.RegisterDataFont(step.buffer, NewFace(step.buffer, registered), step.container)};
        default:
            return {model_.UnregisterDataFont(step.buffer)};
        }
    }

    // A buffer's face as the register named it.
    ModelFaceRef NewFace(size_t buffer, bool registered) {
        const ModelFaceRef &known = world_.buffers[buffer].face;
        if (!known || !registered) return known;
        char address[32];
        std::snprintf(address, sizeof address, "%p",
                      static_cast<const void *>(registry_.GetDataFont(world_.data[buffer].Get(), nullptr)));
        ModelFace face = *known;
        hosts_[buffer] = face.path = std::string("inMemory_") + address;
        face.url = "file://" + face.path + "#postscript-name=" + face.postscript_name;
        return std::make_shared<const ModelFace>(face);
    }

    void CompareTables() {
        Same("change count", "", registry_.GetChangeCount(), model_.ChangeCount());
        for (size_t face = fonts_.size(); face < model_.FaceCount(); ++face) MeetFace(face);
        for (size_t face = 0; face < fonts_.size(); ++face) {
            const GxFont *expected = model_.FaceAt(face) ? fonts_[face] : nullptr;
            if (FontAt(face) != expected) Same("face", std::to_string(face), FontAt(face), expected);
        }
        Same("next face", "", FontAt(fonts_.size()), static_cast<const GxFont *>(nullptr));
        CompareListing();
    }

    // Faces with one URL are listed once.
    void CompareListing() {
        auto listed = Texts(registry_.CopyAvailableFontURLs(kVLScopeProcess));
        std::sort(listed.begin(), listed.end());
        std::set<std::string> enabled;
        for (const size_t face : model_.Enabled()) enabled.insert(model_.FaceAt(face)->url);
        Same("enabled fonts", "", listed, std::vector<std::string>(enabled.begin(), enabled.end()));
    }

    const GxFont *FontAt(size_t face) const {
        return registry_.GetPossiblyDisabledFont(model_.ReferenceOf(face));
    }

    // From here on the font is told by its address.
    void MeetFace(size_t face) {
        fonts_.push_back(FontAt(face));
        TGxFont font(Retain(fonts_.back()));
        const auto url = font.CopyURL();
        Same("URL of face", std::to_string(face), TextOf(ValURLGetString(url.Get())),
             model_.FaceAt(face)->url);
    }

    std::vector<FontReference> ReferencesOf(const Model::Faces &faces) const {
        std::vector<FontReference> references;
        for (const size_t face : faces) references.push_back(model_.ReferenceOf(face));
        return references;
    }

    void CompareIndex(uint16_t slot) {
        const TFontIndex &index = *registry_.GetIndex(slot);
        const Model::Index &expected = model_.GetIndex(slot);
        const bool is_path = slot == Model::kPath || slot == Model::kDisabledPath;
        const auto keys = index.CopyAllKeys();
        std::set<const Model::Key *> seen;
        bool in_sets = false;
        for (size_t i = 0; i < ValArrayGetCount(keys.Get()); ++i) {
            const void *key = ValArrayGetValue(keys.Get(), i);
            const auto entry = expected.find(is_path ? TextOf(key) : WithoutCase(TextOf(key)));
            if (entry == expected.end()) continue; // the lists of keys will differ
            const auto &[text, known] = *entry;
            seen.insert(&known);
            Same("a key with a set stands before key", text, in_sets && !known.has_set, false);
            in_sets = known.has_set;
            CompareKey(index, key, text, known);
            if ((i + steps_) % 4 == 0)
                CompareLookup(index, is_path ? ValueOf("file://" + text) : key, text, known);
        }
        const bool each_once =
            ValArrayGetCount(keys.Get()) == expected.size() && seen.size() == expected.size();
        if (!each_once) Same("keys of index", std::to_string(slot), Texts(keys), KeysOf(expected));
    }

    static Model::Texts KeysOf(const Model::Index &index) {
        Model::Texts keys;
        for (const auto &[text, key] : index) keys.push_back(text);
        return keys;
    }

    // What the index's tables hold.
    void CompareKey(const TFontIndex &index, const void *key, const std::string &text,
                    const Model::Key &expected) {
        const FontReference direct = index.GetFontForKeyInternal(key);
        const ValSet *const set = index.GetFontsSetForKeyInternal(key);
        Same("has a set, key", text, set != nullptr, expected.has_set);
        if (set)
            Same("set of key", text, References(Retain(static_cast<const ValSet *>(set))),
                 ReferencesOf(expected.faces));
        Same("face of key", text, direct, expected.has_set ? 0 : model_.ReferenceOf(expected.faces[0]));
    }

    // What the index answers. It is asked for a quarter of its keys after a step: paths take long to read.
    void CompareLookup(const TFontIndex &index, const void *key, const std::string &text,
                       const Model::Key &expected) {
        Same("fonts for key", text, References(index.CopyFontsForKey(key)), ReferencesOf(expected.faces));
    }

    void CompareBuffers() {
        for (size_t buffer = 0; buffer < world_.buffers.size(); ++buffer) {
            const ModelFace *face = model_.FaceOfBuffer(buffer);
            const ValData *data = world_.data[buffer].Get();
            uint32_t container = 0;
            const bool registered = registry_.GetDataFont(data, &container) != nullptr;
            const std::string of = "of buffer " + std::to_string(buffer);
            Same("font", of, registered, face != nullptr);
            // While a font is disabled, the model does not say.
            const bool enabled = face && model_.IsEnabled(model_.NumberOfBuffer(buffer));
            if (enabled) Same("container", of, container, model_.ContainerOfBuffer(buffer));
            const auto url = registry_.CopyURLForDataFont(data, 0);
            Same("URL", of, TextOf(ValURLGetString(url.Get())), face ? face->url : "(null)");
        }
    }

    // By the indexes that there are already; a font is called by the first of its names that any font has.
    void CompareNames() {
        for (const char *name :
             {"f1-BOLD", "F3", "v-regular", "D2-Regular", "GAMMA Bold", "\u00C4RGER", "W700"}) {
            const auto text = String(name);
            Model::Faces called;
            for (uint16_t slot = Model::kPostScriptName; slot <= Model::kSubfamilyName; ++slot) {
                if (!model_.IsMade(slot)) return;
                const Model::Faces faces = model_.Find(slot, name);
                Same("fonts named", name, References(registry_.GetIndex(slot)->CopyFontsForKey(text.Get())),
                     ReferencesOf(faces));
                if (called.empty() && slot != Model::kSubfamilyName) called = faces;
            }
            Model::Texts urls = {called.empty() ? "(null)" : ""};
            for (const size_t face : called) urls.push_back(model_.FaceAt(face)->url);
            const auto url = registry_.CopyFontForName(text.Get(), kVLScopeProcess);
            const std::string found = TextOf(ValURLGetString(url.Get()));
            Same("is one of those named", name, std::count(urls.begin(), urls.end(), found) > 0, true);
        }
    }

    // Those that the step was about, and two more.
    void CompareURLs(std::vector<ModelURL> urls) {
        for (const auto &path : {world_.folder.File("a/b"), world_.folder.File("d/v3.ttf")})
            urls.push_back({"file://" + path + "#postscript-name=Nobody", path, {}, {}});
        for (const ModelURL &url : urls) {
            const ValURL *value = ValueOf(url.text);
            const Model::Faces faces = model_.Find(Model::kPath, url.path);
            const bool any = !faces.empty();
            Same("scope", url.text, registry_.GetFontScope(value), any ? 1U : 0U);
            Same("priority", url.text, registry_.GetFontPriority(value), any ? 60000U : 0U);
            Same("reference", url.text, registry_.GetFontReference(value),
                 any ? model_.ReferenceOf(faces[0]) : 0U);
            Same("registered", url.text, registry_.IsFontRegistered(value), any);
            Same("enabled", url.text, registry_.IsFontEnabled(value), any && model_.IsEnabled(faces[0]));
        }
    }

    const World &world_;
    TLocalGlypharyImp registry_;
    ModelOfChanges model_;
    const size_t patience_;
    size_t steps_ = 0;
    std::array<size_t, Model::kSlotCount> ages_ = {}; // in steps since the model made the index
    std::vector<const GxFont *> fonts_;               // of every reference that was given; not followed
    std::vector<std::string> hosts_;                  // of buffers, as they were last registered
    std::map<std::string, Ref<const ValURL>> values_;
    std::string difference_;
};

// ---- what is reported ----

struct Course {
    std::vector<Step> steps; // up to the one after which they differ
    std::string difference;
};

Course Repeat(const World &world, size_t patience, const std::vector<Step> &steps) {
    Comparison comparison(world, patience);
    Course course;
    for (const Step &step : steps) {
        course.steps.push_back(step);
        course.difference = comparison.Take(step);
        if (!course.difference.empty()) break;
    }
    return course;
}

// Leaves out what the difference does without, in ever smaller pieces, until no single step can go or the
// time is up.
Course Shrunk(const World &world, size_t patience, Course course) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    for (size_t piece = std::max<size_t>(course.steps.size() / 2, 1); piece > 0;) {
        const size_t before = course.steps.size();
        for (size_t at = 0; at < course.steps.size() && std::chrono::steady_clock::now() < end;) {
            std::vector<Step> fewer = course.steps;
            const auto first = fewer.begin() + static_cast<std::ptrdiff_t>(at);
            fewer.erase(first, first + static_cast<std::ptrdiff_t>(std::min(piece, fewer.size() - at)));
            Course shorter = Repeat(world, patience, fewer);
            if (shorter.difference.empty())
                at += piece;
            else
                course = std::move(shorter);
        }
        if (course.steps.size() == before) piece /= 2;
    }
    return course;
}

// The last steps, and what came of them.
std::string Report(const char *title, const Course &course) {
    constexpr size_t kMost = 20;
    std::string text = std::string("\n") + title + " " + std::to_string(course.steps.size()) + " steps:\n";
    for (size_t i = course.steps.size() - std::min(kMost, course.steps.size()); i < course.steps.size();
         ++i)
        text += "  " + std::to_string(i + 1) + ": " + Described(course.steps[i]) + "\n";
    return text + course.difference + "\n";
}

// ---- the test ----

// Short lives, in which indexes are made early or late, and long ones, in which much has happened. None
// comes near to where the numbers of faces begin anew.
struct Life {
    size_t steps;
    size_t patience;
};
constexpr Life kLives[] = {{20, 0},  {40, 6},  {60, 20}, {80, 0},  {100, 6}, {150, 0},
                           {200, 2}, {250, 0}, {400, 1}, {500, 0}, {700, 0}};

class RegisterAndModel : public ::testing::TestWithParam<uint32_t> {
protected:
    void Live(const Life &life) {
        Comparison comparison(world, life.patience);
        Course course;
        while (course.steps.size() < life.steps && course.difference.empty()) {
            course.steps.push_back(world.Draw(random));
            course.difference = comparison.Take(course.steps.back());
        }
        for (size_t change = 0; change < outcomes.size(); ++change) {
            for (const size_t answer : {0U, 1U})
                outcomes[change][answer] += comparison.outcomes[change][answer];
        }
        if (course.difference.empty()) return;
        FAIL() << "seed " << GetParam() << Report("They differ after", course)
               << Report("They also differ after", Shrunk(world, life.patience, course));
    }

    const World world;
    Random random{GetParam()};
    Outcomes outcomes = {};
};

TEST_P(RegisterAndModel, AgreeAfterEachOfManyChanges) {
    for (const Life &life : kLives) {
        Live(life);
        if (HasFatalFailure()) return;
    }
    // Nothing was shown of what never happened. Unregistering always succeeds, but for fonts in memory.
    for (size_t change = 0; change < outcomes.size(); ++change) {
        EXPECT_GT(outcomes[change][true], 4U) << kChangeNames[change];
        if (std::string_view(kChangeNames[change]).starts_with("UnregisterFont")) continue;
        EXPECT_GT(outcomes[change][false], 4U) << kChangeNames[change];
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RegisterAndModel, ::testing::Range(1U, 9U));

} // namespace
} // namespace vellum::test
