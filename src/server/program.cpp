// SPDX-License-Identifier: MIT
#include "server/program.hpp"

#include "ipc/encoding/travelling_values.hpp"
#include "ipc/messages/notification_rows.hpp"
#include "platform/port/doorbell.hpp"
#include "server/background.hpp"
#include "server/desktop_signals.hpp"
#include "server/font_folders.hpp"
#include "server/font_server.hpp"
#include "server/notification_hub.hpp"
#include "server/saved_register.hpp"
#include "server/service_names.hpp"
#include "service/message_service.hpp"
#include "service/readiness.hpp"
#include "service/service_lock.hpp"
#include "service/service_options.hpp"
#include "service/service_process.hpp"
#include "values/val_array.hpp"
#include "values/val_dictionary.hpp"
#include "values/val_str.hpp"

#include <sys/epoll.h>

#include <cstdlib>
#include <exception>
#include <optional>
#include <string>

namespace vellum {

namespace {

constexpr char kUsage[] =
    "Usage: vellum-fontserver [--foreground] [--help] [--version]\n"
    "\n"
    "Holds the fonts that the programs of one user share: the system's, the user's own, and those that\n"
    "were registered for the user or for the session. Programs start to talk to it by themselves; it ends\n"
    "by SIGTERM.\n"
    "\n"
    "It goes to the background, and this command ends once it answers. It stays with --foreground, and\n"
    "under a service manager. What goes wrong later is told to the system's log, and to standard error\n"
    "with --foreground.\n"
    "\n"
    "Exit codes: 0 it answers, or one did already; 1 it could not start; 2 wrong usage.\n"
    "\n"
    "Example: vellum-fontserver\n";

constexpr ServiceProgram kProgram = {"vellum-fontserver", kUsage};

std::string Line(const std::exception &problem) {
    return std::string(kProgram.name) + ": " + problem.what();
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

// From the beginning on whoever comes is heard; the fonts are taken in meanwhile.
void Serve(const StartReport &report) {
    const ServerName name, hub_name(kNotificationHubName);
    const std::string folder = FolderForService(name);
    // Somebody else, a service manager, may listen under the first name; under the second nobody else does.
    const TDescriptor lock = TakeServiceLock(folder, name.Get(), hub_name.Get(), "a font server");
    const TDescriptor signals = EndingSignals();
    RaiseDescriptorLimit();

    SavedRegister saved(name.Get(), folder);
    EventLoop loop;
    loop.Watch(signals.Get(), EPOLLIN, [&loop](uint32_t) { loop.Stop(); });
    DesktopSignals desktop;
    TakenName hub_taken(hub_name);
    NotificationHub hub(loop, hub_taken.Listener(), MakeServiceInstance(),
                        [&desktop](const ValDictionary *notification) { Repeat(desktop, notification); });
    SharedRegister fonts(saved);
    FontFolders folders(loop, fonts, [&hub](const FolderNews &news) { TellOfNews(hub, news); });
    FontServer server(loop, fonts, folders);

    std::optional<TakenName> taken;
    TDescriptor listener = InheritedListener();
    if (!listener.IsOpen()) listener = taken.emplace(name).Listener();
    const MessageService service(loop, std::move(listener), MakeServiceInstance(), FontServer::kMostMemory,
                                 {[&](const std::shared_ptr<Peer> &peer, const IncomingMessage &message) {
                                     server.Answer(peer, message);
                                 }});
    saved.SayWhatIsFoundLate([&](SavedState late) {
        loop.AddWork(fonts.LoadLate(late));
        loop.AddWork([&, directories = std::move(late.directories)] {
            for (const SavedDirectory &directory : directories) folders.Register(directory, false);
            hub.Tell(TValMutableDict().Publish().Get()); // anything may have changed
            return false;
        });
    });
    RingDoorbell(hub_name.Get());
    loop.AddWork(fonts.Load());
    loop.AddWork(folders.Load(saved.LoadForUser().directories));
    loop.AddWork([&] {
        server.BeginToAnswer();
        SayThatItIsReady();
        report(EXIT_SUCCESS, "");
        return false;
    });
    loop.Run();
}

int Run(const StartReport &report) {
    try {
        Serve(report);
        return EXIT_SUCCESS;
    } catch (const ServiceRunsAlready &already) {
        report(EXIT_SUCCESS, Line(already));
        return EXIT_SUCCESS;
    } catch (const std::exception &problem) {
        report(EXIT_FAILURE, Line(problem));
        return EXIT_FAILURE;
    }
}

} // namespace

int RunFontServer(int count, char **arguments) {
    int exit_code = EXIT_SUCCESS;
    const auto options = ReadServiceOptions(kProgram, count, arguments, &exit_code);
    if (!options) return exit_code;
    if (options->is_in_foreground || IsUnderServiceManager()) return Run(ReportHere);
    try {
        return WorkInBackground(Run);
    } catch (const std::exception &problem) {
        ReportHere(EXIT_FAILURE, Line(problem));
        return EXIT_FAILURE;
    }
}

} // namespace vellum
