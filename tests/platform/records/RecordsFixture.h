// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/DBEngine.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

/// A folder with a database in it, made anew for each test by the engine whose name is the test's parameter: one body
/// of tests for all engines.
class RecordsFixture : public testing::TestWithParam<QString>
{
protected:
    RecordsFixture();

    QString Path(const QString& name) const { return Folder_.filePath(name); }
    QString FileName() const { return Path(QStringLiteral("Test.mdb")); }
    dao::Database& Db() { return *Database_; }
    /// Another connection to the same file, as another process would have.
    std::unique_ptr<dao::Database> OpenAgain() const { return dao::DBEngine::OpenDatabase(FileName()); }
    void Reopen();

    /// "Messages": a counter (index Main), texts, numbers of all types, a date, a truth value and a memo.
    void MakeMessages();
    std::unique_ptr<dao::Recordset> OpenTable(const QString& name, const QString& index = QString());
    std::unique_ptr<dao::Recordset> OpenMessages();
    int AddMessage(const QString& subject, const QVariant& memo = {});

    std::unique_ptr<dao::Database> Database_;

private:
    QTemporaryDir Folder_;
};

/// The engines that make files on this machine.
std::vector<QString> FileEngines();
std::string EngineTestName(const testing::TestParamInfo<QString>& info);

#define INSTANTIATE_FOR_ENGINES(Suite)                                                                                 \
    INSTANTIATE_TEST_SUITE_P(, Suite, testing::ValuesIn(FileEngines()), EngineTestName)

/// The number of the error that a statement raises, 0 for none.
int ErrorNumberOf(const std::function<void()>& statement);

void AddTable(dao::Database& database, const QString& name, std::vector<std::unique_ptr<dao::Field>> fields);
void AddIndex(dao::Database& database, const QString& table, const QString& name, const QStringList& fields,
              bool unique = false, bool primary = false);
std::unique_ptr<dao::Field> MakeField(const QString& name, dao::DataTypeEnum type, int size = 0, int attributes = 0);
