// SPDX-License-Identifier: Apache-2.0

// The window of the running order: what it is made of, and its keys.

#include "DeskSettings.h"
#include "OnAirWindow.h"
#include "platform/widgets/Icons.h"
#include "spelling/SpellingEdit.h"
#include "spelling/SpellingTools.h"
#include "window/NoticeBar.h"

#include <QAction>
#include <QLabel>
#include <QListWidget>
#include <QMenuBar>
#include <QSplitter>
#include <QStatusBar>
#include <QToolBar>
#include <QVBoxLayout>

void OnAirWindow::MakeParts()
{
    Notice_->setObjectName(QStringLiteral("onAirNotice"));
    Head_->setObjectName(QStringLiteral("onAirHead"));
    Head_->setTextFormat(Qt::PlainText);
    Head_->setWordWrap(true);
    Head_->setContentsMargins(12, 8, 12, 0);
    Text_->setObjectName(QStringLiteral("onAirText"));
    Text_->setAccessibleName(tr("Text for air"));
    Text_->setReadOnly(true);
    Text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    Text_->setTabChangesFocus(true);
    Text_->setFrameShape(QFrame::NoFrame);
    Text_->document()->setDocumentMargin(12);
    List_->setObjectName(QStringLiteral("onAirList"));
    List_->setAccessibleName(tr("Running order"));
    List_->setTextElideMode(Qt::ElideRight);
    List_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    connect(List_, &QListWidget::currentRowChanged, this, [this](int row) {
        if (!IsShowing_ && row >= 0)
            ShowEntry(row);
    });

    auto* side = new QWidget(this);
    auto* layout = new QVBoxLayout(side);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(Notice_);
    layout->addWidget(Head_);
    layout->addWidget(Text_, 1);
    Splitter_->addWidget(List_);
    Splitter_->addWidget(side);
    Splitter_->setChildrenCollapsible(false);
    Splitter_->setSizes({300, 660});
    Splitter_->setStretchFactor(1, 1);
    setCentralWidget(Splitter_);
}

QAction* OnAirWindow::Add(const char* name, const QString& icon, const QString& text, const QList<QKeySequence>& keys,
                          void (OnAirWindow::*slot)())
{
    auto* action = new QAction(icon.isEmpty() ? QIcon() : Icons::Get(icon), text, this);
    action->setObjectName(QLatin1String(name));
    action->setShortcuts(keys);
    connect(action, &QAction::triggered, this, slot);
    return action;
}

/// What is done while reading has keys that are large and far apart.
void OnAirWindow::MakeActions()
{
    QAction* next = Add("onAirNext", QString(), tr("&Next"), {Qt::Key_Space, Qt::Key_Right}, &OnAirWindow::Next);
    QAction* back = Add("onAirBack", QString(), tr("&Back"), {Qt::Key_Backspace, Qt::Key_Left}, &OnAirWindow::Back);
    QAction* use = Add("onAirUse", QString(), tr("&Used"), {Qt::Key_Return, Qt::Key_Enter}, &OnAirWindow::Use);
    QAction* skip = Add("onAirSkip", QString(), tr("&Skip"), {Qt::SHIFT | Qt::Key_Space}, &OnAirWindow::Skip);
    QAction* remove =
        Add("onAirRemove", QStringLiteral("delete"), tr("&Take off the order"), {Qt::Key_Delete}, &OnAirWindow::Remove);
    QAction* up = Add("onAirUp", QString(), tr("Move u&p"), {Qt::CTRL | Qt::Key_Up}, &OnAirWindow::MoveUp);
    QAction* down = Add("onAirDown", QString(), tr("Move &down"), {Qt::CTRL | Qt::Key_Down}, &OnAirWindow::MoveDown);
    QAction* shorten = Add("onAirShorten", QString(), tr("S&horten for air"), {Qt::Key_F2}, &OnAirWindow::Shorten);
    shorten->setCheckable(true);
    QAction* restore = Add("onAirRestore", QString(), tr("As it was &written"), {}, &OnAirWindow::Restore);
    QAction* print =
        Add("onAirPrint", QStringLiteral("print"), tr("P&rint..."), {Qt::CTRL | Qt::Key_P}, &OnAirWindow::Print);
    QAction* empty = Add("onAirEmpty", QString(), tr("&Empty the order..."), {}, &OnAirWindow::Empty);
    auto* larger = new QAction(tr("&Larger text"), this);
    larger->setShortcuts({Qt::CTRL | Qt::Key_Plus, Qt::CTRL | Qt::Key_Equal});
    connect(larger, &QAction::triggered, this, [this] { SetTextSize(Size_ + TextStep); });
    auto* smaller = new QAction(tr("S&maller text"), this);
    smaller->setShortcut(Qt::CTRL | Qt::Key_Minus);
    connect(smaller, &QAction::triggered, this, [this] { SetTextSize(Size_ - TextStep); });
    auto* close = new QAction(tr("&Close"), this);
    close->setShortcut(Qt::CTRL | Qt::Key_W);
    connect(close, &QAction::triggered, this, &QWidget::close);
    auto* escape = new QAction(this);
    escape->setShortcut(Qt::Key_Escape);
    connect(escape, &QAction::triggered, this, [this] {
        if (IsEditing_)
            GiveUpShortening();
        else
            this->close();
    });
    addAction(escape);

    auto* menu = menuBar()->addMenu(tr("&Running order"));
    menu->addActions({next, back, use, skip});
    menu->addSeparator();
    menu->addActions({up, down, shorten, restore, remove});
    menu->addSeparator();
    menu->addActions({print, empty});
    menu->addSeparator();
    menu->addActions({larger, smaller, close});
    auto* bar = addToolBar(tr("Running order"));
    bar->setObjectName(QStringLiteral("onAirBar"));
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    bar->addActions({back, next, use, skip});
    bar->addSeparator();
    bar->addActions({up, down, shorten});
}

void OnAirWindow::CheckSpelling(Speller& speller)
{
    auto* menu = menuBar()->addMenu(tr("&Spelling"));
    menu->setObjectName(QStringLiteral("spelling"));
    Spelling_ = new SpellingTools(*Text_, speller, *menu);
    connect(Spelling_, &SpellingTools::Told, this, [this](const QString& words) { statusBar()->showMessage(words); });
}
