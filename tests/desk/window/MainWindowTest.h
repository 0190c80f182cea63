// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "DeskSettings.h"
#include "DeskTest.h"
#include "StationPlace.h"
#include "WindowTest.h"
#include "compose/ComposeWindow.h"
#include "messages/AttachmentList.h"
#include "messages/MessageWindow.h"
#include "messages/PreviewPane.h"
#include "messages/controls/uMessageBasic.h"
#include "messageslist/uMessagesList.h"
#include "platform/widgets/CategoryTreeView.h"
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/TabStrip.h"
#include "window/MainWindow.h"
#include "window/NoticeBar.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QProcess>
#include <QPushButton>
#include <QSignalSpy>
#include <QSplitter>
#include <QStatusBar>
#include <QTabBar>
#include <QtTest>

class MainWindowTest : public WindowTest
{
protected:
    cTolvaDatabase& Database() { return Window->Station().Database(); }
    uMessagesList& List() { return Window->List(); }
    FlexGrid& Grid() { return *List().findChild<FlexGrid*>(QStringLiteral("grdMessages")); }
    QString Label(const char* name) { return Window->findChild<QLabel*>(QLatin1String(name))->text(); }
    NoticeBar& Notice(const char* name) { return *Window->findChild<NoticeBar*>(QLatin1String(name)); }
    /// Selects by the arrow keys.
    void Select(qint32 reference) { SelectByKeys(*Window, reference); }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(Window.get(), key, modifiers);
    }
    ComposeWindow* OnlyCompose()
    {
        EXPECT_EQ(Window->ComposeWindows().size(), 1);
        return Window->ComposeWindows().value(0);
    }
    qint32 FlagsOf(qint32 reference) { return Station.Database().GetMessage(reference)->Flags(); }
};
