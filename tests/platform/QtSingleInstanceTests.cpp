// One Orvane per user and display: the lock decides between starts, and a folder in the shared
// temporary folder is trusted only when it is the user's alone.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QTemporaryDir>
#include <filesystem>

#include "core/ScopedLogCapture.h"
#include "ui/qt/QtSingleInstance.h"

namespace orvane {
namespace {

TEST(QtSingleInstanceTest, TheLockDecidesAndOnlyAPrivateFolderIsTrusted) {
    ScopedLogCapture capture;
    QTemporaryDir root;
    ASSERT_TRUE(root.isValid());

    // Made private when missing; refused once others may enter it, or as a link to elsewhere.
    const auto folder = QDir(root.path()).filePath(QStringLiteral("orvane-test"));
    ASSERT_EQ(QtSingleInstance::privateFolder(folder), folder);
    struct stat status {};
    ASSERT_EQ(::stat(QFile::encodeName(folder).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700u);
    ::chmod(QFile::encodeName(folder).constData(), 0777);
    EXPECT_FALSE(QtSingleInstance::privateFolder(folder));
    ::chmod(QFile::encodeName(folder).constData(), 0700);
    const auto link = QDir(root.path()).filePath(QStringLiteral("link"));
    std::filesystem::create_directory_symlink(folder.toStdString(), link.toStdString());
    EXPECT_FALSE(QtSingleInstance::privateFolder(link));

    // The first start holds the lock; a second one, whoever answers, never runs beside it; once
    // the first has ended, a start is the first again. Another display is another desktop.
    auto first = std::make_unique<QtSingleInstance>(folder, QStringLiteral(":7"));
    EXPECT_FALSE(first->handOverToRunningInstance());
    QtSingleInstance second(folder, QStringLiteral(":7"));
    EXPECT_TRUE(second.handOverToRunningInstance(200));
    QtSingleInstance elsewhere(folder, QStringLiteral(":8"));
    EXPECT_FALSE(elsewhere.handOverToRunningInstance());
    first.reset();
    QtSingleInstance third(folder, QStringLiteral(":7"));
    EXPECT_FALSE(third.handOverToRunningInstance());
}

}  // namespace
}  // namespace orvane
