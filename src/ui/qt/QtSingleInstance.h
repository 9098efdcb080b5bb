// Keeps Orvane to one instance per user: the first one listens on a socket under
// `$XDG_RUNTIME_DIR`; a later one hands its start over to it (the running program reopens, which
// shows Settings) and exits.
#pragma once

#include <QLocalServer>
#include <QString>
#include <functional>
#include <memory>

namespace orvane {

class QtSingleInstance {
  public:
    // The socket of this user's instance.
    static QString standardSocketPath();

    explicit QtSingleInstance(QString socketPath = standardSocketPath());
    ~QtSingleInstance();

    // True when another instance answered and took the reopen; this one should then exit.
    bool handOverToRunningInstance();
    // Listens from now on, replacing a socket that no instance answers any more; `onReopen` runs
    // for each later start. False, after a log line, when the socket cannot be made.
    bool listen(std::function<void()> onReopen);

  private:
    QString socketPath_;
    std::unique_ptr<QLocalServer> server_;
    std::function<void()> onReopen_;
};

}  // namespace orvane
