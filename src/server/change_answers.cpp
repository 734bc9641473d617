// SPDX-License-Identifier: MIT
// The answers to messages that change something. Changes are made one after the other, each font in a slice
// of its own, and saved together before they are acknowledged.
#include "ipc/encoding/travelling_values.hpp"
#include "server/answers.hpp"
#include "server/font_folders.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_url.hpp"

#include <functional>
#include <utility>

namespace vellum {

namespace {

// What the server reads of a scope in a change.
Lasting LastingOf(uint32_t scope) noexcept {
    return scope & kVLScopeUser ? Lasting::kForUser : Lasting::kForSession;
}
bool IsForDisk(uint32_t scope) noexcept {
    return (scope & kVLScopeDurable) != 0;
}

// A change of many fonts. `change` is made of each; the reply brings those for which it failed, or those
// for which it did not.
struct Batch {
    enum class Brings { kFailed, kChanged };

    FontServer &server;
    Errand errand;
    bool on_disk;
    Brings brings;
    std::function<bool(const ValURL *)> change;
    Ref<const ValArray> fonts;
    size_t next = 0;
    TValMutableArray changed = TValMutableArray();
    TValMutableArray failed = TValMutableArray();

    // One font; false once the reply has been sent. A change whose author has left is made wholly or not at
    // all, and nobody has been told that it was: it is not made.
    bool Slice() {
        if (errand.peer->IsClosed()) {
            server.Register().TakeBack();
            return false;
        }
        if (next < ValArrayGetCount(fonts.Get())) {
            const void *item = ValArrayGetValue(fonts.Get(), next++);
            const auto *url = Cast<ValURL>(item);
            (url && change(url) ? changed : failed).Append(item);
            return true;
        }
        Finish();
        return false;
    }

    void Finish() {
        const bool is_saved = server.Register().Save(on_disk);
        if (!is_saved) {
            failed = TValMutableArray();
            failed.AppendArray(fonts.Get());
            changed = TValMutableArray();
        }
        const bool is_done = failed.IsEmpty();
        const TValMutableArray &brought = brings == Brings::kFailed ? failed : changed;
        OutgoingReply reply;
        reply.word = brings == Brings::kFailed ? is_done : !changed.IsEmpty();
        if (!brought.IsEmpty()) reply.memory = Flattened(brought.Get()).value_or(OutgoingMemory());
        errand.Reply(reply);
    }
};

// As many fonts as a register may hold.
constexpr size_t kMostFonts = 65'536;

// Has a batch done when its turn has come. A change that memory runs out for fails as a whole.
void Enqueue(std::unique_ptr<Batch> batch) {
    if (!batch->fonts || ValArrayGetCount(batch->fonts.Get()) > kMostFonts) {
        OutgoingReply reply;
        reply.code = batch->fonts ? kMachNoMemory : kMachBadArguments;
        return batch->errand.Reply(reply);
    }
    batch->server.Loop().AddWork([batch = std::shared_ptr<Batch>(std::move(batch))] {
        try {
            return batch->Slice();
        } catch (const std::bad_alloc &) {
            batch->server.Register().TakeBack();
            OutgoingReply reply;
            reply.code = kMachNoMemory;
            batch->errand.Reply(reply);
            return false;
        }
    });
}

// A change of one font, or of one folder, with its result as the reply. What the change has added to the
// work is done before the reply: who has registered a folder finds its fonts.
void EnqueueOne(FontServer &server, Errand errand, bool on_disk, std::function<bool()> change) {
    server.Loop().AddWork([&server, errand = std::move(errand), on_disk, change = std::move(change)] {
        OutgoingReply reply;
        try {
            const bool is_done = change();
            reply.word = server.Register().Save(on_disk) && is_done;
        } catch (const std::bad_alloc &) {
            server.Register().TakeBack();
            reply.code = kMachNoMemory;
        }
        server.Loop().AddWork([errand, reply] {
            errand.Reply(reply);
            return false;
        });
        return false;
    });
}

void ChangeMany(FontServer &server, Errand errand, const ReceivedArguments &arguments, Batch::Brings brings,
                bool (SharedRegister::*change)(const ValURL *, Lasting)) {
    const uint32_t scope = arguments[1].word;
    const auto make = [&server, change, lasting = LastingOf(scope)](const ValURL *url) {
        return (server.Register().*change)(url, lasting);
    };
    Enqueue(std::unique_ptr<Batch>(new Batch{server, std::move(errand), IsForDisk(scope), brings, make,
                                             Resurrected<ValArray>(arguments[0].memory)}));
}

void ChangeOne(FontServer &server, Errand errand, const ReceivedArguments &arguments,
               bool (SharedRegister::*change)(const ValURL *, Lasting)) {
    EnqueueOne(server, std::move(errand), false, [&server, change, text = std::string(arguments[0].text)] {
        const TValURL url = TValURL::FromText(text);
        return url && (server.Register().*change)(url.Get(), Lasting::kForUser);
    });
}

std::string PathOfText(std::string_view text) {
    return std::string(TValURL::FromText(text).Path().View());
}

OutgoingReply CodeFor(bool is_done) {
    OutgoingReply reply;
    reply.code = is_done ? kMachSuccess : kMachInvalidArgument;
    return reply;
}

} // namespace

void AddFontProvider(FontServer &server, Errand errand, const ReceivedArguments &arguments) {
    errand.Reply(CodeFor(server.Providers().Add(arguments[0].text, errand.peer->Process())));
}

void RemoveFontProvider(FontServer &server, Errand errand, const ReceivedArguments &arguments) {
    errand.Reply(CodeFor(server.Providers().Remove(arguments[0].text, errand.peer->Process())));
}

void RegisterFonts(FontServer &server, Errand errand, const ReceivedArguments &arguments) {
    const uint32_t scope = arguments[1].word;
    const VLFontFlags flags = arguments[2].word;
    const auto change = [&server, flags, lasting = LastingOf(scope)](const ValURL *url) {
        return server.Register().Register(url, flags, lasting);
    };
    // Their properties are not looked at: the files are read here.
    TValResurrectContext registration(arguments[0].memory.data(), arguments[0].memory.size());
    Enqueue(std::unique_ptr<Batch>(new Batch{server, std::move(errand), IsForDisk(scope),
                                             Batch::Brings::kFailed, change,
                                             registration.ResurrectKeys(kMostFonts)}));
}

void UnregisterFonts(FontServer &server, Errand errand, const ReceivedArguments &arguments) {
    ChangeMany(server, std::move(errand), arguments, Batch::Brings::kFailed, &SharedRegister::Unregister);
}

void EnableFonts(FontServer &server, Errand errand, const ReceivedArguments &arguments) {
    ChangeMany(server, std::move(errand), arguments, Batch::Brings::kChanged, &SharedRegister::Enable);
}

void DisableFonts(FontServer &server, Errand errand, const ReceivedArguments &arguments) {
    ChangeMany(server, std::move(errand), arguments, Batch::Brings::kChanged, &SharedRegister::Disable);
}

void EnableFont(FontServer &server, Errand errand, const ReceivedArguments &arguments) {
    ChangeOne(server, std::move(errand), arguments, &SharedRegister::Enable);
}

void DisableFont(FontServer &server, Errand errand, const ReceivedArguments &arguments) {
    ChangeOne(server, std::move(errand), arguments, &SharedRegister::Disable);
}

void RegisterFontDirectory(FontServer &server, Errand errand, const ReceivedArguments &arguments) {
    const SavedDirectory directory = {PathOfText(arguments[0].text), arguments[2].word, arguments[3].word};
    const bool on_disk = IsForDisk(arguments[4].word);
    EnqueueOne(server, std::move(errand), on_disk,
               [&server, directory, on_disk] { return server.Folders().Register(directory, on_disk); });
}

void UnregisterFontDirectory(FontServer &server, Errand errand, const ReceivedArguments &arguments) {
    const bool on_disk = IsForDisk(arguments[1].word);
    EnqueueOne(server, std::move(errand), on_disk,
               [&server, on_disk, path = PathOfText(arguments[0].text)] {
                   return server.Folders().Unregister(path, on_disk);
               });
}

} // namespace vellum
