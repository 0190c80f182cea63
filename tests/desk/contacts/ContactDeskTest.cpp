// SPDX-License-Identifier: Apache-2.0
#include "contacts/ContactDesk.h"

#include "WindowTest.h"
#include "contacts/ContactForm.h"
#include "contacts/ContactHistory.h"
#include "contacts/ContactsWindow.h"
#include "platform/widgets/ListView.h"
#include "support/ScriptedFileDialog.h"

#include <QAbstractItemModelTester>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStatusBar>

namespace
{
class ContactDeskTest : public WindowTest
{
protected:
    /// Opens the desk with the inbox's only message selected.
    void OpenWithMail(const QByteArray& from)
    {
        FileMail(Mail("Hello", "Hello.\r\n", from));
        OpenWindow();
        Window->List().SetCategory(tmcInbox);
        ASSERT_TRUE(WaitUntil([this] { return Window->List().SelectedReference() > 0; }));
    }
    ContactsWindow& Contacts() { return *Window->Contacts().Window(); }
    QString Text(const char* name) { return Contacts().findChild<QLineEdit*>(QLatin1String(name))->text(); }
};
} // namespace

TEST_F(ContactDeskTest, TheKeyOpensOneWindowOfContacts)
{
    OpenWindow();
    QTest::keyClick(Window.get(), Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_TRUE(Window->Contacts().Window());
    const ContactsWindow* first = Window->Contacts().Window();
    Window->Contacts().ShowContacts();
    EXPECT_EQ(Window->Contacts().Window(), first);
}

TEST_F(ContactDeskTest, TheSendersContactShowsOrIsBegun)
{
    OpenWithMail("Loveday Tregenza <loveday@example.org>");
    QTest::keyClick(Window.get(), Qt::Key_K, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_TRUE(Window->Contacts().Window());
    EXPECT_EQ(Text("contactName"), QStringLiteral("Loveday Tregenza"));
    EXPECT_EQ(Text("contactEmail"), QStringLiteral("loveday@example.org"));
    EXPECT_TRUE(Contacts().IsChanged());
    EXPECT_TRUE(Contacts().Save());
    const qint32 reference = Station.Directory().Contacts().first()->Reference;
    Window->Contacts().ShowAddress(QString(), QStringLiteral("LOVEDAY@example.org"));
    EXPECT_EQ(Contacts().Form().Shown().Reference, reference);
}

TEST_F(ContactDeskTest, AMessageOfTheHistoryOpensInItsWindow)
{
    OpenWithMail("Loveday Tregenza <loveday@example.org>");
    const qint32 reference = Window->List().SelectedReference();
    Window->Contacts().ShowContacts();
    Q_EMIT Window->Contacts().MessageWanted(reference);
    EXPECT_EQ(Window->MessageWindows().size(), 1);
}

TEST_F(ContactDeskTest, TheDeskClosesOnlyWhenTheContactsDo)
{
    OpenWindow();
    Window->Contacts().ShowAddress(QStringLiteral("Loveday"), QStringLiteral("loveday@example.org"));
    {
        const BoxAnswer box(QStringLiteral("Cancel"));
        EXPECT_FALSE(Window->close());
    }
    const BoxAnswer box(QStringLiteral("Discard"));
    EXPECT_TRUE(Window->close());
}
