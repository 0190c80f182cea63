// SPDX-License-Identifier: Apache-2.0
#include "messageslist/MessageCommandTest.h"

#include "common/ClockHelper.h"

MessageCommandTest::MessageCommandTest()
{
    QObject::connect(List.get(), &uMessagesList::NewMessage, List.get(),
                     [this](const cMessagePtr& message) { New.append(message); });
    QObject::connect(List.get(), &uMessagesList::OpenMessage, List.get(),
                     [this](const cMessagePtr& message) { Opened.append(message); });
    QObject::connect(List.get(), &uMessagesList::PrintMessage, List.get(),
                     [this](const cMessagePtr& message) { Printed.append(message); });
}

void MessageCommandTest::ChooseForRow(int row, const char* entry)
{
    QMenu& menu = *List->MessageMenu();
    QTest::mouseClick(Grid->viewport(), Qt::RightButton, {}, RowPosition(row));
    ASSERT_TRUE(menu.isVisible());
    ASSERT_TRUE(Entry(entry).isEnabled()) << entry;
    ASSERT_TRUE(Entry(entry).isVisible()) << entry;
    menu.setActiveAction(&Entry(entry));
    QTest::keyClick(&menu, Qt::Key_Return);
    EXPECT_FALSE(menu.isVisible());
}

qint32 MessageCommandTest::SaveDated(const QString& subject, enTolvaMessageCategories category)
{
    const cMessagePtr message = MakeMessage(subject);
    message->SetCategory(category);
    message->SetSent(ClockHelper::CurrentTime());
    message->SetReceived(ClockHelper::CurrentTime());
    EXPECT_TRUE(Station->SaveMessage(message));
    return message->Reference();
}
