// SPDX-License-Identifier: Apache-2.0
#include "messageslist/FilledListTest.h"

#include "platform/records/DBEngine.h"

#include <QSignalSpy>

FilledListTest::FilledListTest()
{
    QObject::connect(List.get(), &uMessagesList::MessageSelected, List.get(),
                     [this](const cMessagePtr& message) { Selections_.append(message ? message->Reference() : 0); });
}

qint32 FilledListTest::Save(const QString& subject, const std::function<void(cMessage&)>& change)
{
    if (!Station->IsOpen())
        OpenStation();
    const cMessagePtr message = MakeMessage(subject);
    message->SetCategory(tmcInbox);
    if (change)
        change(*message);
    EXPECT_TRUE(Station->SaveMessage(message));
    return message->Reference();
}

qint32 FilledListTest::SaveIn(const QString& subject, enTolvaMessageCategories category)
{
    return Save(subject, [category](cMessage& message) { message.SetCategory(category); });
}

QList<qint32> FilledListTest::SaveMany(int count)
{
    if (!Station->IsOpen())
        OpenStation();
    QList<qint32> references;
    dao::DBEngine::BeginTrans();
    for (int i = 1; i <= count; ++i)
        references.append(Save(QStringLiteral("Message %1").arg(i)));
    dao::DBEngine::CommitTrans();
    return references;
}

cTolvaDatabase& FilledListTest::OtherComputer()
{
    if (!Other_) {
        Other_ = std::make_unique<cTolvaDatabase>();
        Other_->SetDirectoryDatabase(&Directory);
        EXPECT_EQ(Other_->OpenTolvaDatabase(Folder.path()), 0);
    }
    return *Other_;
}

qint32 FilledListTest::SaveElsewhere(const QString& subject)
{
    Now.Advance(1);
    const cMessagePtr message = MakeMessage(subject);
    message->SetCategory(tmcInbox);
    EXPECT_TRUE(OtherComputer().SaveMessage(message));
    return message->Reference();
}

void FilledListTest::Tick()
{
    const float interval = List->AutoUpdateInterval();
    QSignalSpy ticks(&Timer(), &QTimer::timeout);
    List->SetAutoUpdateInterval(0.001F);
    EXPECT_TRUE(ticks.wait(10'000));
    List->SetAutoUpdateInterval(interval);
}

void FilledListTest::AtYield(int n, const std::function<void()>& action)
{
    Ui.DoAtYields([this, at = Ui.Yields() + n, action] {
        if (Ui.Yields() == at)
            action();
    });
}
