// Keeps Orvane to one instance per user and display. The first start takes an exclusive lock on a
// file in the user's runtime folder, then listens on a socket beside it; a later start, finding
// the lock held, hands its start over through that socket (the running program reopens, which
// shows Settings) and exits. Two starts at once can't both win: the lock decides, not the socket.
// Without `$XDG_RUNTIME_DIR` the folder is one of the user's own in the temporary folder, checked
// to be theirs alone before anything in it is trusted.
#pragma once

#include <QLocalServer>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace orvane {

class QtSingleInstance {
  public:
    // The folder of this user's instances: the runtime folder, or a private one in the temporary
    // folder. Nothing, after an error line, when that folder is not the user's alone.
    static std::optional<QString> standardFolder();
    // `path` as a folder only this user can enter: made with mode 0700 when missing; nothing,
    // after an error line, when it is not a real folder, another user owns it, or others may
    // read or write it.
    static std::optional<QString> privateFolder(const QString& path);

    // Files named after the display in `folder`; without a folder nothing is checked and every
    // start runs.
    explicit QtSingleInstance(std::optional<QString> folder = standardFolder(),
                              const QString& display = qEnvironmentVariable("DISPLAY"));
    ~QtSingleInstance();
    QtSingleInstance(const QtSingleInstance&) = delete;
    QtSingleInstance& operator=(const QtSingleInstance&) = delete;

    // False when this start is the first (it holds the lock from now on); true when another
    // instance holds it, after that one has taken the reopen or failed to answer for
    // `patienceMilliseconds`: this start should then exit.
    bool handOverToRunningInstance(int patienceMilliseconds = 5000);
    // Listens from now on, replacing a socket left by an instance that ended. `onRequest` gets
    // each line a later start sends ("reopen", or a command of its own) and answers whether it
    // took it. False, after a log line, when the socket cannot be made.
    bool listen(std::function<bool(const std::string& request)> onRequest);
    // Sends one line to the running instance, without taking the lock: whether it took it.
    bool tell(const std::string& request);

  private:
    std::function<bool(const std::string&)> onRequest_;

    std::optional<QString> socketPath_;
    std::optional<QString> lockPath_;
    int lockDescriptor_ = -1;
    std::unique_ptr<QLocalServer> server_;
};

}  // namespace orvane
