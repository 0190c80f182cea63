// SPDX-License-Identifier: Apache-2.0

// Any file: examining it ends, and so do reading all rows of all its tables by every index and in both directions,
// changing some, and repairing it, after which a new file is sound.

#include "platform/records/Error.h"
#include "platform/records/engines/jet/DatabaseBuilder.h"
#include "platform/records/engines/jet/FileCheck.h"
#include "platform/records/engines/jet/FileRepair.h"
#include "platform/records/engines/jet/JetStore.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <array>
#include <cstdlib>

using namespace dao;

namespace
{

constexpr qsizetype PageOctets = 4096;
constexpr int MostRows = 2000;

/// A file is made of a sound one, in which each ten octets of the input change a place: page, offset, and what to.
/// An input that begins as a file does is taken as one.
QByteArray FileFrom(const QByteArray& input, const QByteArray& sound)
{
    if (input.startsWith(QByteArray("\0\1\0\0Standard", 12)))
        return input;
    QByteArray file = sound;
    for (qsizetype at = 0; at + 10 <= input.size(); at += 10) {
        const auto number = [&](qsizetype place, int size) {
            qsizetype value = 0;
            for (int i = 0; i < size; ++i)
                value = value << 8 | static_cast<quint8>(input.at(at + place + i));
            return value;
        };
        const qsizetype place = number(1, 2) % (file.size() / PageOctets) * PageOctets + number(3, 2) % PageOctets;
        const qsizetype size = 1 + number(0, 1) % 4;
        if (place + size <= file.size())
            file.replace(place, size, input.mid(at + 5, size));
    }
    return file;
}

void Put(const QString& name, const QByteArray& octets)
{
    QFile file(name);
    if (!file.open(QIODevice::WriteOnly) || file.write(octets) != octets.size())
        std::abort();
}

QByteArray MakeSound(const QString& name)
{
    engine::Table table;
    table.Name = QStringLiteral("Messages");
    table.Columns = {{QStringLiteral("Ref"), dbLong, 4, dbAutoIncrField, false},
                     {QStringLiteral("Subject"), dbText, 100, 0, true},
                     {QStringLiteral("Body"), dbMemo, 0, 0, true}};
    table.Indexes = {{QStringLiteral("Main"), true, true, {0}}, {QStringLiteral("Subject"), false, false, {1}}};
    table.Complete();
    Put(name, {});
    jet::DatabaseBuilder database(name, 45000);
    jet::TableBuilder& builder = database.AddTable(table);
    const auto& columns = builder.Definition().Columns;
    for (qint64 row = 1; row <= 60; ++row) {
        const QByteArray text = "Subject " + QByteArray::number(row * 7919 % 60);
        const std::vector<jet::NewCell> cells{jet::CellOf(columns[0], row), jet::CellOf(columns[1], text),
                                              jet::CellOf(columns[2], text.repeated(static_cast<int>(row % 17 * 40)))};
        builder.AddRow(cells);
    }
    builder.FinishRows();
    database.Finish();
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        std::abort();
    return file.readAll();
}

void ReadTable(jet::JetStore& store, const engine::TablePtr& table, int index, engine::Direction direction)
{
    Row row;
    int rows = 0;
    bool isThere = store.ReadEnd(table, index, direction, engine::MemoFetch::SmallOnes, row);
    while (isThere && ++rows < MostRows)
        isThere = store.ReadNext(table, index, direction, engine::MemoFetch::SmallOnes, row);
}

void ReadAll(const QString& name)
{
    jet::JetStore store(name, true);
    for (const engine::TablePtr& table : store.CurrentSchema()->Tables) {
        for (int index = -1; index < static_cast<int>(table->Indexes.size()); ++index) {
            for (const auto direction : {engine::Direction::Forward, engine::Direction::Backward}) {
                try {
                    ReadTable(store, table, index, direction);
                } catch (const Error&) {
                    // What is damaged is refused; the next index may be sound.
                }
            }
        }
    }
}

/// Whatever of it is refused is refused in words.
template <typename Part>
void Attempt(const Part& part)
{
    try {
        part();
    } catch (const Error&) {
        return;
    }
}

void ChangeSome(const QString& name)
{
    jet::JetStore store(name, false);
    for (const engine::TablePtr& table : store.CurrentSchema()->Tables) {
        Row row;
        if (!store.ReadEnd(table, -1, engine::Direction::Forward, engine::MemoFetch::Deferred, row))
            continue;
        const StoredValue text = QByteArray("Another subject ").repeated(5);
        for (int column = 0; column < static_cast<int>(table->Columns.size()); ++column) {
            const std::array<engine::Assignment, 1> values{engine::Assignment{column, &text}};
            Attempt([&] { store.Update(table, row.Id, row.Version, values); });
            Attempt([&] { store.Insert(table, values); });
        }
        Attempt([&] { store.Delete(table, row.Id); });
    }
}

void Repair(const QString& name, const QString& target, const QString& hint)
{
    Put(target, {});
    Attempt([&] {
        jet::RepairFile(name, target, {hint}, {});
        if (jet::ExamineFile(target, {}).Verdict != FileReport::State::Sound)
            std::abort();
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const QTemporaryDir folder(QDir(QStringLiteral("/dev/shm")).exists() ? QStringLiteral("/dev/shm/jetXXXXXX")
                                                                                : QString());
    static const QByteArray sound = MakeSound(folder.filePath(QStringLiteral("Sound.mdb")));
    const QByteArray input(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const QString name = folder.filePath(QStringLiteral("File.mdb"));
    Put(name, FileFrom(input, sound));
    Attempt([&] { jet::ExamineFile(name, {}); });
    Attempt([&] { ReadAll(name); });
    Repair(name, folder.filePath(QStringLiteral("Repaired.mdb")), folder.filePath(QStringLiteral("Sound.mdb")));
    Attempt([&] { ChangeSome(name); });
    Attempt([&] { jet::ExamineFile(name, {}); });
    return 0;
}
