// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "station/DeskStation.h"
#include "support/ScriptedRegistry.h"
#include "support/ScriptedUserInterface.h"

#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

/// Runs the event loop until the condition holds; false after five seconds.
bool WaitUntil(const std::function<bool()>& condition, int milliseconds = 5000);

/// Presses a button of the next modal box, by its text without the mnemonic. Fails the test when no such box comes up
/// while this object lives.
class BoxAnswer
{
public:
    explicit BoxAnswer(const QString& button);
    ~BoxAnswer();
    BoxAnswer(const BoxAnswer&) = delete;
    BoxAnswer& operator=(const BoxAnswer&) = delete;

    bool HasCome() const { return HasCome_; }
    /// What the box said.
    const QString& Text() const { return Text_; }
    const QString& Details() const { return Details_; }

private:
    void Look();

    QString Button_;
    QString Text_;
    QString Details_;
    bool HasCome_ = false;
    QTimer Timer_;
};

/// Does something with the next modal dialog of that name. Fails the test when none comes up while it lives.
class DialogVisitor
{
public:
    DialogVisitor(const char* name, std::function<void(QDialog&)> visit)
        : Name_(QLatin1String(name)), Visit_(std::move(visit))
    {
        QObject::connect(&Timer_, &QTimer::timeout, &Timer_, [this] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (!dialog || dialog->objectName() != Name_)
                return;
            Timer_.stop();
            HasCome_ = true;
            Visit_(*dialog);
        });
        Timer_.start(5);
    }
    ~DialogVisitor() { EXPECT_TRUE(HasCome_) << "no dialog " << Name_.toStdString(); }
    DialogVisitor(const DialogVisitor&) = delete;
    DialogVisitor& operator=(const DialogVisitor&) = delete;

private:
    QString Name_;
    std::function<void(QDialog&)> Visit_;
    bool HasCome_ = false;
    QTimer Timer_;
};

/// A station of its own in a folder of its own, open for its technician, and the program tolva as the other computer.
/// The station is a file; with TOLVA_TEST_STATION in the environment one of that engine, or with "server" there on the
/// tests' server.
class DeskTest : public testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    QString Folder() const { return Path(QStringLiteral("station")); }
    QString Path(const QString& name) const { return Temporary_.filePath(name); }
    /// Writes a file into the temporary folder; its path.
    QString Write(const QString& name, const QByteArray& octets) const;
    static QByteArray Read(const QString& path);
    static QByteArray Sample(const char* name);

    /// The station makes no backup by itself, and has none.
    void WithoutAutomaticBackups();
    /// Files a mail on this computer.
    qint32 FileMail(const QByteArray& octets, enTolvaMessageCategories category = tmcInbox, qint32 flags = 0);
    static QByteArray Mail(const QByteArray& subject, const QByteArray& body = "Hello.\r\n",
                           const QByteArray& from = "Loveday Tregenza <loveday@example.org>");
    /// Runs "tolva COMMAND STATION WORDS..." as the other computer; it must succeed. Its output.
    QByteArray OtherComputer(const char* command, const QStringList& words = {}) const;
    /// Adds a user with these rights to the directory.
    void AddUser(const QString& name, int rights);
    /// References of the messages in a folder, oldest first.
    QList<qint32> MessagesIn(enTolvaMessageCategories category);

    QTemporaryDir Temporary_{QFileInfo(QStringLiteral("/dev/shm")).isWritable()
                                 ? QStringLiteral("/dev/shm/tolva-desk-XXXXXX")
                                 : QDir::tempPath() + QStringLiteral("/tolva-desk-XXXXXX")};
    std::shared_ptr<void> Schema; ///< Of a station on a server; gone with the test.
    ScriptedUserInterface Ui;
    ScriptedRegistry Machine;
    DeskStation Station;
};
