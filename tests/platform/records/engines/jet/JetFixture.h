// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/DBEngine.h"
#include "platform/records/RecordsFixture.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <random>

/// A folder with a database of the usual engine, and the same as a Jet file, once it is written.
class JetFixture : public testing::Test
{
protected:
    /// where: the folder in which its own is made.
    explicit JetFixture(const QString& where = QDir::tempPath());
    /// In memory where the system has a place for that, for tests of no disk.
    static QString InMemory()
    {
        const QString memory = QStringLiteral("/dev/shm");
        return QFileInfo(memory).isWritable() ? memory : QDir::tempPath();
    }

    QString Path(const QString& name) const { return Folder_.filePath(name); }
    /// "Messages": a counter (index Main), a text with an index, one with an index that lets no value come twice, a
    /// number of each type, a date with an index, a truth value, two memos.
    void MakeMessages();
    /// Rows of all kinds of values, from Null to memos of many pages.
    void AddMessages(int count);
    /// Writes the database as a Jet file and opens that.
    void WriteJet();

    dao::Database& Source() { return *Source_; }
    dao::Database& Jet() { return *Jet_; }
    QString JetName() const { return Path(QStringLiteral("Jet.mdb")); }

    std::unique_ptr<dao::Database> Source_;
    std::unique_ptr<dao::Database> Jet_;
    std::mt19937 Random_;

private:
    QString RandomText(int longest);
    QTemporaryDir Folder_;
};

/// Every value of every row of a table, in order of entry or of an index.
QStringList AllRows(dao::Database& database, const QString& table, const QString& index = QString());
/// Writes a store's database as a Jet file.
void WriteAsJet(const QString& source, const QString& jet);
QByteArray OctetsOf(const QString& file);
void SetOctets(const QString& file, const QByteArray& octets);
