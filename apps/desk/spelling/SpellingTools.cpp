// SPDX-License-Identifier: Apache-2.0
#include "SpellingTools.h"

#include "Speller.h"
#include "SpellingEdit.h"
#include "SpellingMarks.h"
#include "SpellingMenu.h"
#include "SpellingPopup.h"
#include "SpellingWalk.h"

#include <QAction>
#include <QEvent>
#include <QMenu>

SpellingTools::SpellingTools(SpellingEdit& edit, Speller& speller, QMenu& menu)
    : QObject(&edit),
      Edit_(edit),
      Speller_(speller),
      Marks_(new SpellingMarks(edit, speller)),
      Popup_(new SpellingPopup(edit, *Marks_, speller)),
      Walk_(new SpellingWalk(edit, *Marks_, speller)),
      Next_(menu.addAction(tr("&Next unknown word")))
{
    Next_->setObjectName(QStringLiteral("nextUnknownWord"));
    Next_->setShortcut(Qt::Key_F7);
    Next_->setEnabled(!Edit_.isReadOnly());
    Edit_.installEventFilter(this);
    connect(Next_, &QAction::triggered, this, &SpellingTools::GoToNext);
    menu.addSeparator();
    new SpellingMenu(menu, speller);
    connect(&Speller_, &Speller::Failed, this, &SpellingTools::Told);
    connect(Walk_, &SpellingWalk::Found, this, [this](const QTextCursor& word) {
        Edit_.setTextCursor(word);
        Edit_.ensureCursorVisible();
        Edit_.setFocus();
        Popup_->OpenByKey(word);
    });
    connect(Walk_, &SpellingWalk::NoneFound, this, [this] { Q_EMIT Told(tr("There is no unknown word.")); });
    Speller_.Look();
}

bool SpellingTools::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ReadOnlyChange)
        Next_->setEnabled(!Edit_.isReadOnly());
    return QObject::eventFilter(watched, event);
}

void SpellingTools::GoToNext()
{
    if (!Speller_.HasLooked())
        connect(&Speller_, &Speller::DictionariesFound, this, &SpellingTools::GoToNext, Qt::SingleShotConnection);
    else if (Speller_.Language().isEmpty())
        Q_EMIT Told(tr("The spelling is not checked. Choose a language in the menu \u201CSpelling\u201D."));
    else
        Walk_->Start();
}
