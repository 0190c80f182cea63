// SPDX-License-Identifier: Apache-2.0
#include "contacts/ContactChooser.h"

#include "DeskTest.h"
#include "platform/widgets/ListView.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

namespace
{
class ContactChooserTest : public DeskTest
{
protected:
    EmbeddedDirectory& Directory() { return Station.Directory(); }
    qint32 Add(const QString& name, const QString& mobile = {}, const QString& email = {})
    {
        clsKVContact contact{0, name, mobile, {}, email, {}, {}};
        Directory().SaveContact(contact);
        return contact.Reference;
    }
    ContactChooser& Open()
    {
        Chooser = std::make_unique<ContactChooser>(Directory(), nullptr);
        Chooser->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(Chooser.get()));
        return *Chooser;
    }
    QLineEdit& Box() { return *Chooser->findChild<QLineEdit*>(QStringLiteral("contactSearch")); }
    ListView& List() { return *Chooser->findChild<ListView*>(QStringLiteral("contactList")); }
    QPushButton& Button(const char* name) { return *Chooser->findChild<QPushButton*>(QLatin1String(name)); }
    QString Note() { return Chooser->findChild<QLabel*>(QStringLiteral("contactNote"))->text(); }
    QStringList Names()
    {
        QStringList names;
        for (const QString& key : List().Keys())
            names.append(List().SubItem(key, 0));
        return names;
    }

    std::unique_ptr<ContactChooser> Chooser;
};
} // namespace

TEST_F(ContactChooserTest, TypingNarrowsTheListAndEnterChooses)
{
    Add(QStringLiteral("Zoë Penrose"), QStringLiteral("07700 900123"));
    Add(QStringLiteral("Wella Rowe"), {}, QStringLiteral("wella@example.org"));
    Open();
    EXPECT_EQ(Names(), QStringList({QStringLiteral("Wella Rowe"), QStringLiteral("Zoë Penrose")}));
    QTest::keyClicks(&Box(), QStringLiteral("zoe"));
    EXPECT_EQ(Names(), QStringList(QStringLiteral("Zoë Penrose")));
    QTest::keyClick(&Box(), Qt::Key_Return);
    EXPECT_FALSE(Chooser->isVisible());
    ASSERT_TRUE(Chooser->Contact());
    EXPECT_EQ(Chooser->Contact()->Name, QStringLiteral("Zoë Penrose"));
}

TEST_F(ContactChooserTest, ANumberIsSeenWholeInLargeType)
{
    Add(QStringLiteral("Wella Rowe"), QStringLiteral("+44 7700 900123"));
    const QFont usual = QApplication::font();
    QFont large = usual;
    large.setPointSize(18);
    QApplication::setFont(large);
    Open();
    EXPECT_LE(List().sizeHintForIndex(List().model()->index(0, 1)).width(), List().columnWidth(1));
    QApplication::setFont(usual);
}

TEST_F(ContactChooserTest, TheArrowKeysWalkTheListFromTheBox)
{
    Add(QStringLiteral("Demelza"));
    Add(QStringLiteral("Wella"));
    Open();
    QTest::keyClick(&Box(), Qt::Key_Down);
    EXPECT_EQ(List().SubItem(List().SelectedKey(), 0), QStringLiteral("Wella"));
    EXPECT_TRUE(Box().hasFocus());
    QTest::keyClick(&Box(), Qt::Key_Return);
    ASSERT_TRUE(Chooser->Contact());
    EXPECT_EQ(Chooser->Contact()->Name, QStringLiteral("Wella"));
}

TEST_F(ContactChooserTest, ANumberIsFoundInAnotherForm)
{
    Add(QStringLiteral("Wella"), QStringLiteral("07700 900123"));
    Add(QStringLiteral("Demelza"), QStringLiteral("07700 900124"));
    Open().SetSearchText(QStringLiteral("+447700900123"));
    EXPECT_EQ(Names(), QStringList(QStringLiteral("Wella")));
}

TEST_F(ContactChooserTest, EscapeChoosesNobody)
{
    Add(QStringLiteral("Demelza"));
    Open();
    QTest::keyClick(&Box(), Qt::Key_Escape);
    EXPECT_FALSE(Chooser->isVisible());
    EXPECT_FALSE(Chooser->Contact());
}

TEST_F(ContactChooserTest, TheActionStandsOnTheButtonAndWaitsForASelection)
{
    Open().SetAction(QStringLiteral("&Award"));
    EXPECT_EQ(Button("chooseContact").text(), QStringLiteral("&Award"));
    EXPECT_FALSE(Button("chooseContact").isEnabled());
    EXPECT_EQ(Note(), QStringLiteral("There are no contacts yet. \"New contact\" takes in the first one."));
}

TEST_F(ContactChooserTest, ANewContactIsMadeOnTheSpotFromWhatWasTyped)
{
    Add(QStringLiteral("Wella"));
    Open().SetSearchText(QStringLiteral("Merryn Hocking"));
    EXPECT_EQ(Note(), QStringLiteral("Nobody found. \"New contact\" takes in what you typed."));
    {
        const DialogVisitor visitor("contactDialog", [](QDialog& dialog) {
            EXPECT_EQ(dialog.findChild<QLineEdit*>(QStringLiteral("contactName"))->text(),
                      QStringLiteral("Merryn Hocking"));
            QTest::keyClicks(dialog.findChild<QLineEdit*>(QStringLiteral("contactMobile")),
                             QStringLiteral("07700 900199"));
            QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("saveContact")), Qt::LeftButton);
        });
        QTest::mouseClick(&Button("newContact"), Qt::LeftButton);
    }
    EXPECT_FALSE(Chooser->isVisible());
    ASSERT_TRUE(Chooser->Contact());
    const clsKVContactPtr stored = Directory().GetContact(Chooser->Contact()->Reference);
    ASSERT_TRUE(stored);
    EXPECT_EQ(stored->Name, QStringLiteral("Merryn Hocking"));
    EXPECT_EQ(stored->Mobile, QStringLiteral("07700 900199"));
}

TEST_F(ContactChooserTest, ANewContactWithoutANameIsNotSavedAndNothingTypedIsLost)
{
    Open().SetSearchText(QStringLiteral("07700 900199"));
    Ui.ExpectWarning(QStringLiteral("A contact needs a name."));
    {
        const DialogVisitor visitor("contactDialog", [](QDialog& dialog) {
            auto* mobile = dialog.findChild<QLineEdit*>(QStringLiteral("contactMobile"));
            EXPECT_EQ(mobile->text(), QStringLiteral("07700 900199"));
            QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("saveContact")), Qt::LeftButton);
            EXPECT_TRUE(dialog.isVisible());
            EXPECT_EQ(dialog.focusWidget(), dialog.findChild<QLineEdit*>(QStringLiteral("contactName")));
            dialog.reject();
        });
        QTest::mouseClick(&Button("newContact"), Qt::LeftButton);
    }
    EXPECT_TRUE(Chooser->isVisible());
    EXPECT_TRUE(Directory().Contacts().isEmpty());
}

TEST_F(ContactChooserTest, ThousandsAreSearchedAtEachKeyAndShownAsFarAsTheyHelp)
{
    for (int i = 0; i < 250; ++i)
        Add(QStringLiteral("Listener %1").arg(i, 3, 10, QLatin1Char('0')));
    Open();
    EXPECT_EQ(List().ItemCount(), ContactChooser::MostRows);
    EXPECT_EQ(Note(),
              QStringLiteral("The first 200 of 250 contacts. Type more of the name, number or address to see others."));
    QTest::keyClicks(&Box(), QStringLiteral("249"));
    EXPECT_EQ(Names(), QStringList(QStringLiteral("Listener 249")));
    EXPECT_TRUE(Note().isEmpty());
}
