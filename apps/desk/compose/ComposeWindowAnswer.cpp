// SPDX-License-Identifier: Apache-2.0

// What the compose window has for answers: the original beside the reply, and the station's templates.

#include "AnswerTemplates.h"
#include "BodyEdit.h"
#include "ComposeWindow.h"
#include "Failure.h"
#include "Words.h"
#include "messages/PreviewPane.h"
#include "station/DeskStation.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QSplitter>

namespace
{
/// Of the window, beside the original.
constexpr int FormWidth = 560;
constexpr int OriginalWidth = 440;
} // namespace

void ComposeWindow::MakeAnswerActions(QMenu& menu)
{
    ShowOriginal_ = new QAction(tr("&Original beside it"), this);
    ShowOriginal_->setObjectName(QStringLiteral("showOriginal"));
    ShowOriginal_->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_E));
    ShowOriginal_->setCheckable(true);
    connect(ShowOriginal_, &QAction::toggled, this, &ComposeWindow::ShowOriginal);
    menu.addAction(ShowOriginal_);
    auto* templates = menuBar()->addMenu(tr("Tem&plates"));
    templates->setObjectName(QStringLiteral("answerTemplates"));
    connect(templates, &QMenu::aboutToShow, this, [this, templates] { FillTemplates(*templates); });
}

void ComposeWindow::ShowOriginal(bool isShown)
{
    if (isShown && !Original_) {
        cMessagePtr original;
        try {
            original = Station_.Database().ReadMessage(Base_.Answers);
        } catch (const dao::Error& error) {
            Words::Warn(Station_.Words(error.Number(), error.Description()));
        }
        if (!original) {
            ShowOriginal_->setChecked(false);
            ShowOriginal_->setEnabled(false);
            return;
        }
        Original_ = new PreviewPane(Sides_);
        Original_->setObjectName(QStringLiteral("original"));
        Original_->setAccessibleName(tr("The message that is answered"));
        Original_->Select(original);
        Sides_->addWidget(Original_);
        resize(FormWidth + OriginalWidth, height());
        Sides_->setSizes({FormWidth, OriginalWidth});
    }
    if (Original_)
        Original_->setVisible(isShown);
}

void ComposeWindow::FillTemplates(QMenu& menu)
{
    menu.clear();
    const QStringList names = AnswerTemplates::Names(Station_);
    for (const QString& name : names) {
        // A name's own ampersand is no access key.
        QString text = name;
        QAction* entry = menu.addAction(text.replace(u'&', QStringLiteral("&&")));
        connect(entry, &QAction::triggered, this, [this, name] { InsertTemplate(name); });
    }
    if (menu.isEmpty())
        menu.addAction(tr("No templates for answers in the station"))->setEnabled(false);
}

/// Where the caret stands, as if it was typed: undo takes it back.
void ComposeWindow::InsertTemplate(const QString& name)
{
    try {
        Body_->insertPlainText(AnswerTemplates::Filled(Station_, name, Current()));
        Body_->setFocus();
    } catch (const Failure& failure) {
        Words::Warn(failure.Words());
    } catch (const dao::Error& error) {
        Words::Warn(Station_.Words(error.Number(), error.Description()));
    }
}
