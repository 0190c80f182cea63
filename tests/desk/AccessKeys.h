// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAbstractButton>
#include <QGroupBox>
#include <QKeySequence>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QTabBar>

#include <map>

/// What Alt with a letter or digit does in a window as it is on show.
class AccessKeys
{
public:
    explicit AccessKeys(const QWidget& window)
    {
        for (const auto* label : window.findChildren<QLabel*>()) {
            if (label->buddy())
                Add(*label, label->text());
        }
        for (const auto* button : window.findChildren<QAbstractButton*>())
            Add(*button, button->text());
        for (const auto* box : window.findChildren<QGroupBox*>())
            Add(*box, box->title());
        for (const auto* tabs : window.findChildren<QTabBar*>()) {
            for (int i = 0; i < tabs->count(); ++i)
                Add(*tabs, tabs->tabText(i));
        }
        for (const auto* bar : window.findChildren<QMenuBar*>()) {
            for (const QAction* action : bar->actions())
                Add(*bar, action->isEnabled() ? action->text() : QString());
        }
    }
    /// Of one menu that is open, or was; also of entries that are not enabled at this moment.
    explicit AccessKeys(const QMenu& menu)
    {
        for (const QAction* action : menu.actions()) {
            if (action->isVisible())
                Add(action->text());
        }
    }
    /// The keys that do more than one thing, with what they do.
    QStringList Clashes() const
    {
        QStringList clashes;
        for (const auto& [key, texts] : Texts_) {
            if (texts.size() > 1)
                clashes.append(key.toString() + QStringLiteral(": ") + texts.join(QStringLiteral(" / ")));
        }
        return clashes;
    }
    size_t Count() const { return Texts_.size(); }

private:
    void Add(const QWidget& widget, const QString& text)
    {
        if (widget.isVisible() && widget.isEnabled())
            Add(text);
    }
    void Add(const QString& text)
    {
        const QKeySequence key = QKeySequence::mnemonic(text);
        if (!key.isEmpty())
            Texts_[key].append(text);
    }

    std::map<QKeySequence, QStringList> Texts_;
};
