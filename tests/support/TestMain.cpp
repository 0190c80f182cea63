#include "support/WarningGuard.h"

#include <QCoreApplication>
#include <QLocale>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("tolvaTests"));
    WarningGuard::Install();
    return RUN_ALL_TESTS();
}
