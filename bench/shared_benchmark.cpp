// SPDX-License-Identifier: MIT
// What it costs to ask the font server, beside what the system asks for a question and an answer of the
// same sizes between two processes.
//
//     shared_benchmark [FONTSERVER]
//
// The server is a real one with folders of its own and about 4,000 faces. Without an argument it is the one
// that was built with this program.
#include "frame/registry/generation_seed.hpp"
#include "ipc/client/global_glyphary_imp.hpp"
#include "ipc/encoding/travelling_values.hpp"
#include "machine.hpp"
#include "many_faces.hpp"
#include "rotation.hpp"
#include "values/val_set.hpp"
#include "values/val_str.hpp"

#include <vellum/vellum.hpp>

#include <sched.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

using namespace vellum;
using namespace vellum::bench;

namespace {

constexpr size_t kFaces = 4000;
constexpr int kRounds = 15;

// Four faces a family; the names by which they are asked for.
std::vector<std::string> AddFaces(const std::string &folder) {
    std::vector<TFont> originals;
    for (const std::string &file : FindFontFiles({}))
        if (auto font = TakeApart(file)) originals.push_back(std::move(*font));
    std::vector<std::string> names;
    for (size_t i = 0; i < kFaces; ++i) {
        const std::string number = std::to_string(i), family = "Bench " + std::to_string(i / 4);
        const TNames face{family, "Style " + std::to_string(i % 4), family + " " + number,
                          "Bench-" + number};
        std::ofstream(folder + "/" + number + ".ttf", std::ios::binary)
            << PutTogether(originals[i % originals.size()], face);
        names.push_back(face.postscript);
    }
    return names;
}

// A process that answers each packet with one of the size that the packet's first bytes say.
class Echo {
public:
    Echo() {
        int ends[2];
        if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) std::abort();
        socket_ = ends[0];
        process_ = ::fork();
        if (process_ == 0) {
            ::close(ends[0]);
            std::vector<char> buffer(kLongest);
            uint32_t size;
            while (::recv(ends[1], buffer.data(), buffer.size(), 0) > 0) {
                std::memcpy(&size, buffer.data(), sizeof size);
                if (::send(ends[1], buffer.data(), size, MSG_NOSIGNAL) < 0) break;
            }
            ::_exit(0);
        }
        ::close(ends[1]);
    }
    Echo(const Echo &) = delete;
    Echo &operator=(const Echo &) = delete;
    ~Echo() {
        ::close(socket_);
        ::waitpid(process_, nullptr, 0);
    }

    size_t Ask(size_t request, size_t reply) {
        const auto size = static_cast<uint32_t>(reply);
        std::memcpy(buffer_.data(), &size, sizeof size);
        ::send(socket_, buffer_.data(), request, MSG_NOSIGNAL);
        return static_cast<size_t>(::recv(socket_, buffer_.data(), buffer_.size(), 0));
    }

    pid_t Process() const { return process_; }

    static constexpr size_t kLongest = size_t{128} << 10;

private:
    int socket_;
    pid_t process_;
    std::vector<char> buffer_ = std::vector<char>(kLongest);
};

// Keeps a process on one processor. Where two that talk are on different ones, most of the time goes into
// waking the other's processor; where the system puts them is chance, and not the same for both sides.
void Place(pid_t process, int processor) {
    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(processor, &set);
    if (::sched_setaffinity(process, sizeof set, &set) != 0)
        std::fprintf(stderr, "a process can't be kept on processor %d\n", processor);
}

template <class Work>
size_t Repeat(size_t times, Work work) {
    size_t done = 0;
    for (size_t i = 0; i < times; ++i) done += work(i) ? size_t{1} : size_t{0};
    return done;
}

void Compare(const char *what, std::vector<TSide> sides) {
    Rotate(sides, kRounds);
    std::printf("%s\n", what);
    Print(sides);
}

size_t FlattenedSize(const void *value) {
    const auto memory = Flattened(value);
    return memory ? memory->length : 0;
}

} // namespace

int main(int count, char **arguments) {
    Machine machine(count > 1 ? arguments[1] : BuiltBeside("server/vellum-fontserver"));
    const auto names = AddFaces(machine.SystemFonts());
    Echo echo;
    if (!machine.Start()) return 1;
    const TGlobalGlypharyImp server;
    std::vector<Ref<const ValString>> asked;
    for (const std::string &name : names) asked.push_back(TValStr(name).Ref());
    const auto first = server.CopyFontForName(asked[0].Get(), kVLScopeUser);
    if (!first) return 1;
    const size_t url = TValStr(Retain(ValURLGetString(first.Get()))).View().size();

    constexpr size_t kTimes = 500;
    Place(0, 0);
    for (const int other : {1, 0}) { // and there they stay
        Place(echo.Process(), other);
        Place(machine.Server(), other);
        Compare(other ? "500 names, on two processors" : "500 names, on one processor",
                {{"ping-pong of the same sizes",
                  [&] { return Repeat(kTimes, [&](size_t) { return echo.Ask(24 + 56, 24 + 48 + url); }); }},
                 {"through the server", [&] {
                      return Repeat(kTimes, [&](size_t i) {
                          return bool(server.CopyFontForName(asked[i].Get(), kVLScopeUser));
                      });
                  }}});
    }

    constexpr size_t kMany = 1'000'000;
    Compare("a name that the thread's cache has, a million times",
            {{"cached", [&] {
                  return Repeat(kMany, [&](size_t) {
                      return bool(Adopt(
                          VLCopyFontWithName(asked[0].Get(), kVLScopeUser,
                                             kVLActivationNotFromProviders | kVLActivationNotFromSearch)));
                  });
              }}});

    const size_t families = FlattenedSize(server.CopyAvailableFontFamilyNames(kVLScopeUser).Get());
    std::printf("all families: %zu bytes\n", families);
    const auto ask_families = [&] {
        return Repeat(20, [&](size_t) { return bool(server.CopyAvailableFontFamilyNames(kVLScopeUser)); });
    };
    Compare("all families, 20 times",
            {{"ping-pong of as many bytes",
              [&] { return Repeat(20, [&](size_t) { return echo.Ask(60, families); }); }},
             {"through the server", ask_families},
             {"the same, all read anew", [&] {
                  return Repeat(20, [&](size_t) {
                      TGenerationSeed::UpdateGeneration();
                      return bool(server.CopyAvailableFontFamilyNames(kVLScopeUser));
                  });
              }}});

    TValMutableSet keys;
    for (const ValString *key : {kVLFontPropertyURL, kVLFontPropertyName, kVLFontPropertyFamilyName,
                                 kVLFontPropertySubfamilyName, kVLFontPropertyTraits})
        keys.Add(key);
    const auto all = server.CopyPropertiesForAllFonts(keys.Get(), kVLScopeUser);
    const auto memory = Flattened(all.Get());
    if (!memory) return 1;
    std::vector<uint8_t> copy(memory->length);
    std::printf("all properties: %zu bytes\n", memory->length);
    Compare("all properties",
            {{"copying the bytes",
              [&] {
                  std::memcpy(copy.data(), memory->Bytes().data(), copy.size());
                  Keep(copy.data());
                  return copy.size();
              }},
             {"through the server",
              [&] {
                  return ValArrayGetCount(server.CopyPropertiesForAllFonts(keys.Get(), kVLScopeUser).Get());
              }},
             {"the same, all read anew", [&] {
                  TGenerationSeed::UpdateGeneration();
                  return ValArrayGetCount(server.CopyPropertiesForAllFonts(keys.Get(), kVLScopeUser).Get());
              }}});
}
