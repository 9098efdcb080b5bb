#include "ui/qt/QtSingleInstance.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QElapsedTimer>
#include <QLocalSocket>
#include <QThread>
#include <cerrno>
#include <cstring>
#include <utility>

#include "core/Logger.h"

namespace orvane {

namespace {

constexpr int answerTimeoutMilliseconds = 1000;

const Logger& log() {
    return Logger::forCategory(LogCategory::lifecycle);
}

// ":0" and "localhost:10.0" as parts of a file name.
QString displayName(const QString& display) {
    QString name;
    for (const auto character : display) {
        name += character.isLetterOrNumber() || character == QLatin1Char('.') ? character
                                                                              : QLatin1Char('_');
    }
    return name.isEmpty() ? QStringLiteral("none") : name;
}

}  // namespace

std::optional<QString> QtSingleInstance::privateFolder(const QString& path) {
    const auto native = QFile::encodeName(path);
    if (::mkdir(native.constData(), 0700) != 0 && errno != EEXIST) {
        log().error("cannot make the folder %{public}s: %{public}s", path.toStdString(),
                    std::string(std::strerror(errno)));
        return std::nullopt;
    }
    struct stat status {};
    if (::lstat(native.constData(), &status) != 0 || !S_ISDIR(status.st_mode) ||
        status.st_uid != ::getuid() || (status.st_mode & 077) != 0) {
        log().error(
            "%{public}s is not a folder of this user's alone; Orvane does not look there for "
            "another copy of itself",
            path.toStdString());
        return std::nullopt;
    }
    return path;
}

std::optional<QString> QtSingleInstance::standardFolder() {
    const auto runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!runtime.isEmpty()) {
        return runtime;
    }
    // No runtime folder (a bare X session): one of the user's own in the shared temporary folder.
    return privateFolder(
        QDir(QDir::tempPath()).filePath(QStringLiteral("orvane-%1").arg(::getuid())));
}

QtSingleInstance::QtSingleInstance(std::optional<QString> folder, const QString& display) {
    if (folder) {
        const QDir directory(*folder);
        const auto name = QStringLiteral("orvane-%1").arg(displayName(display));
        socketPath_ = directory.filePath(name + QStringLiteral(".socket"));
        lockPath_ = directory.filePath(name + QStringLiteral(".lock"));
    }
}

QtSingleInstance::~QtSingleInstance() {
    if (server_) {
        server_->close();
    }
    if (lockDescriptor_ >= 0) {
        ::close(lockDescriptor_);
    }
}

bool QtSingleInstance::handOverToRunningInstance(int patienceMilliseconds) {
    if (!lockPath_) {
        return false;
    }
    const auto native = QFile::encodeName(*lockPath_);
    lockDescriptor_ = ::open(native.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (lockDescriptor_ < 0) {
        log().error(
            "cannot open %{public}s: %{public}s; Orvane runs without looking for another "
            "copy of itself",
            lockPath_->toStdString(), std::string(std::strerror(errno)));
        return false;
    }
    if (::flock(lockDescriptor_, LOCK_EX | LOCK_NB) == 0) {
        return false;
    }
    ::close(lockDescriptor_);
    lockDescriptor_ = -1;
    // The holder may be starting right now: its socket comes up once it runs.
    QElapsedTimer waited;
    waited.start();
    while (!tell("reopen")) {
        if (waited.elapsed() >= patienceMilliseconds) {
            log().error("another Orvane holds %{public}s but does not answer; this one ends",
                        lockPath_->toStdString());
            return true;
        }
        QThread::msleep(50);
    }
    return true;
}

bool QtSingleInstance::tell(const std::string& request) {
    if (!socketPath_) {
        return false;
    }
    QLocalSocket socket;
    socket.connectToServer(*socketPath_);
    if (!socket.waitForConnected(answerTimeoutMilliseconds)) {
        return false;
    }
    socket.write((request + "\n").c_str());
    socket.flush();
    // The running instance answers once it has taken the request.
    return socket.waitForReadyRead(answerTimeoutMilliseconds) && socket.readAll() == "ok\n";
}

bool QtSingleInstance::listen(std::function<bool(const std::string& request)> onRequest) {
    if (!socketPath_) {
        return false;
    }
    onRequest_ = std::move(onRequest);
    server_ = std::make_unique<QLocalServer>();
    server_->setSocketOptions(QLocalServer::UserAccessOption);
    // This start holds the lock, so a socket left there is an ended instance's.
    QLocalServer::removeServer(*socketPath_);
    if (!server_->listen(*socketPath_)) {
        log().error(
            "cannot listen on %{public}s: %{public}s; a second start will not find this one",
            socketPath_->toStdString(), server_->errorString().toStdString());
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
                const auto request = socket->readLine().trimmed().toStdString();
                const bool taken = onRequest_(request);
                socket->write(taken ? "ok\n" : "unknown\n");
                socket->flush();
                socket->disconnectFromServer();
            });
        }
    });
    return true;
}

}  // namespace orvane
