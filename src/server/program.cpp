// SPDX-License-Identifier: MIT
#include "server/program.hpp"

#include "ipc/client/server_name.hpp"
#include "ipc/encoding/travelling_values.hpp"
#include "ipc/messages/notification_rows.hpp"
#include "platform/fs/private_folder.hpp"
#include "platform/log/log.hpp"
#include "platform/port/service_address.hpp"
#include "platform/process/process.hpp"
#include "platform/process/random.hpp"
#include "server/desktop_signals.hpp"
#include "server/font_folders.hpp"
#include "server/font_server.hpp"
#include "server/message_service.hpp"
#include "server/notification_hub.hpp"
#include "server/readiness.hpp"
#include "server/state_folders.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_str.hpp"

#include <fcntl.h>
#include <signal.h>
#include <sys/epoll.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/signalfd.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <exception>
#include <stdexcept>
#include <string>

namespace vellum {

namespace {

constexpr char kUsage[] =
    "Usage: vellum-fontserver [--foreground] [--help] [--version]\n"
    "\n"
    "Holds the fonts that the programs of one user share: the system's, the user's own, and those that "
    "were\n"
    "registered for the user or for the session. Programs start to talk to it by themselves; it ends by\n"
    "SIGTERM. What goes wrong is told to the system's log, and to standard error with --foreground.\n"
    "\n"
    "Example: vellum-fontserver --foreground\n";

// The one server of this name holds this for as long as it lives.
TDescriptor TakeLock(const std::string &folder, const std::string &name) {
    const std::string path = folder + "/" + name + ".lock";
    TDescriptor lock(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!lock.IsOpen()) throw std::runtime_error("cannot open " + path + ": " + std::strerror(errno));
    if (::flock(lock.Get(), LOCK_EX | LOCK_NB) != 0)
        throw std::runtime_error("a font server of this name runs already");
    return lock;
}

// Each client thread has a descriptor here.
void RaiseDescriptorLimit() noexcept {
    rlimit limit;
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

uint64_t MakeInstance() {
    uint64_t instance = 0;
    while (instance == 0 && FillRandom(&instance, sizeof instance)) {
    }
    if (instance == 0) throw std::runtime_error("the system has no random bytes to give");
    return instance;
}

TDescriptor Listen(const std::string &name) {
    TDescriptor listener = ListenAsService(name.c_str());
    if (!listener.IsOpen())
        throw std::runtime_error("cannot listen as " + name + ": " + std::strerror(errno));
    return listener;
}

// Tells every process of what happened in folders; who is told asks again, and so do their caches.
void Tell(NotificationHub &hub, const ValString *key, const std::vector<std::string> &fonts) {
    if (fonts.empty()) return;
    TValMutableArray texts;
    for (const std::string &font : fonts) texts.Append(TValStr(font).Get());
    TValMutableDict user_info, notification;
    user_info.Set(key, texts.Get());
    notification.Set(kVLFontsChangedDistributedNotification, user_info.Get());
    hub.Tell(notification.Publish().Get());
}

std::vector<std::string> TextsIn(const ValDictionary *user_info, const ValString *key) {
    std::vector<std::string> texts;
    for (const void *item : Elements(Cast<ValArray>(ValDictionaryGetValue(user_info, key))))
        texts.emplace_back(TValStr(Retain(Cast<ValString>(item))).View());
    return texts;
}

// Says on the desktop's bus what was told to everybody else.
void Repeat(DesktopSignals &desktop, const ValDictionary *notification) {
    const TValDict entries(Retain(notification));
    const auto *user_info = entries.Get<ValDictionary>(kVLFontsChangedDistributedNotification);
    if (user_info)
        desktop.Say({TextsIn(user_info, kAvailableFontURLsAddedKey),
                     TextsIn(user_info, kAvailableFontURLsRemovedKey)});
}

void TellOfNews(NotificationHub &hub, const FolderNews &news) {
    Tell(hub, kAvailableFontURLsRemovedKey, news.went);
    Tell(hub, kAvailableFontURLsAddedKey, news.came);
}

// The signals that end the program, as a descriptor.
TDescriptor EndingSignals() {
    sigset_t signals;
    ::sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) ::sigaddset(&signals, signal);
    ::sigprocmask(SIG_BLOCK, &signals, nullptr);
    return TDescriptor(::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
}

void PrintLog(void *, LogLevel, std::string_view text, std::span<const LogField>) {
    std::fprintf(stderr, "vellum-fontserver: %.*s\n", static_cast<int>(text.size()), text.data());
}

void Serve() {
    const std::string folder = ServicesFolder(IfMissing::kMake), name = ServerName().Get();
    if (folder.empty())
        throw std::runtime_error("there is no folder for services that is this user's alone");
    if (name.empty()) throw std::runtime_error("VL_SERVICE_NAME_SUFFIX makes no name for a service");
    const TDescriptor lock = TakeLock(folder, name);
    const TDescriptor signals = EndingSignals();
    RaiseDescriptorLimit();

    StateDatabase user(UserStateFolder() + "/fonts.db"), session(folder + "/" + name + ".session.db");
    EventLoop loop;
    const uint64_t instance = MakeInstance();
    DesktopSignals desktop;
    NotificationHub hub(loop, Listen(ServerName(kNotificationHubName).Get()), instance,
                        [&desktop](const ValDictionary *notification) { Repeat(desktop, notification); });
    SharedRegister fonts(user, session);
    FontFolders folders(loop, fonts, [&hub](const FolderNews &news) { TellOfNews(hub, news); });
    fonts.Load();
    folders.Load(user.Load().directories);

    FontServer server(loop, fonts, folders);
    TDescriptor listener = InheritedListener();
    if (!listener.IsOpen()) listener = Listen(name);
    const MessageService service(loop, std::move(listener), MakeInstance(), FontServer::kMostMemory,
                                 {[&](const std::shared_ptr<Peer> &peer, const IncomingMessage &message) {
                                     server.Answer(peer, message);
                                 }});
    loop.Watch(signals.Get(), EPOLLIN, [&loop](uint32_t) { loop.Stop(); });
    SayThatItIsReady();
    loop.Run();
}

} // namespace

int RunFontServer(int count, char **arguments) {
    for (int i = 1; i < count; ++i) {
        const std::string_view argument = arguments[i];
        if (argument == "--help") return std::fputs(kUsage, stdout) < 0;
        if (argument == "--version") return std::printf("vellum-fontserver %s\n", VELLUM_VERSION) < 0;
        if (argument == "--foreground") {
            SetLogSink({PrintLog, nullptr});
            continue;
        }
        std::fprintf(stderr, "vellum-fontserver: unknown argument '%s'; try --help\n", arguments[i]);
        return 2;
    }
    try {
        Serve();
        return 0;
    } catch (const std::exception &problem) {
        std::fprintf(stderr, "vellum-fontserver: %s\n", problem.what());
        return 1;
    }
}

} // namespace vellum
