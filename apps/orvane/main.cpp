// orvane: the window switcher on the user's desktop (a Wayland compositor with the wlroots
// protocols, or X11), in the foreground until it is quit (Ctrl-C or SIGTERM).

#include <sys/socket.h>
#include <unistd.h>

#include <QApplication>
#include <QSocketNotifier>
#include <QTimer>
#include <csignal>
#include <cstring>
#include <iostream>
#include <optional>
#include <string>

#include "DesktopProgram.h"
#include "WaylandProgram.h"
#include "core/Log.h"
#include "core/StandardErrorLogSink.h"
#include "core/WordedLogSink.h"
#include "core/Wording.h"
#include "platform/ExternalGesture.h"
#include "ui/qt/QtSingleInstance.h"

namespace {

int signalPipe[2] = {-1, -1};

void onSignal(int) {
    const char byte = 1;
    [[maybe_unused]] auto written = ::write(signalPipe[1], &byte, 1);
}

}  // namespace

// `orvane --gesture NAME`: hands the gesture to the running Orvane, as a binding of the window
// manager or compositor would.
int sendGesture(int argc, char** argv, const std::string& name) {
    if (!orvane::externalGestureNamed(name)) {
        std::cerr
            << "orvane: unknown gesture \"" << name
            << "\"; use next, previous, same-application, same-application-previous or launcher\n";
        return 2;
    }
    QCoreApplication application(argc, argv);
    orvane::QtSingleInstance instance;
    if (!instance.tell("gesture " + name)) {
        std::cerr << "orvane: Orvane is not running, so the gesture went nowhere; start it first\n";
        return 1;
    }
    return 0;
}

// Which backend to run: the one asked for, else Wayland in a Wayland session, else X11.
enum class Backend { x11, wayland };

// Runs the program over a backend until it is quit.
template <typename Program>
int run(std::unique_ptr<Program> program, orvane::QtSingleInstance& instance) {
    // Carried out after the answer: the sender waits for nothing more.
    instance.listen([&program](const std::string& request) {
        if (request == "reopen") {
            QTimer::singleShot(0, [&program] { program->reopen(); });
            return true;
        }
        const auto gesture = request.rfind("gesture ", 0) == 0
                                 ? orvane::externalGestureNamed(request.substr(8))
                                 : std::nullopt;
        if (gesture) {
            QTimer::singleShot(0, [&program, gesture] { program->perform(*gesture); });
        }
        return gesture.has_value();
    });

    ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, signalPipe);
    QSocketNotifier signals(signalPipe[0], QSocketNotifier::Read);
    QObject::connect(&signals, &QSocketNotifier::activated, [] { QApplication::exit(0); });
    std::signal(SIGINT, onSignal);
    std::signal(SIGTERM, onSignal);

    const int status = QApplication::exec();
    program->terminate();
    return status;
}

int main(int argc, char** argv) {
    orvane::LogLevel level = orvane::LogLevel::info;
    std::optional<Backend> forced;
    for (int index = 1; index < argc; ++index) {
        const std::string argument = argv[index];
        if (argument == "--gesture") {
            return sendGesture(argc, argv, index + 1 < argc ? argv[index + 1] : "");
        }
        if (argument == "--log-level" && index + 1 < argc) {
            const std::string value = argv[++index];
            level = value == "debug"   ? orvane::LogLevel::debug
                    : value == "error" ? orvane::LogLevel::error
                                       : orvane::LogLevel::info;
        } else if (argument == "--backend" && index + 1 < argc) {
            const std::string value = argv[++index];
            if (value != "x11" && value != "wayland") {
                std::cerr << "orvane: unknown backend \"" << value << "\"; use x11 or wayland\n";
                return 2;
            }
            forced = value == "x11" ? Backend::x11 : Backend::wayland;
        } else if (argument == "--help") {
            std::cout << "usage: orvane [--log-level debug|info|error] [--backend x11|wayland]\n"
                         "       orvane --gesture "
                         "next|previous|same-application|same-application-previous|launcher\n"
                         "Hold Alt and tap Tab to switch windows; Alt-Space searches them.\n"
                         "--gesture hands a gesture to the running Orvane, for a shortcut of\n"
                         "your window manager's own; a held Alt then keeps the switcher open.\n";
            return 0;
        }
    }
    // The log speaks the desktop's words, as the windows do.
    orvane::Log::shared().replaceSinks({std::make_shared<orvane::WordedLogSink>(
        std::make_shared<orvane::StandardErrorLogSink>(level), orvane::Wording::linuxDesktop())});

    // Before Qt, which would abort with a message of its own.
    const bool inWayland = qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
    const auto backend = forced.value_or(inWayland ? Backend::wayland : Backend::x11);
    std::unique_ptr<orvane::WaylandConnection> wayland;
    std::unique_ptr<orvane::X11Connection> x11;
    if (backend == Backend::wayland) {
        wayland = orvane::WaylandConnection::connect();
        if (!wayland) {
            std::cerr << "orvane: no Wayland compositor answers (is WAYLAND_DISPLAY set?)\n";
            return 1;
        }
        if (const auto missing = wayland->missingProtocols(); !missing.empty()) {
            std::string names;
            for (const auto& name : missing) {
                names += (names.empty() ? "" : ", ") + name;
            }
            std::cerr << "orvane: this Wayland compositor does not offer what Orvane needs to see "
                         "and switch its windows ("
                      << names
                      << "); Orvane runs on sway and other wlroots compositors, or on X11\n";
            return 1;
        }
    } else {
        x11 = orvane::X11Connection::open();
        if (!x11) {
            std::cerr << "orvane: no X11 display to run on (is DISPLAY set?)\n";
            return 1;
        }
    }
    // Qt draws through the display the program switches windows on, whatever the environment
    // prefers; the programs Orvane starts get the environment it was given.
    const bool platformWasSet = qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
    const auto givenPlatform = qgetenv("QT_QPA_PLATFORM");
    qputenv("QT_QPA_PLATFORM", backend == Backend::wayland ? "wayland" : "xcb");
    QApplication application(argc, argv);
    if (platformWasSet) {
        qputenv("QT_QPA_PLATFORM", givenPlatform);
    } else {
        qunsetenv("QT_QPA_PLATFORM");
    }
    QApplication::setApplicationName(QStringLiteral("Orvane"));
    QApplication::setDesktopFileName(QStringLiteral("orvane"));
    QApplication::setQuitOnLastWindowClosed(false);

    // One Orvane per user: a second start asks the first to show its Settings, then leaves.
    orvane::QtSingleInstance instance;
    if (instance.handOverToRunningInstance()) {
        std::cerr << "orvane: already running; it shows its Settings\n";
        return 0;
    }
    if (wayland) {
        return run(orvane::WaylandProgram::start(std::move(wayland),
                                                 qEnvironmentVariable("SWAYSOCK").toStdString()),
                   instance);
    }
    return run(orvane::DesktopProgram::start(std::move(x11)), instance);
}
