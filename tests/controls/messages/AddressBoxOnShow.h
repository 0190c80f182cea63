// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/controls/uMessageAddress.h"

#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

/// A control on show with the focus, empty, and what a test asks of it.
class AddressBoxOnShow : public testing::Test
{
protected:
    AddressBoxOnShow() : Box(*Control.findChild<RichTextBox*>(QStringLiteral("rtfAddresses")))
    {
        Control.resize(700, 40);
        Control.show();
        Control.activateWindow();
        Box.setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&Control));
        Control.Settext(QString());
    }

    void AddAnn() { Control.AddAddress(QStringLiteral("Ann"), QStringLiteral("a@b.org")); }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) { QTest::keyClick(&Box, key, modifiers); }
    void Type(const QString& text) { QTest::keyClicks(&Box, text); }
    /// A click between two characters.
    void ClickAt(int position, Qt::MouseButton button = Qt::LeftButton)
    {
        QTextCursor cursor = Box.textCursor();
        cursor.setPosition(position);
        QTest::mouseClick(Box.viewport(), button, Qt::NoModifier, Box.cursorRect(cursor).center());
    }
    void Select(int start, int length)
    {
        Box.SetSelStart(start);
        Box.SetSelLength(length);
    }
    /// Which characters are protected, as "..PPP..".
    QString States()
    {
        QString states;
        const QTextCursor before = Box.textCursor();
        for (int i = 0; i < Box.Text().size(); ++i) {
            Select(i, 1);
            states += Box.SelProtected() == true ? u'P' : u'.';
        }
        Box.setTextCursor(before);
        return states;
    }

    uMessageAddress Control;
    RichTextBox& Box;
};

/// What AddAnn puts in, its run, and how long both are.
inline const QString AnnRun = QStringLiteral("\"Ann\" <a@b.org>");
inline const QString AnnEntry = AnnRun + QStringLiteral("; ");
constexpr int AnnEnd = 15;
