// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/DBEngine.h"
#include "platform/records/TestedEngines.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

/// A folder, and a database made anew for each test by the engine whose name is the test's parameter: one body of tests
/// for all engines.
class RecordsFixture : public testing::TestWithParam<QString>
{
protected:
    RecordsFixture();

    QString Path(const QString& name) const { return Folder_.filePath(name); }
    /// Of an engine whose databases are files.
    const QString& FileName() const { return Place_.Name; }
    const DatabasePlace& Place() const { return Place_; }
    dao::Database& Db() { return *Database_; }
    /// Another connection to the same database, as another process would have.
    std::unique_ptr<dao::Database> OpenAgain() const;
    void Reopen();

    /// "Messages": a counter (index Main), texts, numbers of all types, a date, a truth value and a memo.
    void MakeMessages();
    std::unique_ptr<dao::Recordset> OpenTable(const QString& name, const QString& index = QString());
    std::unique_ptr<dao::Recordset> OpenMessages();
    int AddMessage(const QString& subject, const QVariant& memo = {});

    std::unique_ptr<dao::Database> Database_;

private:
    QTemporaryDir Folder_;
    DatabasePlace Place_;
};

std::string EngineTestName(const testing::TestParamInfo<QString>& info);

#define INSTANTIATE_FOR_ENGINES(Suite)                                                                                 \
    INSTANTIATE_TEST_SUITE_P(, Suite, testing::ValuesIn(AllEngines()), EngineTestName)
/// For suites about what a database is as a file.
#define INSTANTIATE_FOR_FILE_ENGINES(Suite)                                                                            \
    INSTANTIATE_TEST_SUITE_P(, Suite, testing::ValuesIn(FileEngines()), EngineTestName)

/// The number of the error that a statement raises, 0 for none.
int ErrorNumberOf(const std::function<void()>& statement);

void AddTable(dao::Database& database, const QString& name, std::vector<std::unique_ptr<dao::Field>> fields);
void AddIndex(dao::Database& database, const QString& table, const QString& name, const QStringList& fields,
              bool unique = false, bool primary = false);
std::unique_ptr<dao::Field> MakeField(const QString& name, dao::DataTypeEnum type, int size = 0, int attributes = 0);
