// SPDX-License-Identifier: Apache-2.0
#include "AddressBox.h"

#include "AddressPopups.h"
#include "Addresses.h"
#include "platform/widgets/SystemColour.h"

#include <QAbstractTextDocumentLayout>
#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QRegularExpression>
#include <QScrollBar>

#include <utility>

namespace
{
constexpr int TextMargin = 3;

/// Lines that are pasted are recipients of their own, and a box of recipients has no lines.
QString OnOneLine(const QString& text)
{
    static const QRegularExpression lineEnd(QStringLiteral("[\\r\\n\\x{2028}\\x{2029}\\x{0b}\\x{0c}]+"));
    QStringList lines = text.split(lineEnd, Qt::SkipEmptyParts);
    lines.removeIf([](const QString& line) { return line.trimmed().isEmpty(); });
    QString joined;
    for (const QString& line : lines) {
        const QString words = line.simplified();
        if (!joined.isEmpty())
            joined += joined.endsWith(u',') || joined.endsWith(u';') ? QStringLiteral(" ") : QStringLiteral("; ");
        joined += words;
    }
    // Blanks around a single word may be meant.
    return lines.size() == 1 ? QString(lines.first()).replace(u'\t', u' ') : joined;
}

/// What the control would drop from a name, or a reader take for something else, stays as it was written.
bool MayBeUnit(const QString& name)
{
    return !name.contains(u'"') && !name.contains(u'\\');
}
} // namespace

AddressBox::AddressBox(const QString& name, const QString& accessibleName, QWidget* parent)
    : QWidget(parent),
      Address_(new uMessageAddress(this)),
      Box_(&Address_->Box()),
      List_(new SuggestionList(this)),
      Actions_(new AddressActions(this))
{
    setObjectName(name);
    setAccessibleName(accessibleName);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFocusProxy(Box_);
    Address_->setObjectName(name + QStringLiteral("Addresses"));
    Address_->Settext(QString());
    Address_->SetBackColour(SystemColour::WindowBackground);
    Box_->setAccessibleName(accessibleName);
    Box_->SetShowsRuns(true);
    Box_->SetPasteFilter(OnOneLine);
    Box_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    Box_->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    Box_->document()->setDocumentMargin(TextMargin);
    Box_->installEventFilter(this);

    connect(Address_, &uMessageAddress::Change, this, [this] {
        Actions_->hide();
        Suggest();
        Q_EMIT Changed();
    });
    connect(Address_, &uMessageAddress::AddressClicked, this, &AddressBox::ShowActions);
    connect(Box_, &RichTextBox::MouseUp, this, &AddressBox::KeepSelection);
    Box_->viewport()->installEventFilter(this);
    connect(Box_, &QTextEdit::cursorPositionChanged, this, [this] {
        // The list belongs to the place where it was typed.
        if (SuggestedFor_ != Address_->text().size() || Box_->SelLength() > 0)
            List_->hide();
    });
    connect(Box_->document()->documentLayout(), &QAbstractTextDocumentLayout::documentSizeChanged, this,
            &AddressBox::FitHeight);
    connect(Box_->verticalScrollBar(), &QScrollBar::valueChanged, this, [this] {
        List_->hide();
        Actions_->hide();
    });
    connect(List_, &SuggestionList::RowClicked, this, &AddressBox::Accept);
    connect(Actions_, &AddressActions::CopyWanted, this, [this] {
        QGuiApplication::clipboard()->setText(Actions_->Address());
        Actions_->hide();
    });
    connect(Actions_, &AddressActions::RemoveWanted, this, [this] { Remove(RecipientAt(Box_->SelStart() + 1)); });
    connect(Actions_, &AddressActions::ContactWanted, this, [this] {
        Actions_->hide();
        Q_EMIT ContactWanted(Actions_->Name(), Actions_->Address());
    });
    connect(Box_, &RichTextBox::MenuWanted, this, &AddressBox::AddToMenu);
    FitHeight();
}

AddressBox::~AddressBox() = default;

QString AddressBox::Recipients() const
{
    return Addresses::Normalised(Address_->text(), Type_);
}

void AddressBox::SetRecipients(const QString& recipients, enMsgType type)
{
    Type_ = type;
    {
        const RichTextBox::Hold hold(*Box_);
        Address_->Settext(QString());
        for (const QString& element : Addresses::Split(recipients)) {
            const QString address = Addresses::Bare(element);
            const bool isRead =
                type == emtSMS ? Addresses::IsPlausibleNumber(address) : Addresses::IsPlausible(address);
            QString name = Addresses::DisplayName(element);
            if (name == address)
                name.clear();
            if (isRead && MayBeUnit(name))
                Address_->AddAddress(name, address);
            else
                Box_->SetSelText(element + QStringLiteral("; "));
        }
    }
    Box_->document()->clearUndoRedoStacks();
    IsAwaited_ = false;
    List_->hide();
}

bool AddressBox::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == Box_->viewport() && event->type() == QEvent::MouseButtonRelease)
        TakeRelease();
    if (watched == Box_) {
        if (event->type() == QEvent::KeyPress && TakeKey(static_cast<QKeyEvent&>(*event)))
            return true;
        // Escape and Tab would be taken by the window.
        if (event->type() == QEvent::ShortcutOverride && List_->isVisible() &&
            static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
            event->accept();
            return true;
        }
        if (event->type() == QEvent::FocusOut || event->type() == QEvent::Hide) {
            List_->hide();
            Actions_->hide();
        }
    }
    return QWidget::eventFilter(watched, event);
}

/// Where what is being typed at the caret begins: behind the last separator or recipient.
int AddressBox::FragmentStart() const
{
    const QString text = Address_->text();
    int start = Box_->SelStart();
    while (start > 0 && text.at(start - 1) != u';' && text.at(start - 1) != u',' && !Box_->IsProtectedAt(start - 1))
        --start;
    while (start < Box_->SelStart() && text.at(start).isSpace())
        ++start;
    return start;
}

void AddressBox::SetBook(std::shared_ptr<const AddressBook> book)
{
    Book_ = std::move(book);
    if (std::exchange(IsAwaited_, false))
        Suggest();
}

void AddressBox::Suggest()
{
    IsAwaited_ = !Book_;
    const int caret = Box_->SelStart();
    const QString text = Address_->text();
    const QString behind = text.mid(caret).trimmed();
    const bool isAtEnd = behind.isEmpty() || behind.startsWith(u';') || behind.startsWith(u',');
    if (!Book_ || !Box_->hasFocus() || Box_->SelLength() > 0 || !isAtEnd)
        return List_->hide();
    const int start = FragmentStart();
    SuggestedFor_ = static_cast<int>(text.size());
    QRect line = Box_->cursorRect();
    line.moveTopLeft(Box_->viewport()->mapToGlobal(line.topLeft()));
    List_->Show(Book_->Matching(text.mid(start, caret - start), MostSuggestions), line);
}

void AddressBox::Accept(int row)
{
    const AddressBook::Entry entry = List_->At(row);
    List_->hide();
    const int caret = Box_->SelStart();
    int start = FragmentStart();
    const QString text = Address_->text();
    const RichTextBox::Hold hold(*Box_);
    // The comma goes with it: the control divides with a semicolon of its own.
    const qsizetype before = text.left(start).trimmed().size();
    if (before > 0 && text.at(before - 1) == u',')
        start = static_cast<int>(before) - 1;
    Box_->SetSelStart(start);
    Box_->SetSelLength(caret - start);
    Box_->SetSelText(QString());
    if (MayBeUnit(entry.Name)) {
        Address_->AddAddress(entry.Name, entry.Address);
        return;
    }
    const QString front = text.left(start).trimmed();
    const bool isDivided = front.isEmpty() || front.endsWith(u';');
    Box_->SetSelText((isDivided ? QString() : QStringLiteral("; ")) + Addresses::Mailbox(entry.Name, entry.Address) +
                     QStringLiteral("; "));
}

/// A selection that was drawn with the mouse over more than one recipient stays: the control would take it for a click.
void AddressBox::TakeRelease()
{
    if (Box_->SelLength() > 0 && !RecipientAt(Box_->SelStart() + 1).Holds(Box_->SelStart() + Box_->SelLength()))
        Box_->SetTag(QStringLiteral("1"));
}

/// After the control has seen the mouse button go up.
void AddressBox::KeepSelection()
{
    Box_->SetTag(QStringLiteral("0"));
    Box_->WidenSelection();
}

/// The unit in which that position lies, or at whose end; an empty one where there is none.
AddressBox::Recipient AddressBox::RecipientAt(int place) const
{
    for (const int within : {place, place + 1, place - 1}) {
        if (const auto run = Box_->RunAround(within)) {
            const QString text = Address_->text().mid(run->first, run->second - run->first).trimmed();
            const QString address = Addresses::Bare(text);
            const QString name = Addresses::DisplayName(text);
            return {run->first, run->second, name == address ? QString() : name, address};
        }
    }
    return {};
}

void AddressBox::AddToMenu(QMenu* menu, int place)
{
    const Recipient recipient = RecipientAt(place);
    if (recipient.Address.isEmpty())
        return;
    const auto add = [&](const char* name, const QString& text) {
        QAction* action = menu->addAction(text);
        action->setObjectName(QLatin1String(name));
        return action;
    };
    menu->addSeparator();
    connect(add("copyAddress", tr("Copy &address")), &QAction::triggered, this,
            [recipient] { QGuiApplication::clipboard()->setText(recipient.Address); });
    QAction* remove = add("removeAddress", tr("Re&move recipient"));
    remove->setEnabled(!Address_->Locked());
    connect(remove, &QAction::triggered, this, [this, recipient] { Remove(recipient); });
    connect(add("showContact", tr("C&ontact...")), &QAction::triggered, this,
            [this, recipient] { Q_EMIT ContactWanted(recipient.Name, recipient.Address); });
}

void AddressBox::ShowActions()
{
    // Not as the control tells them: it takes the first bracket for the address's, even where the name has one.
    const Recipient recipient = RecipientAt(Box_->SelStart() + 1);
    QTextCursor front = Box_->textCursor();
    front.setPosition(Box_->SelStart());
    QRect line = Box_->cursorRect(front);
    line.moveTopLeft(Box_->viewport()->mapToGlobal(line.topLeft()));
    Actions_->Show(recipient.Name, recipient.Address, !Address_->Locked(), line);
}

/// With its separator.
void AddressBox::Remove(const Recipient& recipient)
{
    Actions_->hide();
    if (recipient.Address.isEmpty())
        return;
    const RichTextBox::Hold hold(*Box_);
    const bool hasSeparator = Address_->text().mid(recipient.End).startsWith(QStringLiteral("; "));
    Box_->SetSelStart(recipient.Start);
    Box_->SetSelLength(recipient.End - recipient.Start + (hasSeparator ? 2 : 0));
    Box_->RemoveSelection();
}

void AddressBox::FitHeight()
{
    const int line = Box_->fontMetrics().lineSpacing();
    const int frame = 2 * Box_->frameWidth() + 2 * TextMargin;
    const int text = static_cast<int>(Box_->document()->size().height()) - 2 * TextMargin;
    const int most = MostLines * line;
    const int height = qBound(line, text, most) + frame;
    Box_->setVerticalScrollBarPolicy(text > most ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
    if (height != this->height() || height != minimumHeight())
        setFixedHeight(height);
}

void AddressBox::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    Address_->setGeometry(rect());
    List_->hide();
    Actions_->hide();
}
