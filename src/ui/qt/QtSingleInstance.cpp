#include "ui/qt/QtSingleInstance.h"

#include <unistd.h>

#include <QDir>
#include <QLocalSocket>
#include <QStandardPaths>
#include <utility>

#include "core/Logger.h"

namespace orvane {

namespace {

constexpr char reopenRequest[] = "reopen\n";
constexpr int answerTimeoutMilliseconds = 1000;

}  // namespace

QString QtSingleInstance::standardSocketPath() {
    auto directory = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (directory.isEmpty()) {
        // No runtime directory (a bare X session): a per-user name in the temporary folder.
        directory = QDir::tempPath();
    }
    return QDir(directory).filePath(QStringLiteral("orvane-%1.socket").arg(::getuid()));
}

QtSingleInstance::QtSingleInstance(QString socketPath) : socketPath_(std::move(socketPath)) {}

QtSingleInstance::~QtSingleInstance() {
    if (server_) {
        server_->close();
    }
}

bool QtSingleInstance::handOverToRunningInstance() {
    QLocalSocket socket;
    socket.connectToServer(socketPath_);
    if (!socket.waitForConnected(answerTimeoutMilliseconds)) {
        return false;
    }
    socket.write(reopenRequest);
    socket.flush();
    // The running instance answers once it has taken the request.
    return socket.waitForReadyRead(answerTimeoutMilliseconds) && socket.readAll() == "ok\n";
}

bool QtSingleInstance::listen(std::function<void()> onReopen) {
    onReopen_ = std::move(onReopen);
    server_ = std::make_unique<QLocalServer>();
    server_->setSocketOptions(QLocalServer::UserAccessOption);
    // Nobody answered on it, so a socket left there is a crashed instance's.
    QLocalServer::removeServer(socketPath_);
    if (!server_->listen(socketPath_)) {
        Logger::forCategory(LogCategory::lifecycle)
            .error("cannot listen on %{public}s: %{public}s; a second start will not find this one",
                   socketPath_.toStdString(), server_->errorString().toStdString());
        server_.reset();
        return false;
    }
    QObject::connect(server_.get(), &QLocalServer::newConnection, [this] {
        while (auto* socket = server_->nextPendingConnection()) {
            QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
            QObject::connect(socket, &QLocalSocket::readyRead, socket, [this, socket] {
                if (!socket->canReadLine()) {
                    return;
                }
                if (socket->readLine() == reopenRequest) {
                    socket->write("ok\n");
                    socket->flush();
                    onReopen_();
                }
                socket->disconnectFromServer();
            });
        }
    });
    return true;
}

}  // namespace orvane
