#include "platform/records/DBEngine.h"

#include <QCoreApplication>

#include <cstdio>

/// A process that adds rows to table T of a database and says each reference once its Update returned. The tests start
/// several of them at once and kill them.
/// storeWriter <file> <name> <rows, 0 for without end>
int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4)
        return 2;
    try {
        const auto database = dao::DBEngine::OpenDatabase(arguments.at(1));
        const int rows = arguments.at(3).toInt();
        for (int i = 0; rows == 0 || i < rows; ++i) {
            const auto table = database->OpenRecordset(QStringLiteral("T"), dao::dbOpenTable);
            table->AddNew();
            const int reference = table->Collect(QStringLiteral("Reference")).toInt();
            table->SetCollect(QStringLiteral("Name"), QStringLiteral("%1 %2").arg(arguments.at(2)).arg(i));
            table->SetCollect(QStringLiteral("Memo"), QString(i % 7 * 2000, QLatin1Char('m')));
            table->Update();
            std::printf("%d %s %d\n", reference, qPrintable(arguments.at(2)), i);
            std::fflush(stdout);
        }
    } catch (const dao::Error& error) {
        std::fprintf(stderr, "error %d: %s\n", error.Number(), error.what());
        return 1;
    }
    return 0;
}
