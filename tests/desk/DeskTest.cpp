// SPDX-License-Identifier: Apache-2.0
#include "DeskTest.h"

#include "StationMaking.h"
#include "support/TestServer.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QPushButton>
#include <QtTest>

namespace
{
constexpr int LookInterval = 5;
}

bool WaitUntil(const std::function<bool()>& condition, int milliseconds)
{
    return QTest::qWaitFor(condition, milliseconds);
}

BoxAnswer::BoxAnswer(const QString& button) : Button_(button)
{
    QObject::connect(&Timer_, &QTimer::timeout, &Timer_, [this] { Look(); });
    Timer_.start(LookInterval);
}

BoxAnswer::~BoxAnswer()
{
    EXPECT_TRUE(HasCome_) << "no box with the button " << Button_.toStdString();
}

void BoxAnswer::Look()
{
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (!box || HasCome_)
        return;
    QPushButton* found = nullptr;
    for (QAbstractButton* button : box->buttons()) {
        if (button->text().remove(u'&') == Button_)
            found = qobject_cast<QPushButton*>(button);
    }
    Text_ = box->text();
    Details_ = box->detailedText();
    Timer_.stop();
    if (found) {
        HasCome_ = true;
        QTest::mouseClick(found, Qt::LeftButton);
    } else {
        ADD_FAILURE() << "the box has no button " << Button_.toStdString() << ": " << Text_.toStdString();
        box->reject();
    }
}

void DeskTest::SetUp()
{
    ASSERT_TRUE(Temporary_.isValid());
    // Nothing of the account that runs the tests is read or written.
    qputenv("XDG_CACHE_HOME", QFile::encodeName(Path(QStringLiteral("cache"))));
    qputenv("DICPATH", QFile::encodeName(Path(QStringLiteral("dictionaries"))));
    StationMaking::Storage storage;
    storage.Format = qEnvironmentVariable("TOLVA_TEST_STATION");
    if (storage.Format == QLatin1String("server")) {
        const TestServer::Schema schema = TestServer::Shared().NewSchema();
        Schema = schema.Owner;
        storage = {QString(), TestServer::Shared().Connect(schema.Name)};
    }
    StationMaking::Make(Folder(), QStringLiteral("Harbour FM"), QStringLiteral("01632 960100"),
                        QStringLiteral("Technician"), Ui, QString(), storage);
    Station.Open(Folder(), QStringLiteral("Technician"));
    Station.Database().SetDatabaseSetting(QStringLiteral("Station.EmailAddress"),
                                          QStringLiteral("studio@harbourfm.example.org"), QString());
}

void DeskTest::WithoutAutomaticBackups()
{
    Station.Database().SetEnableAutoBackup(false);
    Station.Database().WriteDatabaseSettings();
    EXPECT_TRUE(QDir(Folder() + QStringLiteral("/Backups")).removeRecursively());
}

void DeskTest::TearDown()
{
    Station.Close();
}

QString DeskTest::Write(const QString& name, const QByteArray& octets) const
{
    QFile file(Path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << name.toStdString();
    EXPECT_EQ(file.write(octets), octets.size());
    return Path(name);
}

QByteArray DeskTest::Read(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

QByteArray DeskTest::Sample(const char* name)
{
    return Read(QStringLiteral(TOLVA_SAMPLES "/mail/") + QString::fromLatin1(name));
}

qint32 DeskTest::FileMail(const QByteArray& octets, enTolvaMessageCategories category, qint32 flags)
{
    const auto message = std::make_shared<cMessage>();
    message->SetCDOMessage(std::make_shared<cdo::Message>(octets));
    message->SetCategory(category);
    message->SetFlags(flags);
    EXPECT_TRUE(Station.Database().SaveMessage(message));
    return message->Reference();
}

QByteArray DeskTest::Mail(const QByteArray& subject, const QByteArray& body, const QByteArray& from)
{
    return "From: " + from + "\r\nTo: studio@harbourfm.example.org\r\nSubject: " + subject +
           "\r\nDate: Fri, 20 Nov 2026 08:00:00 +0000\r\nMessage-ID: <1@example.org>\r\n\r\n" + body;
}

QByteArray DeskTest::OtherComputer(const char* command, const QStringList& words) const
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("TOLVA_USER"));
    environment.insert(QStringLiteral("TOLVA_REGISTRY"), Path(QStringLiteral("Tolva.ini")));
    environment.insert(QStringLiteral("XDG_STATE_HOME"), Path(QStringLiteral("state")));
    environment.insert(QStringLiteral("XDG_CACHE_HOME"), Path(QStringLiteral("cache")));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(TOLVA_PROGRAM), QStringList{QString::fromLatin1(command), Folder()} + words);
    EXPECT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
    return process.readAllStandardOutput();
}

void DeskTest::AddUser(const QString& name, int rights)
{
    DirectoryUser user;
    user.Name = name;
    user.Rights = rights;
    Station.Directory().SaveUser(user);
}

QList<qint32> DeskTest::MessagesIn(enTolvaMessageCategories category)
{
    QList<qint32> references;
    const auto rows = Station.Database().OpenMessageRows(
        {QStringLiteral("Reference")}, QStringLiteral("[Category]=%1").arg(static_cast<int>(category)),
        QStringLiteral("[Reference]"));
    for (; !rows->AtEOF(); rows->MoveNext())
        references.append(rows->Collect(QStringLiteral("Reference")).toInt());
    return references;
}
