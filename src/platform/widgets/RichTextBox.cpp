// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/RichTextBox.h"

#include "platform/widgets/Contrast.h"
#include "platform/widgets/SystemColour.h"

#include <QGuiApplication>
#include <QSyntaxHighlighter>
#include <QTextBlock>
#include <QTextDocument>

namespace
{
constexpr int ProtectedProperty = QTextFormat::UserProperty + 1;
constexpr int ColourProperty = QTextFormat::UserProperty + 2;

/// How much of the highlight's colour is in the ground of a run.
constexpr double RunShade = 0.16;

bool IsProtected(const QTextFormat& format)
{
    return format.boolProperty(ProtectedProperty);
}

qint32 ColourOf(const QTextFormat& format)
{
    return format.hasProperty(ColourProperty) ? format.intProperty(ColourProperty) : SystemColour::WindowText;
}
} // namespace

/// Colours the text for the eye alone: the document holds the colours that were set, and they stay readable when the
/// desktop's theme changes, without anything to undo.
class RichTextBox::Painter : public QSyntaxHighlighter
{
public:
    explicit Painter(RichTextBox& box) : QSyntaxHighlighter(box.document()), Box_(box) {}

    bool ShowsRuns = false;

protected:
    void highlightBlock(const QString&) override
    {
        const QColor ground = Box_.palette().color(QPalette::Base);
        const QColor shade =
            Contrast::Blend(ground, Box_.palette().color(QPalette::Highlight), ShowsRuns ? RunShade : 0.0);
        const QTextBlock block = currentBlock();
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment fragment = it.fragment();
            const QTextCharFormat form = fragment.charFormat();
            const bool isRun = ShowsRuns && IsProtected(form);
            const qint32 colour = ColourOf(form);
            QTextCharFormat shown;
            if (isRun)
                shown.setBackground(shade);
            if (colour != SystemColour::WindowText) {
                shown.setForeground(
                    Contrast::Readable(SystemColour::ToColour(colour, Box_.palette()), isRun ? shade : ground));
            }
            if (shown.propertyCount() > 0)
                setFormat(fragment.position() - block.position(), fragment.length(), shown);
        }
    }

private:
    RichTextBox& Box_;
};

RichTextBox::RichTextBox(QWidget* parent)
    : QTextEdit(parent), BackColor_(SystemColour::WindowBackground), Painter_(new Painter(*this))
{
    setAcceptRichText(false);
    connect(document(), &QTextDocument::contentsChanged, this, &RichTextBox::TakeText);
}

RichTextBox::~RichTextBox()
{
    // It looks at this box while the document goes.
    delete Painter_;
}

QString RichTextBox::Text() const
{
    return Holds_ == 0 ? Text_ : DocumentText();
}

QString RichTextBox::DocumentText() const
{
    QString text = document()->toRawText();
    text.replace(QChar::ParagraphSeparator, u'\n').replace(QChar::LineSeparator, u'\n');
    return text;
}

void RichTextBox::TakeText()
{
    const QString text = DocumentText();
    if (IsTaken_ || Holds_ > 0 || text == Text_)
        return;
    Text_ = text;
    Q_EMIT Change();
}

QTextCursor RichTextBox::Cursor() const
{
    return Holds_ == 0 ? textCursor() : Held_;
}

void RichTextBox::SetCursor(const QTextCursor& cursor)
{
    if (Holds_ == 0)
        setTextCursor(cursor);
    else
        Held_ = cursor;
}

RichTextBox::Hold::Hold(RichTextBox& box) : Box_(box)
{
    if (Box_.Holds_ == 0)
        Box_.Held_ = Box_.textCursor();
    ++Box_.Holds_;
    QTextCursor(Box_.document()).beginEditBlock();
}

RichTextBox::Hold::~Hold()
{
    const QTextCursor cursor = Box_.Held_;
    --Box_.Holds_;
    const bool isLast = Box_.Holds_ == 0;
    // Whoever hears of the change asks the box, which must have its selection by then.
    Box_.IsTaken_ = isLast;
    QTextCursor(Box_.document()).endEditBlock();
    Box_.IsTaken_ = false;
    if (!isLast)
        return;
    const QTextCursor own = Box_.textCursor();
    if (own.position() != cursor.position() || own.anchor() != cursor.anchor() ||
        own.charFormat() != cursor.charFormat())
        Box_.setTextCursor(cursor);
    Box_.TakeText();
}

void RichTextBox::Replace(const QList<RichTextFormat::Piece>& pieces)
{
    const Hold hold(*this);
    QTextCursor cursor(document());
    cursor.select(QTextCursor::Document);
    cursor.removeSelectedText();
    for (const RichTextFormat::Piece& piece : pieces) {
        QTextCharFormat form;
        if (piece.Protected)
            form.setProperty(ProtectedProperty, true);
        if (piece.Colour)
            form.setProperty(ColourProperty, *piece.Colour);
        cursor.insertText(piece.Text, form);
    }
    cursor.setPosition(0);
    cursor.setCharFormat(QTextCharFormat());
    SetCursor(cursor);
}

void RichTextBox::SetText(const QString& text)
{
    Replace({RichTextFormat::Piece{text, false, std::nullopt}});
    document()->clearUndoRedoStacks();
}

QString RichTextBox::TextRTF() const
{
    QList<RichTextFormat::Piece> pieces;
    const auto add = [&pieces](const QString& text, const QTextCharFormat& form) {
        const qint32 colour = ColourOf(form);
        pieces.append({text, IsProtected(form),
                       SystemColour::IsSystemColour(colour) ? std::nullopt : std::optional<qint32>(colour)});
    };
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        if (block.position() > 0)
            add(QStringLiteral("\n"), FormatAt(block.position() - 1));
        for (auto it = block.begin(); !it.atEnd(); ++it)
            add(it.fragment().text().replace(QChar::LineSeparator, u'\n'), it.fragment().charFormat());
    }
    return RichTextFormat::Write(pieces);
}

void RichTextBox::SetTextRTF(const QString& text)
{
    if (!text.isEmpty()) {
        Replace(RichTextFormat::Read(text));
        document()->clearUndoRedoStacks();
        return;
    }
    QTextCursor cursor(document());
    if (!document()->isEmpty()) {
        // What is left of a text after the user has cleared it goes with what the user did, not as a step of its own.
        if (DocumentText().trimmed().isEmpty() && document()->isUndoAvailable() && Holds_ == 0)
            cursor.joinPreviousEditBlock();
        else
            cursor.beginEditBlock();
        cursor.select(QTextCursor::Document);
        cursor.removeSelectedText();
        cursor.endEditBlock();
    }
    cursor = Cursor();
    cursor.setCharFormat(QTextCharFormat());
    SetCursor(cursor);
}

int RichTextBox::Bounded(int position) const
{
    return qBound(0, position, document()->characterCount() - 1);
}

int RichTextBox::SelStart() const
{
    return Cursor().selectionStart();
}

void RichTextBox::SetSelStart(int position)
{
    QTextCursor cursor = Cursor();
    cursor.setPosition(Bounded(position));
    SetCursor(cursor);
}

int RichTextBox::SelLength() const
{
    const QTextCursor cursor = Cursor();
    return cursor.selectionEnd() - cursor.selectionStart();
}

void RichTextBox::SetSelLength(int length)
{
    QTextCursor cursor = Cursor();
    const int start = cursor.selectionStart();
    cursor.setPosition(start);
    cursor.setPosition(Bounded(start + qMax(length, 0)), QTextCursor::KeepAnchor);
    SetCursor(cursor);
}

QString RichTextBox::SelText() const
{
    return Text().mid(SelStart(), SelLength());
}

void RichTextBox::SetSelText(const QString& text)
{
    const Hold hold(*this);
    QTextCharFormat form = FormatAt(qMax(SelStart() - 1, 0));
    form.clearProperty(ProtectedProperty);
    Held_.insertText(text, form);
}

std::optional<qint32> RichTextBox::SelColor() const
{
    const int length = SelLength();
    if (length == 0)
        return ColourOf(FormatAt(qMax(SelStart() - 1, 0)));
    const qint32 colour = ColourOf(FormatAt(SelStart()));
    for (int i = SelStart() + 1; i < SelStart() + length; ++i) {
        if (ColourOf(FormatAt(i)) != colour)
            return std::nullopt;
    }
    return colour;
}

void RichTextBox::SetSelColor(qint32 colour)
{
    QTextCharFormat form;
    form.setProperty(ColourProperty, colour);
    const Hold hold(*this);
    Held_.mergeCharFormat(form);
}

std::optional<bool> RichTextBox::SelProtected() const
{
    const int start = SelStart();
    const int length = SelLength();
    if (length == 0)
        return document()->isEmpty() ? IsProtected(Cursor().charFormat()) : IsProtectedAt(qMax(start - 1, 0));
    const bool isProtected = IsProtectedAt(start);
    for (int i = start + 1; i < start + length; ++i) {
        if (IsProtectedAt(i) != isProtected)
            return std::nullopt;
    }
    return isProtected;
}

void RichTextBox::SetSelProtected(bool isProtected)
{
    QTextCursor cursor = Cursor();
    if (!cursor.hasSelection()) {
        QTextCharFormat form = cursor.charFormat();
        if (isProtected)
            form.setProperty(ProtectedProperty, true);
        else
            form.clearProperty(ProtectedProperty);
        if (form == cursor.charFormat())
            return;
        cursor.setCharFormat(form);
        return SetCursor(cursor);
    }
    // Text that is about to be replaced needs none, and undo could not tell the caret's place after both.
    if (IsReplacing_) {
        StateWanted_ = isProtected;
        return;
    }
    // Text that is so already needs no step for undo.
    if (SelProtected() == isProtected)
        return;
    QTextCharFormat form;
    form.setProperty(ProtectedProperty, isProtected);
    const Hold hold(*this);
    Held_.mergeCharFormat(form);
}

QTextCharFormat RichTextBox::FormatAt(int position) const
{
    if (position < 0 || position >= document()->characterCount() - 1)
        return {};
    QTextCursor cursor(document());
    cursor.setPosition(position + 1);
    // A cursor at a line's beginning answers for the character behind it.
    if (!cursor.atBlockStart())
        return cursor.charFormat();
    return cursor.blockCharFormat();
}

bool RichTextBox::IsProtectedAt(int position) const
{
    return IsProtected(FormatAt(position));
}

std::optional<std::pair<int, int>> RichTextBox::RunAround(int position) const
{
    const int last = document()->characterCount() - 1;
    if (position <= 0 || position >= last || !IsProtectedAt(position - 1) || !IsProtectedAt(position))
        return std::nullopt;
    int start = position;
    while (start > 0 && IsProtectedAt(start - 1))
        --start;
    int end = position;
    while (end < last && IsProtectedAt(end))
        ++end;
    return std::pair(start, end);
}

int RichTextBox::PlaceBehind(int position) const
{
    QTextCursor cursor(document());
    cursor.setPosition(Bounded(position));
    cursor.movePosition(QTextCursor::NextCharacter);
    return cursor.position();
}

void RichTextBox::WidenSelection()
{
    const int length = SelLength();
    if (length == 0)
        return;
    int start = SelStart();
    int end = start + length;
    if (const auto run = RunAround(start))
        start = run->first;
    else if (start > 0 && document()->characterAt(start).isLowSurrogate())
        --start;
    if (const auto run = RunAround(end))
        end = run->second;
    else if (document()->characterAt(end).isLowSurrogate())
        ++end;
    if (start == SelStart() && end == SelStart() + length)
        return;
    const Hold hold(*this);
    SetSelStart(start);
    SetSelLength(end - start);
}

void RichTextBox::RemoveSelection()
{
    if (SelLength() == 0)
        return;
    const Hold hold(*this);
    WidenSelection();
    Held_.removeSelectedText();
}

void RichTextBox::SetBorderStyle(BorderStyles style)
{
    setFrameShape(style == None ? QFrame::NoFrame : QFrame::StyledPanel);
}

void RichTextBox::SetBackColor(qint32 colour)
{
    BackColor_ = colour;
    ApplyColours();
}

void RichTextBox::SetMousePointer(MousePointers pointer)
{
    MousePointer_ = pointer;
    viewport()->setCursor(pointer == CustomPointer ? Qt::PointingHandCursor : Qt::IBeamCursor);
}

void RichTextBox::SetShowsRuns(bool show)
{
    Painter_->ShowsRuns = show;
    Painter_->rehighlight();
}

/// The colours of the theme that this box has not made its own come from its parent.
void RichTextBox::ApplyColours()
{
    const QPalette theme = parentWidget() ? parentWidget()->palette() : QGuiApplication::palette();
    const QColor ground = SystemColour::ToColour(BackColor_, theme);
    const QColor text = Contrast::Readable(theme.color(QPalette::Text), ground);
    if (palette().color(QPalette::Base) != ground || palette().color(QPalette::Text) != text) {
        QPalette own = palette();
        own.setColor(QPalette::Base, ground);
        own.setColor(QPalette::Active, QPalette::Text, text);
        own.setColor(QPalette::Inactive, QPalette::Text, text);
        setPalette(own);
    }
    Painter_->rehighlight();
}
