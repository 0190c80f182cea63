// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messageslist/ErrorCatcher.h"
#include "platform/records/DBEngine.h"
#include "platform/widgets/ListView.h"
#include "platform/widgets/PropertyBag.h"
#include "platform/widgets/SystemColour.h"
#include "platform/widgets/TabStrip.h"
#include "platform/widgets/TextBoxes.h"
#include "platform/widgets/Twips.h"
#include "prizes/controls/uPrizeBasic.h"
#include "support/StationTest.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHash>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTabBar>
#include <QTest>
#include <QTimer>

/// A directory that counts who asks it, and fails when it is told to.
class Contacts : public FakeDirectory
{
public:
    clsKVContactPtr GetContact(qint32 reference, int, int) const override
    {
        ++Asked;
        if (Fails)
            throw dao::Error(dao::errLocked, QStringLiteral("The directory is locked."));
        const auto found = Entries.constFind(reference);
        return found == Entries.constEnd() ? nullptr : std::make_shared<clsKVContact>(*found);
    }
    void Add(qint32 reference, const clsKVContact& contact) { Entries.insert(reference, contact); }

    QHash<qint32, clsKVContact> Entries;
    mutable int Asked = 0;
    bool Fails = false;
};

class uPrizeBasicTest : public StationTest
{
protected:
    uPrizeBasicTest() : View(std::make_unique<uPrizeBasic>())
    {
        OpenStation();
        View->resize(700, 600);
        View->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(View.get()));
        View->SetDirectoryDatabase(&People);
        clsKVContact ann;
        ann.Name = QStringLiteral("Ann");
        ann.Mobile = QStringLiteral("07700 900001");
        People.Add(11, ann);
        clsKVContact bob;
        bob.Name = QStringLiteral("Bob");
        bob.Email = QStringLiteral("bob@example.com");
        People.Add(12, bob);
    }
    ~uPrizeBasicTest() override { View->close(); }

    /// A stored prize with these contacts as winners, one minute apart, the last of them now; read with its winners.
    cPrizePtr MakePrize(int supplied, const QList<qint32>& contacts)
    {
        const auto prize = std::make_shared<cPrize>();
        prize->SetTitle(QStringLiteral("Mug"));
        prize->SetScript(QStringLiteral("Win a mug!"));
        prize->SetNumberSupplied(supplied);
        EXPECT_TRUE(Station->SavePrize(prize));
        for (const qint32 contact : contacts) {
            Now.Advance(60);
            const cPrizeWinnerPtr winner = Station->GetNewPrizeWinner(Station->GetPrize(prize->Reference(), false));
            winner->SetWinnerReference(contact);
            EXPECT_TRUE(Station->SavePrizeWinner(winner));
        }
        return Read(prize->Reference());
    }
    cPrizePtr Read(qint32 reference)
    {
        const cPrizePtr prize = Station->GetPrize(reference, false);
        EXPECT_TRUE(Station->GetPrizeWinners(prize));
        return prize;
    }
    template <typename Control>
    Control& Child(const char* name) const
    {
        auto* control = View->findChild<Control*>(QLatin1String(name));
        if (!control)
            throw std::runtime_error(std::string("no control ") + name);
        return *control;
    }
    ListView& Winners() const { return Child<ListView>("lvwWinners"); }
    QString Status() const { return Child<QLabel>("lblWinners").text(); }
    QPushButton& Add() const { return Child<QPushButton>("cmdAddWinner"); }
    QPushButton& Show() const { return Child<QPushButton>("cmdShowWinner"); }
    TextBox& Title() const { return Child<TextBox>("txtTitle"); }
    TextArea& Script() const { return Child<TextArea>("txtScript"); }
    QTimer& Timer() const { return Child<QTimer>("tmrRefresh"); }
    QStringList Column(const char* key) const
    {
        QStringList texts;
        for (const QString& item : Winners().Keys())
            texts.append(Winners().SubItem(item, Winners().ColumnNamed(QLatin1String(key))));
        return texts;
    }
    QPoint ItemPosition(int row) const { return Winners().visualItemRect(Winners().topLevelItem(row)).center(); }
    void ClickItem(int row) { QTest::mouseClick(Winners().viewport(), Qt::LeftButton, {}, ItemPosition(row)); }
    void ClickBesideItems()
    {
        QTest::mouseClick(Winners().viewport(), Qt::LeftButton, {},
                          Winners().viewport()->rect().bottomRight() - QPoint(5, 5));
    }

    Contacts People;
    std::unique_ptr<uPrizeBasic> View;
};
