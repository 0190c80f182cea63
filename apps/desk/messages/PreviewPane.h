// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessage.h"

#include <QTimer>
#include <QWidget>

#include <functional>

class AttachmentList;
class NoticeBar;
class QLabel;
class QStackedLayout;
class uMessageBasic;

/// The viewer beside the list: the selected message with its attachments. A message is loaded when the selection has
/// rested a moment, so that a held arrow key runs through the list, and is reported as read when it was on show for a
/// while in the active window. Owned by its window.
class PreviewPane : public QWidget
{
    Q_OBJECT

public:
    explicit PreviewPane(QWidget* parent = nullptr);

    /// Null for none. The same message in a new state is taken in without a flicker, and is not read anew.
    void Select(const cMessagePtr& message);
    /// The message on show, or about to be; null for none.
    const cMessagePtr& Message() const { return Selected_; }
    /// Whether what is selected is on show.
    bool IsLoaded() const { return Shown_ == Selected_; }
    AttachmentList& Attachments() const { return *Attachments_; }
    /// Only a message that the user chose is reported as read. Off at first: every one that is shown long enough is.
    void SetReportsOnlyChosen(bool on) { ReportsOnlyChosen_ = on; }
    /// The user pointed at this message.
    void Choose(qint32 reference);
    /// Says something about the message on show until another one is selected.
    void Tell(const QString& words);
    /// What to do about a damaged message, in words; asked for when one is shown.
    void SetDamageAdvice(std::function<QString(qint32 reference)> advice) { DamageAdvice_ = std::move(advice); }
    /// Marks what it finds in the body of what is shown; see uMessageBasic.
    void SetMarker(std::function<QList<std::pair<qsizetype, qsizetype>>(const QString& text)> marker);
    /// How much larger than usual the text is; see uMessageBasic.
    void SetTextSize(int steps);
    /// The date is the one of lists that show the sender's clock. Off at first.
    void SetShowsSentDate(bool shows);
    /// Where the keyboard goes.
    QWidget* FocusTarget() const;

    static constexpr int RestMilliseconds = 120;
    static constexpr int ReadMilliseconds = 1500;

Q_SIGNALS:
    /// It was on show long enough to count as read.
    void WasRead(qint32 reference);
    /// The user chose another size of the text.
    void TextSizeChanged(int steps);

private:
    void Load();
    QString DamageWords() const;
    void TakeReadTime();

    cMessagePtr Selected_;
    cMessagePtr Shown_;
    bool ReportsOnlyChosen_ = false;
    qint32 Chosen_ = 0;
    QStackedLayout* Stack_;
    QLabel* Empty_;
    QWidget* Page_;
    NoticeBar* Stored_;
    NoticeBar* Damage_;
    uMessageBasic* View_;
    AttachmentList* Attachments_;
    std::function<QString(qint32)> DamageAdvice_;
    QTimer RestTimer_;
    QTimer ReadTimer_;
};
