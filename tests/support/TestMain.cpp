// SPDX-License-Identifier: Apache-2.0
#include "support/WarningGuard.h"

#include <QCoreApplication>
#include <QLocale>

int main(int argc, char** argv)
{
    // The same on every machine, whoever starts the program and how.
    qputenv("LC_ALL", "C.UTF-8");
    qputenv("TZ", "Europe/London");
    qputenv("QT_HASH_SEED", "0");
    testing::InitGoogleTest(&argc, argv);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("tolvaTests"));
    WarningGuard::Install();
    return RUN_ALL_TESTS();
}
