// SPDX-License-Identifier: Apache-2.0
#include "SendingMachineTest.h"

#include "platform/records/DBEngine.h"
#include "platform/records/Database.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

void SendingMachineTest::File(const QString& words, const QByteArray& octets) const
{
    const Machine::Outcome filed =
        Computer().Run(QStringLiteral("runuser -u tolva -- tolva file /srv/station ") + words, octets);
    ASSERT_EQ(filed.Code, 0) << filed.Problems.constData();
}

void SendingMachineTest::MarkToBeSent() const
{
    const QTemporaryDir here;
    const QString copy = here.filePath(QStringLiteral("Tolva.mdb"));
    QFile file(copy);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(Computer().Run(QStringLiteral("cat /srv/station/Tolva.mdb")).Output);
    file.close();
    const auto database = dao::DBEngine::OpenDatabase(copy);
    database->Execute(QStringLiteral("UPDATE [Messages] SET [Category]=2, [Flags]=2, [Sent]=0 WHERE [Category]=1"));
    database->Close();
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    Computer().Write({{QStringLiteral("/srv/station/Tolva.mdb"), file.readAll()}});
}

QString SendingMachineTest::AsTheService()
{
    return QStringLiteral("umask 0007; runuser -u tolva -- tolva send /srv/station "
                          "$(sed -n 's/^TOLVA_SEND_OPTIONS=//p' /etc/tolva/send.conf) --json");
}

SendingMachineTest::Run SendingMachineTest::Send(const QString& command) const
{
    const Machine::Outcome outcome = Computer().Run(command);
    Run run{outcome.Code, {}, outcome.Output + outcome.Problems};
    for (const QByteArray& line : outcome.Output.split('\n')) {
        const QJsonObject note = QJsonDocument::fromJson(line).object();
        if (note.isEmpty())
            continue;
        QStringList recipients;
        for (const QJsonValue& recipient : note.value(QStringLiteral("recipients")).toArray())
            recipients.append(recipient.toString());
        run.Words.insert(recipients.join(u' '), note.value(QStringLiteral("outcome")).toString() +
                                                    QStringLiteral(": ") +
                                                    note.value(QStringLiteral("words")).toString());
    }
    return run;
}
