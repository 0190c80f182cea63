// SPDX-License-Identifier: Apache-2.0
#include "platform/records/RecordsFixture.h"

#include <QFile>
#include <QProcess>

#include <sqlite3.h>

#include <random>
#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

using namespace dao;

namespace
{

class DamagedFile : public RecordsFixture
{
protected:
    DamagedFile()
    {
        MakeMessages();
        AddIndex(Db(), QStringLiteral("Messages"), QStringLiteral("Subjects"), {QStringLiteral("Subject")});
        DBEngine::BeginTrans();
        for (int i = 0; i < 60; ++i)
            AddMessage(QStringLiteral("Subject %1").arg(i), QString(1500, QLatin1Char('b')));
        DBEngine::CommitTrans();
        Database_.reset();
        QFile file(FileName());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        Whole_ = file.readAll();
    }

    QString Write(const QByteArray& octets)
    {
        QFile file(Path(QStringLiteral("Damaged.mdb")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(octets);
        return file.fileName();
    }

    /// Opens, reads everything, writes a row; the first error, or 0.
    static int Use(const QString& name)
    {
        return ErrorNumberOf([&] {
            const auto database = DBEngine::OpenDatabase(name);
            for (const char* index : {"", "Main", "Subjects"}) {
                const auto rows = database->OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
                rows->SetIndex(QString::fromLatin1(index));
                for (; !rows->AtEOF(); rows->MoveNext())
                    rows->Fields().Item(QStringLiteral("Message")).Octets();
            }
            const auto rows = database->OpenRecordset(QStringLiteral("Messages"), dbOpenTable);
            rows->AddNew();
            rows->SetCollect(QStringLiteral("Subject"), QStringLiteral("Subject 30a"));
            rows->Update();
        });
    }
    static bool IsDamageError(int number)
    {
        return number == errFileDamaged || number == errUnrecognisedFormat || number == errMemoDamaged;
    }

    QByteArray Whole_;
};

TEST_P(DamagedFile, CutAtAnyLengthIsRefused)
{
    EXPECT_EQ(Use(Write(Whole_)), 0);
    for (const qsizetype length :
         {qsizetype{1}, qsizetype{15}, qsizetype{16}, qsizetype{71}, qsizetype{72}, qsizetype{99}, qsizetype{100},
          qsizetype{101}, qsizetype{4095}, qsizetype{4096}, qsizetype{4097}, qsizetype{8192}, Whole_.size() / 2,
          Whole_.size() - 4096, Whole_.size() - 1}) {
        const int number = Use(Write(Whole_.left(length)));
        EXPECT_TRUE(IsDamageError(number)) << length << " gives " << number;
    }
}

TEST_P(DamagedFile, EmptyOrForeignFilesAreNotRecognised)
{
    EXPECT_EQ(Use(Write(QByteArray())), errUnrecognisedFormat);
    EXPECT_EQ(Use(Write(QByteArrayLiteral("Dear listener, this is a letter."))), errUnrecognisedFormat);
    EXPECT_EQ(Use(Write(QByteArray(20000, '\0'))), errUnrecognisedFormat);
    QByteArray foreign = Whole_;
    foreign.replace(GetParam() == u"jet" ? 4 : 68, 4, QByteArray(4, '\0'));
    EXPECT_EQ(Use(Write(foreign)), errUnrecognisedFormat);
}

TEST_P(DamagedFile, AFormatThatIsNewerIsNotRecognised)
{
    QByteArray newer = Whole_;
    newer[GetParam() == u"jet" ? 20 : 63] = 99;
    EXPECT_EQ(Use(Write(newer)), errUnrecognisedFormat);
}

TEST_P(DamagedFile, ZeroedPagesNeverPassForWhole)
{
    for (qsizetype page = 1; page < Whole_.size() / 4096; ++page) {
        QByteArray damaged = Whole_;
        damaged.replace(page * 4096, 4096, QByteArray(4096, '\0'));
        const QString name = Write(damaged);
        const int number = Use(name);
        EXPECT_TRUE(number == 0 || IsDamageError(number)) << "page " << page << " gives " << number;
        // Whatever a page holds, a compaction looks at all of them.
        const QString target = Path(QStringLiteral("Target.mdb"));
        const int compacted = ErrorNumberOf([&] { DBEngine::CompactDatabase(Write(damaged), target); });
        EXPECT_TRUE(compacted == 0 || IsDamageError(compacted)) << "page " << page << " gives " << compacted;
        EXPECT_EQ(QFile::exists(target), compacted == 0);
        if (compacted == 0) {
            const auto copy = DBEngine::OpenDatabase(target);
            EXPECT_EQ(copy->OpenRecordset(QStringLiteral("Messages"), dbOpenTable)->RecordCount(), 60);
        }
        QFile::remove(target);
    }
}

TEST_P(DamagedFile, FlippedOctetsNeverCrash)
{
    std::mt19937 random(7);
    for (int i = 0; i < 400; ++i) {
        QByteArray damaged = Whole_;
        const bool isHeader = i % 4 == 0;
        const auto limit = static_cast<unsigned>(isHeader ? 200 : Whole_.size());
        const auto at = static_cast<qsizetype>(random() % limit);
        damaged[at] = static_cast<char>(damaged.at(at) ^ static_cast<char>(1U << (random() % 8)));
        const int number = Use(Write(damaged));
        EXPECT_TRUE(number == 0 || IsDamageError(number) || number == errCannotOpen || number == errReadOnly ||
                    number == errDuplicateValue || number == errNotAnIndex || number == errTableNotFound ||
                    number == errItemNotFound || number == errNotSupported || number == errOverflow ||
                    number == errTypeMismatch)
            << "octet " << at << " gives " << number;
    }
}

TEST_P(DamagedFile, PathsThatAreNoFiles)
{
    EXPECT_EQ(Use(Path(QStringLiteral("Absent.mdb"))), errFileNotFound);
    EXPECT_EQ(Use(Path(QStringLiteral("Absent/Test.mdb"))), errNotAValidPath);
    EXPECT_EQ(Use(Path(QString())), errCannotOpen);
    EXPECT_EQ(Use(QString()), errNotAValidPath);
}

TEST_P(DamagedFile, AnUnreadableFileCannotBeOpened)
{
#ifdef Q_OS_UNIX
    if (geteuid() == 0)
        GTEST_SKIP() << "the superuser reads every file";
#endif
    QFile::setPermissions(FileName(), {});
    EXPECT_EQ(Use(FileName()), errCannotOpen);
}

INSTANTIATE_FOR_FILE_ENGINES(DamagedFile);

} // namespace
