// SPDX-License-Identifier: Apache-2.0
#include "SpellingPopup.h"

#include "Speller.h"
#include "SpellingEdit.h"
#include "SpellingMarks.h"
#include "SpellingWords.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QMenu>

SpellingPopup::SpellingPopup(SpellingEdit& edit, SpellingMarks& marks, Speller& speller)
    : QObject(&edit), Edit_(edit), Marks_(marks), Speller_(speller)
{
    Timer_.setSingleShot(true);
    Timer_.setInterval(PatienceMilliseconds);
    connect(&Timer_, &QTimer::timeout, this, &SpellingPopup::Show);
    connect(&Speller_, &Speller::Suggested, this, &SpellingPopup::TakeSuggestions);
    Edit_.installEventFilter(this);
    Edit_.viewport()->installEventFilter(this);
}

bool SpellingPopup::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::ContextMenu)
        return QObject::eventFilter(watched, event);
    const auto& wanted = static_cast<const QContextMenuEvent&>(*event);
    const bool isByKey = wanted.reason() == QContextMenuEvent::Keyboard;
    const QPoint place = Edit_.viewport()->mapFromGlobal(wanted.globalPos());
    const QTextCursor at = isByKey ? Edit_.textCursor() : Edit_.cursorForPosition(place);
    const QTextCursor word = Marks_.UnknownAt(at.position());
    if (!word.hasSelection())
        return QObject::eventFilter(watched, event);
    if (isByKey)
        OpenByKey(word);
    else
        Open(word, wanted.globalPos(), false);
    return true;
}

void SpellingPopup::OpenByKey(const QTextCursor& word)
{
    Open(word, Edit_.viewport()->mapToGlobal(Edit_.cursorRect(word).bottomLeft()), true);
}

void SpellingPopup::Open(const QTextCursor& word, QPoint place, bool byKey)
{
    delete Menu_;
    Word_ = word;
    Text_ = word.selectedText();
    Place_ = place;
    IsByKey_ = byKey;
    Menu_ = Edit_.createStandardContextMenu();
    Menu_->setObjectName(QStringLiteral("spellingPopup"));
    Menu_->setAttribute(Qt::WA_DeleteOnClose);
    QAction* first = Menu_->actions().value(0);
    // As many lines as suggestions may come: what stands below keeps its place under the pointer.
    Lines_.clear();
    for (int i = 0; i < Speller::MostSuggestions; ++i) {
        Lines_.append(new QAction(Menu_));
        Lines_.last()->setEnabled(false);
    }
    Lines_.first()->setText(tr("Looking for suggestions..."));
    IsAwaiting_ = true;
    auto* ignore = new QAction(tr("&Ignore in this window"), Menu_);
    ignore->setObjectName(QStringLiteral("ignoreWord"));
    connect(ignore, &QAction::triggered, this, [this] { Marks_.Ignore(Text_); });
    auto* add = new QAction(tr("&Add to dictionary"), Menu_);
    add->setObjectName(QStringLiteral("addWord"));
    connect(add, &QAction::triggered, this, [this] { Speller_.Add(SpellingWords::Plain(Text_)); });
    Menu_->insertActions(first, Lines_);
    Menu_->insertActions(first, {Menu_->insertSeparator(first), ignore, add, Menu_->insertSeparator(first)});
    Timer_.start();
    Speller_.Suggest(SpellingWords::Plain(Text_));
}

void SpellingPopup::TakeSuggestions(const QString& plain, const QStringList& suggestions)
{
    if (!Menu_ || !IsAwaiting_ || plain != SpellingWords::Plain(Text_))
        return;
    IsAwaiting_ = false;
    Lines_.first()->setText(tr("No suggestions"));
    QFont font = Menu_->font();
    font.setBold(true);
    for (qsizetype i = 0; i < Lines_.size(); ++i) {
        QAction* line = Lines_.at(i);
        if (i >= suggestions.size()) {
            line->setVisible(Menu_->isVisible() || !line->text().isEmpty());
            continue;
        }
        const QString text = SpellingWords::LikeTyped(suggestions.at(i), Text_);
        line->setText(QString(text).replace(u'&', QStringLiteral("&&")));
        line->setFont(font);
        line->setEnabled(true);
        connect(line, &QAction::triggered, this, [this, text] { Replace(text); });
    }
    Show();
}

void SpellingPopup::Show()
{
    Timer_.stop();
    if (!Menu_ || !Edit_.isVisible())
        return;
    if (!Menu_->isVisible())
        Menu_->popup(Place_);
    // Whoever has chosen an entry meanwhile keeps it.
    if (IsByKey_ && Lines_.first()->isEnabled() && !Menu_->activeAction())
        Menu_->setActiveAction(Lines_.first());
}

void SpellingPopup::Replace(const QString& suggestion)
{
    // The text may have become another while the menu was open.
    if (Word_.selectedText() != Text_ || Edit_.isReadOnly())
        return;
    Word_.insertText(suggestion);
    Edit_.setTextCursor(Word_);
}
