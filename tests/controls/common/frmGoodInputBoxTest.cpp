// SPDX-License-Identifier: Apache-2.0

// The input box's form in its other modes.

#include "common/dialogs/frmGoodInputBox.h"

#include "platform/widgets/Twips.h"
#include "support/ScriptedUserInterface.h"

#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace
{
const QStringList Songs = {QStringLiteral("zulu"), QStringLiteral("Alpha"), QStringLiteral("mike")};
} // namespace

class frmGoodInputBoxTest : public testing::Test
{
protected:
    template <typename Control>
    Control& Find(const char* name)
    {
        return *Form.findChild<Control*>(QLatin1String(name));
    }
    void Show()
    {
        Form.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&Form));
    }
    void Click(const char* button) { QTest::mouseClick(&Find<QPushButton>(button), Qt::LeftButton); }
    void ClickRow(QListWidget& list, int row)
    {
        QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::NoModifier,
                          list.visualItemRect(list.item(row)).center());
    }
    /// The one control that is to be seen for the input.
    QString Shown()
    {
        QStringList names;
        for (const char* name : {"Text1", "comboCombo", "comboList", "comboSortedList", "listMulti", "listMultiNonSel"})
            if (Find<QWidget>(name).isVisible())
                names.append(QLatin1String(name));
        return names.join(u' ');
    }

    ScriptedUserInterface Ui;
    frmGoodInputBox Form;
};

TEST_F(frmGoodInputBoxTest, AComboBoxTakesFreeText)
{
    Form.SetComboMode(true);
    Form.SetItems(Songs);
    Show();
    EXPECT_EQ(Shown(), QStringLiteral("comboCombo"));
    auto& combo = Find<QComboBox>("comboCombo");
    EXPECT_TRUE(combo.hasFocus());
    EXPECT_EQ(combo.currentText(), QStringLiteral("zulu"));
    EXPECT_EQ(combo.lineEdit()->selectedText(), QStringLiteral("zulu"));
    QTest::keyClicks(&combo, QStringLiteral("Something else"));
    Click("cmdOK");
    EXPECT_FALSE(Form.isVisible());
    EXPECT_EQ(Form.CancelL(), QStringLiteral("0"));
    EXPECT_EQ(Form.Tag(), QStringLiteral("Something else"));
}

TEST_F(frmGoodInputBoxTest, TheFocusSelectsTheTextOfTheComboBox)
{
    Form.SetComboMode(true);
    Form.SetItems(Songs);
    Show();
    auto& combo = Find<QComboBox>("comboCombo");
    combo.lineEdit()->deselect();
    Find<QPushButton>("cmdCancel").setFocus();
    combo.setFocus(Qt::OtherFocusReason);
    EXPECT_EQ(combo.lineEdit()->selectedText(), QStringLiteral("zulu"));
    Click("cmdCancel");
}

TEST_F(frmGoodInputBoxTest, AListBoxTakesOneOfItsEntries)
{
    Form.SetListMode(true);
    Form.SetItems(Songs);
    Show();
    EXPECT_EQ(Shown(), QStringLiteral("comboList"));
    auto& combo = Find<QComboBox>("comboList");
    EXPECT_FALSE(combo.isEditable());
    EXPECT_TRUE(combo.hasFocus());
    QTest::keyClick(&combo, Qt::Key_Down);
    QTest::keyClick(&combo, Qt::Key_Return);
    EXPECT_EQ(Form.Tag(), QStringLiteral("Alpha"));
    EXPECT_FALSE(Form.isVisible());
}

TEST_F(frmGoodInputBoxTest, ASortedListIsSortedWithoutRegardToCase)
{
    Form.SetSortedListMode(true);
    Form.SetItems(Songs);
    Show();
    EXPECT_EQ(Shown(), QStringLiteral("comboSortedList"));
    auto& combo = Find<QComboBox>("comboSortedList");
    EXPECT_EQ(combo.itemText(0), QStringLiteral("Alpha"));
    EXPECT_EQ(combo.itemText(2), QStringLiteral("zulu"));
    QTest::keyClick(&combo, Qt::Key_End);
    Click("cmdOK");
    EXPECT_EQ(Form.Tag(), QStringLiteral("zulu"));
}

TEST_F(frmGoodInputBoxTest, SeveralEntriesOfAListGiveTheirNumbersFromOne)
{
    Form.SetMultiMode(true);
    Form.SetItems(Songs);
    Show();
    EXPECT_EQ(Shown(), QStringLiteral("listMulti"));
    auto& list = Find<QListWidget>("listMulti");
    EXPECT_TRUE(list.hasFocus());
    ClickRow(list, 2);
    ClickRow(list, 0);
    Click("cmdOK");
    EXPECT_EQ(Form.Tag(), QStringLiteral("1,3"));
}

TEST_F(frmGoodInputBoxTest, NoEntryOfSeveralIsAnEmptyResult)
{
    Form.SetMultiMode(true);
    Form.SetItems(Songs);
    Form.SetTag(QStringLiteral("old"));
    Show();
    Click("cmdOK");
    EXPECT_FALSE(Form.isVisible());
    EXPECT_EQ(Form.CancelL(), QStringLiteral("0"));
    EXPECT_EQ(Form.Tag(), QString());
}

TEST_F(frmGoodInputBoxTest, OneEntryIsInsistedOn)
{
    Form.SetMultiNonSelMode(true);
    Form.SetItems(Songs);
    Show();
    EXPECT_EQ(Shown(), QStringLiteral("listMultiNonSel"));
    auto& list = Find<QListWidget>("listMultiNonSel");
    EXPECT_TRUE(list.hasFocus());
    Ui.ExpectWarning(QStringLiteral("You must select an item before clicking 'OK'"));
    Click("cmdOK");
    EXPECT_TRUE(Form.isVisible());
    ClickRow(list, 0);
    ClickRow(list, 1);
    Click("cmdOK");
    EXPECT_FALSE(Form.isVisible());
    EXPECT_EQ(Form.Tag(), QStringLiteral("2"));
}

TEST_F(frmGoodInputBoxTest, ADoubleClickOnAnEntryIsOK)
{
    Form.SetMultiNonSelMode(true);
    Form.SetItems(Songs);
    Show();
    auto& list = Find<QListWidget>("listMultiNonSel");
    const QPoint place = list.visualItemRect(list.item(2)).center();
    QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::NoModifier, place);
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, Qt::NoModifier, place);
    EXPECT_FALSE(Form.isVisible());
    EXPECT_EQ(Form.CancelL(), QStringLiteral("0"));
    EXPECT_EQ(Form.Tag(), QStringLiteral("3"));
}

TEST_F(frmGoodInputBoxTest, TheFirstModeThatIsSetCounts)
{
    Form.SetMultiNonSelMode(true);
    Form.SetMultiMode(true);
    Form.SetSortedListMode(true);
    Form.SetListMode(true);
    Form.SetComboMode(true);
    Show();
    EXPECT_EQ(Shown(), QStringLiteral("comboCombo"));
    Form.SetComboMode(false);
    EXPECT_EQ(Shown(), QStringLiteral("comboList"));
    Form.SetListMode(false);
    EXPECT_EQ(Shown(), QStringLiteral("comboSortedList"));
    Form.SetSortedListMode(false);
    EXPECT_EQ(Shown(), QStringLiteral("listMulti"));
    Form.SetMultiMode(false);
    EXPECT_EQ(Shown(), QStringLiteral("listMultiNonSel"));
    Form.SetMultiNonSelMode(false);
    EXPECT_EQ(Shown(), QStringLiteral("Text1"));
    Click("cmdCancel");
}

TEST_F(frmGoodInputBoxTest, TheButtonsStandBelowTheList)
{
    Form.SetMultiMode(true);
    Form.SetItems(Songs);
    Show();
    const int gap = Twips::ToPixels(Form, 120);
    EXPECT_EQ(Find<QPushButton>("cmdOK").y(), Find<QListWidget>("listMulti").geometry().bottom() + 1 + gap);
    EXPECT_EQ(Form.height(), Find<QPushButton>("cmdOK").geometry().bottom() + 1 + gap);
    Click("cmdCancel");
}

TEST_F(frmGoodInputBoxTest, CancelEmptiesTheTag)
{
    Form.SetTag(QStringLiteral("old"));
    Show();
    EXPECT_EQ(Form.CancelL(), QString());
    Click("cmdCancel");
    EXPECT_EQ(Form.CancelL(), QStringLiteral("1"));
    EXPECT_EQ(Form.Tag(), QString());
}

TEST_F(frmGoodInputBoxTest, TheCloseBoxLeavesTagAndCancel)
{
    Form.SetTag(QStringLiteral("old"));
    Show();
    Form.close();
    EXPECT_FALSE(Form.isVisible());
    EXPECT_EQ(Form.CancelL(), QString());
    EXPECT_EQ(Form.Tag(), QStringLiteral("old"));
}

TEST_F(frmGoodInputBoxTest, ThePointerIsTheDefaultOneWhileItIsUp)
{
    const BusyPointer busy;
    EXPECT_TRUE(Ui.IsBusy());
    Show();
    EXPECT_FALSE(Ui.IsBusy());
    Click("cmdCancel");
    EXPECT_TRUE(Ui.IsBusy());
}
