// SPDX-License-Identifier: Apache-2.0
#include "DeskTest.h"
#include "StationPlace.h"

#include <QDir>
#include <QImage>
#include <QProcess>

namespace
{
/// The real program.
class DeskProgramTest : public DeskTest
{
protected:
    void Prepare(QProcess& process, const QStringList& words) const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"TOLVA_USER", "DISPLAY", "WAYLAND_DISPLAY"})
            environment.remove(QLatin1String(name));
        environment.insert(QStringLiteral("TOLVA_REGISTRY"), Path(QStringLiteral("Tolva.ini")));
        environment.insert(QStringLiteral("TOLVA_DESK_SETTINGS"), Path(QStringLiteral("desk.ini")));
        environment.insert(QStringLiteral("XDG_STATE_HOME"), Path(QStringLiteral("state")));
        environment.insert(QStringLiteral("XDG_CACHE_HOME"), Path(QStringLiteral("cache")));
        process.setProcessEnvironment(environment);
        process.setProgram(QStringLiteral(TOLVA_DESK_PROGRAM));
        process.setArguments(words);
    }
    static constexpr int Patience = 60000;
};
} // namespace

TEST_F(DeskProgramTest, WithoutADisplayItSaysSo)
{
    QProcess process;
    Prepare(process, {Folder()});
    QProcessEnvironment environment = process.processEnvironment();
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    process.setProcessEnvironment(environment);
    process.start();
    ASSERT_TRUE(process.waitForFinished(Patience));
    EXPECT_EQ(process.exitCode(), 69);
    EXPECT_EQ(process.readAllStandardError(), QByteArray("tolva-desk: there is no display here.\n"));
}

TEST_F(DeskProgramTest, ACommandLineThatIsNotUnderstoodIsSaidSo)
{
    QProcess process;
    Prepare(process, {QStringLiteral("--what")});
    process.start();
    ASSERT_TRUE(process.waitForFinished(Patience));
    EXPECT_EQ(process.exitCode(), 64);
    EXPECT_EQ(process.readAllStandardError(),
              QByteArray("tolva-desk: There is no option --what. See: tolva-desk --help\n"));
}

TEST_F(DeskProgramTest, TheTourSavesPicturesAndLeavesTheStationAlone)
{
    FileMail(Sample("press-02-players-pdf.eml"));
    FileMail(Mail("Lighthouse"));
    Station.Close();
    const QByteArray before = Read(StationPlace::FileIn(Folder()));
    QProcess process;
    Prepare(process, {QStringLiteral("--pictures"), Path(QStringLiteral("pictures")), Folder()});
    process.start();
    ASSERT_TRUE(process.waitForFinished(Patience));
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
    EXPECT_EQ(Read(StationPlace::FileIn(Folder())), before);
    const QDir pictures(Path(QStringLiteral("pictures")));
    for (const char* name : {"desk-light", "desk-dark", "desk-light-200", "desk-empty-folder", "desk-long-names",
                             "desk-right-to-left", "desk-emoji", "compose-reply", "start"}) {
        const QImage picture(pictures.filePath(QLatin1String(name) + QStringLiteral(".png")));
        EXPECT_FALSE(picture.isNull()) << name;
    }
    EXPECT_EQ(QImage(pictures.filePath(QStringLiteral("desk-light-200.png"))).width(),
              2 * QImage(pictures.filePath(QStringLiteral("desk-light.png"))).width());
    EXPECT_LT(QImage(pictures.filePath(QStringLiteral("desk-dark.png"))).pixelColor(3, 3).lightness(), 80);
}

TEST_F(DeskProgramTest, TwoDesksAndTheCommandLineWorkOnOneStation)
{
    FileMail(Mail("Lighthouse"));
    QProcess desks[2];
    for (int i = 0; i < 2; ++i) {
        Prepare(desks[i], {Folder()});
        const QString settings = Path(QStringLiteral("desk %1.ini").arg(i));
        QProcessEnvironment environment = desks[i].processEnvironment();
        environment.insert(QStringLiteral("TOLVA_DESK_SETTINGS"), settings);
        desks[i].setProcessEnvironment(environment);
        desks[i].start();
        ASSERT_TRUE(desks[i].waitForStarted());
        // It remembers the station when it is open.
        ASSERT_TRUE(WaitUntil([&] { return QFile::exists(settings) && Read(settings).contains("Recent"); }, Patience));
    }
    for (int i = 0; i < 5; ++i) {
        const qint32 reference = FileMail(Mail("More"));
        OtherComputer("mark", {QString::number(reference), QStringLiteral("read")});
        OtherComputer("move", {QString::number(reference), QStringLiteral("Saved")});
    }
    for (QProcess& desk : desks) {
        EXPECT_EQ(desk.state(), QProcess::Running) << desk.readAllStandardError().constData();
        desk.terminate();
        EXPECT_TRUE(desk.waitForFinished(Patience));
    }
    EXPECT_EQ(MessagesIn(tmcSaved).size(), 5);
    OtherComputer("check");
}
