// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/widgets/RichTextFormat.h"

#include <QTextCursor>
#include <QTextEdit>

#include <functional>
#include <optional>
#include <utility>

class QMenu;

/// A box of text in which runs of characters can be protected: the user takes a run away whole or not at all, and types
/// nothing into it. Everything the user puts in (by key, input method, paste, drop) is plain and unprotected; nothing
/// is dragged out of a run. Positions count UTF-16 units, and a line's end is one of them. One undo step brings back
/// what one action of the user, or one Hold, changed.
class RichTextBox : public QTextEdit
{
    Q_OBJECT
    Q_PROPERTY(qint32 BackColor READ BackColor WRITE SetBackColor)
    Q_PROPERTY(BorderStyles BorderStyle READ BorderStyle WRITE SetBorderStyle)
    Q_PROPERTY(bool Locked READ Locked WRITE SetLocked)
    Q_PROPERTY(MousePointers MousePointer READ MousePointer WRITE SetMousePointer)
    Q_PROPERTY(QString Tag READ Tag WRITE SetTag)
    Q_PROPERTY(QString Text READ Text WRITE SetText)
    Q_PROPERTY(QString TextRTF READ TextRTF WRITE SetTextRTF)

public:
    enum BorderStyles
    {
        None,
        FixedSingle
    };
    Q_ENUM(BorderStyles)

    enum MousePointers
    {
        DefaultPointer = 0,
        CustomPointer = 99 ///< The hand that shows that something can be clicked.
    };
    Q_ENUM(MousePointers)

    explicit RichTextBox(QWidget* parent = nullptr);
    ~RichTextBox() override;

    /// Lines end with "\n".
    QString Text() const;
    /// Plain text, whatever it looks like. Nothing can be undone afterwards.
    void SetText(const QString& text);
    /// The text with its protection and colours, as RichTextFormat writes it.
    QString TextRTF() const;
    /// Takes what RichTextFormat reads; anything else is plain text. Nothing can be undone afterwards, but for an empty
    /// text: that takes away text and forms, and undo brings them back.
    void SetTextRTF(const QString& text);

    /// The place of the caret, or where the selection begins.
    int SelStart() const;
    /// Ends the selection. What is out of the text is brought to its ends, also below.
    void SetSelStart(int position);
    int SelLength() const;
    void SetSelLength(int length);
    QString SelText() const;
    /// Puts the text in the selection's place, unprotected, and the caret behind it.
    void SetSelText(const QString& text);
    /// The colour of the selected text, as SystemColour has colours; null when there are several. Without a selection
    /// that of the character before the caret.
    std::optional<qint32> SelColor() const;
    void SetSelColor(qint32 colour);
    /// Whether the selected text is protected; null when a part is. Without a selection it is the state of the
    /// character before the caret; at the beginning of the text that of the first character.
    std::optional<bool> SelProtected() const;
    /// Without a selection it holds for what is put in next at the caret.
    void SetSelProtected(bool isProtected);

    /// The character behind that position. False behind the last one.
    bool IsProtectedAt(int position) const;
    /// The run that a position lies in, between two protected characters: its first position and the one behind it.
    /// Nothing for a position at a run's end or outside.
    std::optional<std::pair<int, int>> RunAround(int position) const;
    /// The next place of the caret: behind the whole character, whatever it is made of.
    int PlaceBehind(int position) const;
    /// Makes the selection larger so that no run and no character is in it by half.
    void WidenSelection();
    /// Takes the selected text away, and all of the runs that it touches.
    void RemoveSelection();

    bool Locked() const { return isReadOnly(); }
    void SetLocked(bool locked) { setReadOnly(locked); }
    BorderStyles BorderStyle() const { return frameShape() == QFrame::NoFrame ? None : FixedSingle; }
    void SetBorderStyle(BorderStyles style);
    /// As SystemColour has them; the text is drawn in a colour that can be read on it.
    qint32 BackColor() const { return BackColor_; }
    void SetBackColor(qint32 colour);
    MousePointers MousePointer() const { return MousePointer_; }
    void SetMousePointer(MousePointers pointer);
    const QString& Tag() const { return Tag_; }
    void SetTag(const QString& tag) { Tag_ = tag; }

    /// Whether protected runs stand on a ground of their own, so that they can be told from typed text.
    void SetShowsRuns(bool show);
    /// What becomes of a text that is pasted or dropped; nothing when it is not set.
    void SetPasteFilter(std::function<QString(const QString&)> filter) { PasteFilter_ = std::move(filter); }

    /// While one lives, what the program does to text and selection is one step for undo, and is shown at its end. They
    /// can be nested. No longer than the box.
    class Hold
    {
    public:
        explicit Hold(RichTextBox& box);
        ~Hold();
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;

    private:
        RichTextBox& Box_;
    };

public Q_SLOTS:
    /// The user's commands; each keeps the rules for runs.
    void Cut();
    void Delete();
    void Undo();
    void Redo();

Q_SIGNALS:
    /// The text is another; not for a change of forms alone.
    void Change();
    /// Before the box obeys a key; setting key to 0 makes it ignore it. Connect directly. Keys that only change the
    /// meaning of others (such as Shift) are not reported.
    void KeyDown(int& key, Qt::KeyboardModifiers modifiers);
    /// Before and after the box obeys; the point is in pixels of its viewport.
    void MouseDown(Qt::MouseButton button, const QPoint& point);
    void MouseUp(Qt::MouseButton button, const QPoint& point);

    /// The menu of the box is about to show; what belongs to it is added at its end. place is the position it is about:
    /// under the mouse, or that of the caret when a key asked for it. Connect directly.
    void MenuWanted(QMenu* menu, int place);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool canInsertFromMimeData(const QMimeData* source) const override;
    void insertFromMimeData(const QMimeData* source) override;
    void changeEvent(QEvent* event) override;

private:
    class Painter;

    QString DocumentText() const;
    QTextCursor Cursor() const;
    void SetCursor(const QTextCursor& cursor);
    int Bounded(int position) const;
    QTextCharFormat FormatAt(int position) const;
    void Replace(const QList<RichTextFormat::Piece>& pieces);
    void TakeText();
    void ApplyColours();
    bool PrepareForInput();
    void PutInPlaceOfSelection(QKeyEvent& event);
    bool ObeyCommand(QKeyEvent& event);
    void StepInHistory(void (QTextDocument::*step)());
    void RemoveTo(QTextCursor::MoveOperation operation);

    QString Text_;
    QString Tag_;
    qint32 BackColor_;
    MousePointers MousePointer_ = DefaultPointer;
    std::function<QString(const QString&)> PasteFilter_;
    Painter* Painter_;
    int Holds_ = 0;
    bool IsTaken_ = false; ///< The end of a Hold tells of the change itself.
    bool IsReplacing_ = false;
    std::optional<bool> StateWanted_; ///< Of the selection that is about to be replaced.
    QTextCursor Held_;                ///< The selection while a Hold lives; the box's own follows at its end.
};
