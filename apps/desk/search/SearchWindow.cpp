// SPDX-License-Identifier: Apache-2.0
#include "SearchWindow.h"

#include "DeskSettings.h"
#include "FolderPaths.h"
#include "RowRecovery.h"
#include "SearchRows.h"
#include "SearchService.h"
#include "messages/AttachmentList.h"
#include "messages/PreviewPane.h"
#include "platform/widgets/Icons.h"
#include "station/DeskStation.h"
#include "window/NoticeBar.h"

#include <QAbstractItemView>
#include <QAction>
#include <QCloseEvent>
#include <QCompleter>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMenuBar>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QSplitter>
#include <QStatusBar>
#include <QStringListModel>
#include <QTreeView>
#include <QVBoxLayout>

namespace
{
const QString SavedState = QStringLiteral("SavedSearches");
const QString SearchGeometry = QStringLiteral("SearchWindow/Geometry");
constexpr int MostSaved = 30;
constexpr int PersonWidth = 150;
constexpr int FolderWidth = 110;
constexpr qsizetype LeastToComplete = 2;
} // namespace

SearchWindow::SearchWindow(DeskStation& station, SearchService& service, DeskSettings& settings)
    : Station_(station),
      Service_(service),
      Settings_(settings),
      Field_(new QLineEdit(this)),
      Count_(new QLabel(this)),
      Related_(new NoticeBar(QStringLiteral("search"), tr("Search &all"), this)),
      Problem_(new NoticeBar(QStringLiteral("warning"), QString(), this)),
      List_(new QTreeView(this)),
      Nothing_(new QLabel(List_->viewport())),
      Model_(new SearchModel(this)),
      Marks_(new HitDelegate(List_)),
      Preview_(new PreviewPane(this))
{
    setObjectName(QStringLiteral("searchWindow"));
    setWindowTitle(tr("Search all messages"));
    Field_->setObjectName(QStringLiteral("searchField"));
    Field_->setPlaceholderText(tr("Words in any message; from:  to:  in:  before:  after:  has:attachment  is:unread"));
    Field_->setAccessibleName(tr("Search all messages"));
    Field_->setClearButtonEnabled(true);
    Field_->installEventFilter(this);
    auto* completer = new QCompleter(new QStringListModel(this), this);
    completer->setCompletionMode(QCompleter::PopupCompletion);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    Field_->setCompleter(completer);
    Count_->setObjectName(QStringLiteral("searchCount"));
    Related_->setObjectName(QStringLiteral("searchRelated"));
    Problem_->setObjectName(QStringLiteral("searchProblem"));
    List_->setObjectName(QStringLiteral("searchList"));
    List_->setAccessibleName(tr("Messages that were found"));
    List_->setRootIsDecorated(false);
    List_->setUniformRowHeights(true);
    List_->setAllColumnsShowFocus(true);
    List_->setAlternatingRowColors(false);
    List_->setModel(Model_);
    List_->setItemDelegate(Marks_);
    List_->header()->setStretchLastSection(false);
    List_->header()->setSectionResizeMode(SearchModel::colSubject, QHeaderView::Stretch);
    List_->header()->setSectionResizeMode(SearchModel::colSent, QHeaderView::ResizeToContents);
    // Those on show tell how wide dates are: all are about the same.
    List_->header()->setResizeContentsPrecision(0);
    List_->header()->resizeSection(SearchModel::colPerson, PersonWidth);
    List_->header()->resizeSection(SearchModel::colFolder, FolderWidth);

    Nothing_->setObjectName(QStringLiteral("searchNothing"));
    Nothing_->setTextFormat(Qt::PlainText);
    Nothing_->setAlignment(Qt::AlignCenter);
    Nothing_->setWordWrap(true);
    Nothing_->setForegroundRole(QPalette::PlaceholderText);
    auto* inList = new QVBoxLayout(List_->viewport());
    inList->addWidget(Nothing_);

    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->addWidget(List_);
    splitter->addWidget(Preview_);
    splitter->setChildrenCollapsible(false);
    splitter->setSizes({640, 420});
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    layout->addWidget(Field_);
    layout->addWidget(MakeFilters());
    layout->addWidget(Related_);
    layout->addWidget(Problem_);
    layout->addWidget(splitter, 1);
    setCentralWidget(page);
    MakeMenu();
    resize(1080, 640);
    restoreGeometry(Settings_.State(SearchGeometry));

    Preview_->SetShowsSentDate(true); // as the rows do
    Preview_->SetReportsOnlyChosen(true);
    TypingTimer_.setSingleShot(true);
    TypingTimer_.setInterval(TypingMilliseconds);
    Preview_->SetDamageAdvice([this](qint32 reference) {
        return RowRecovery::Advice(Station_.Folder(), RowRecovery::Kind::Message, reference);
    });
    connect(Preview_, &PreviewPane::WasRead, this, &SearchWindow::WasRead);
    connect(&Preview_->Attachments(), &AttachmentList::Saved, this,
            [this](const QString& words) { statusBar()->showMessage(words); });
    connect(&TypingTimer_, &QTimer::timeout, this, &SearchWindow::Ask);
    connect(Field_, &QLineEdit::textChanged, this, [this] {
        IsNewQuestion_ = true;
        OpensFirst_ = false;
        TypingTimer_.start();
    });
    connect(Field_, &QLineEdit::textEdited, this, &SearchWindow::Complete);
    connect(Field_, &QLineEdit::returnPressed, this, [this] {
        const QAbstractItemView* offers = Field_->completer()->popup();
        // The key takes what is offered, and opens nothing.
        if (!offers->isVisible() || !offers->currentIndex().isValid())
            OpenFound();
    });
    connect(List_, &QTreeView::activated, this, &SearchWindow::OpenSelected);
    connect(List_, &QTreeView::clicked, this, &SearchWindow::Choose);
    connect(List_->selectionModel(), &QItemSelectionModel::currentRowChanged, this, &SearchWindow::TakeSelection);
    connect(Related_, &NoticeBar::ButtonClicked, this, [this] { SearchRelated({}, QString()); });
    connect(&Service_, &SearchService::Found, this, &SearchWindow::TakeResult);
    // New mail joins what is on show, and what was erased goes.
    connect(&Service_, &SearchService::Changed, this, [this] {
        if (isVisible() && !TypingTimer_.isActive())
            TypingTimer_.start();
    });
    connect(&Service_, &SearchService::StateChanged, this, &SearchWindow::ShowState);
    ShowState();
}

void SearchWindow::MakeMenu()
{
    auto* menu = menuBar()->addMenu(tr("&Search"));
    QAction* save =
        menu->addAction(tr("&Save this search"), QKeySequence(Qt::CTRL | Qt::Key_S), this, &SearchWindow::SaveSearch);
    save->setObjectName(QStringLiteral("saveSearch"));
    auto* saved = menu->addMenu(tr("Sa&ved searches"));
    saved->setObjectName(QStringLiteral("savedSearches"));
    connect(saved, &QMenu::aboutToShow, this, [this, saved] { FillSavedMenu(*saved); });
    menu->addSeparator();
    menu->addAction(tr("&Close"), QKeySequence(Qt::CTRL | Qt::Key_W), this, &QWidget::close);
}

void SearchWindow::FillSavedMenu(QMenu& menu)
{
    menu.clear();
    for (const QString& typed : Saved()) {
        QString text = typed;
        menu.addAction(text.replace(u'&', QStringLiteral("&&")), this, [this, typed] { Search(typed); });
    }
    if (menu.isEmpty()) {
        menu.addAction(tr("None yet"))->setEnabled(false);
        return;
    }
    menu.addSeparator();
    QAction* forget = menu.addAction(tr("&Forget the one on show"), this, [this] {
        QStringList saved = Saved();
        saved.removeAll(Typed());
        SetSaved(saved);
    });
    forget->setEnabled(Saved().contains(Typed()));
}

QStringList SearchWindow::Saved() const
{
    return QString::fromUtf8(Settings_.State(SavedState)).split(u'\n', Qt::SkipEmptyParts);
}

void SearchWindow::SetSaved(const QStringList& saved)
{
    Settings_.SetState(SavedState, saved.mid(0, MostSaved).join(u'\n').toUtf8());
}

void SearchWindow::SaveSearch()
{
    if (Typed().isEmpty())
        return;
    QStringList saved = Saved();
    saved.removeAll(Typed());
    saved.prepend(Typed());
    SetSaved(saved);
    statusBar()->showMessage(tr("Saved. It stands in the menu Search."));
}

QString SearchWindow::Typed() const
{
    return Field_->text().trimmed();
}

qint32 SearchWindow::SelectedReference() const
{
    return Model_->ReferenceAt(List_->currentIndex().row());
}

void SearchWindow::Begin()
{
    Service_.Start();
    if (isMinimized())
        showNormal();
    show();
    raise();
    activateWindow();
    Field_->setFocus(Qt::ShortcutFocusReason);
    Field_->selectAll();
}

void SearchWindow::Search(const QString& typed)
{
    RelatedTerms_.clear();
    Related_->Show(QString());
    Begin();
    Field_->setText(typed);
    Field_->deselect();
    Ask();
}

void SearchWindow::SearchRelated(const QList<QByteArray>& terms, const QString& words)
{
    RelatedTerms_ = terms;
    IsNewQuestion_ = true;
    Related_->Show(words);
    Begin();
    Field_->clear();
    Ask();
}

void SearchWindow::Ask()
{
    TypingTimer_.stop();
    Asked_ = SearchQuestion::Of(Field_->text(), SearchQuestion::Reading::Typing);
    Asked_.AnyOf = RelatedTerms_;
    if (Asked_.IsEmpty()) {
        IsWaiting_ = false;
        AskedNumber_ = 0;
        TakeResult(0, {});
        return;
    }
    IsWaiting_ = true;
    AskedNumber_ = Service_.Search(SearchService::Asker::SearchWindow, Asked_, OptionsOf(Asked_));
}

void SearchWindow::TakeResult(int search, const SearchResult& result)
{
    if (search != AskedNumber_)
        return;
    IsWaiting_ = !result.IsFinal;
    const bool isOnShow = search != 0 && search == ShownNumber_ && result.Hits == Result_.Hits;
    Result_ = result;
    ShownNumber_ = search;
    if (!isOnShow)
        ShowRows();
    FillFolders(result);
    FillKinds(result);
    FillTimes(result);
    ShowState();
    if (!IsWaiting_ && std::exchange(OpensFirst_, false))
        OpenSelected();
}

/// Those of the result, as the station has them now.
void SearchWindow::ShowRows()
{
    // What is another question has another first hit.
    const qint32 selected = std::exchange(IsNewQuestion_, false) ? 0 : SelectedReference();
    QList<SearchRow> rows;
    try {
        rows = ReadSearchRows(Station_.Database(), Result_.Hits);
        Problem_->Show(Service_.Problem());
    } catch (const dao::Error& error) {
        ShownNumber_ = 0;
        Problem_->Show(Station_.Words(error.Number(), error.Description()));
    }
    const QList<SearchWords::Alternatives> wanted = Asked_.Words + Asked_.Sender + Asked_.Recipients;
    Marks_->SetWanted(wanted);
    Preview_->SetMarker([wanted](const QString& text) {
        QList<std::pair<qsizetype, qsizetype>> places;
        for (const SearchWords::Place& place : SearchWords::PlacesOf(text, wanted))
            places.append({place.Begin, place.Size});
        return places;
    });
    const int scrolled = List_->verticalScrollBar()->value();
    const QScopedValueRollback<bool> filling(IsFilling_, true);
    Model_->SetRows(rows, FolderPaths(Station_.Database().MessageCategories()));
    const int row = Model_->RowOf(selected);
    List_->setCurrentIndex(Model_->index(std::max(0, row), 0));
    if (row > 0)
        List_->verticalScrollBar()->setValue(scrolled);
    if (Model_->rowCount() == 0)
        TakeSelection();
}

/// Of what is on show. While it is counted the number is one that is surpassed.
QString SearchWindow::CountInWords() const
{
    const QString count = QLocale().toString(Result_.Count);
    const bool isCut = Model_->rowCount() == MostRows && (Result_.Count > MostRows || !Result_.IsCounted);
    if (isCut) {
        const QString most = QLocale().toString(MostRows);
        return Result_.IsCounted ? tr("The first %1 of %2 messages").arg(most, count)
                                 : tr("The first %1 of more than %2 messages").arg(most, count);
    }
    if (!Result_.IsCounted)
        return tr("%1 so far").arg(QLocale().toString(Model_->rowCount()));
    if (Result_.Count == 0)
        return tr("No messages");
    return Model_->rowCount() == 1 ? tr("1 message") : tr("%1 messages").arg(QLocale().toString(Model_->rowCount()));
}

/// Why the list is empty, and what to do; empty where it is not, or may not stay so.
QString SearchWindow::NothingInWords() const
{
    if (Model_->rowCount() > 0 || IsWaiting_ || !Problem_->isHidden())
        return QString();
    if (Asked_.IsEmpty())
        return tr("Type a word of a message, a name or a number.");
    if (!Service_.IsComplete())
        return tr("None so far. Not all messages have been looked at yet.");
    if (Result_.Count > 0)
        return tr("The messages that had this were deleted meanwhile.");
    if (HasFilters())
        return tr("No such message is in what is chosen above. Choose all folders, all kinds and any time to look "
                  "everywhere.");
    if (!RelatedTerms_.isEmpty() && Typed().isEmpty())
        return tr("No message belongs to that. \u201CSearch all\u201D above looks among all messages.");
    return tr("No message has all of this. Try fewer words, or only their beginnings.");
}

void SearchWindow::ShowState()
{
    QStringList words;
    if (!Asked_.IsEmpty() && (!IsWaiting_ || !Result_.IsCounted))
        words.append(CountInWords());
    if (Asked_.IsCut)
        words.append(tr("only the beginning is searched for"));
    if (!Service_.IsComplete() && Service_.Problem().isEmpty())
        words.append(tr("first %1 percent searched").arg(Service_.Percent()));
    Count_->setText(words.join(QStringLiteral(" \u00B7 ")));
    if (!Service_.Problem().isEmpty())
        Problem_->Show(Service_.Problem());
    Nothing_->setText(NothingInWords());
}

void SearchWindow::TakeSelection()
{
    const qint32 reference = SelectedReference();
    if (Preview_->Message() && reference == Preview_->Message()->Reference())
        return;
    try {
        Preview_->Select(reference > 0 ? Station_.Database().ReadMessage(reference) : nullptr);
        if (List_->hasFocus() && !IsFilling_)
            Choose();
    } catch (const dao::Error& error) {
        Preview_->Select(nullptr);
        Problem_->Show(Station_.Words(error.Number(), error.Description()));
    }
}

/// The user is in the list: what is selected there is what he reads.
void SearchWindow::Choose()
{
    const qint32 reference = SelectedReference();
    if (reference > 0)
        Preview_->Choose(reference);
}

/// Whoever types faster than it is found gets the first hit when it comes.
void SearchWindow::OpenFound()
{
    if (IsSettled()) {
        OpenSelected();
        return;
    }
    OpensFirst_ = true;
    if (TypingTimer_.isActive())
        Ask();
}

void SearchWindow::OpenSelected()
{
    const qint32 reference = SelectedReference();
    if (reference > 0)
        Q_EMIT MessageWanted(reference);
}

/// Offers the prefixes that a word may be the beginning of.
void SearchWindow::Complete()
{
    const QString text = Field_->text();
    const qsizetype begin = text.lastIndexOf(u' ') + 1;
    QStringList completions;
    if (Field_->cursorPosition() == text.size() && text.size() - begin >= LeastToComplete) {
        for (const QString& prefix : SearchPrefixes()) {
            if (prefix.startsWith(text.mid(begin), Qt::CaseInsensitive) && prefix.size() > text.size() - begin)
                completions.append(text.left(begin) + prefix);
        }
    }
    static_cast<QStringListModel*>(Field_->completer()->model())->setStringList(completions);
}

bool SearchWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == Field_ && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if ((key->key() == Qt::Key_Down || key->key() == Qt::Key_PageDown) && Model_->rowCount() > 0) {
            List_->setFocus(Qt::TabFocusReason);
            Choose();
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void SearchWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape) {
        close();
        Q_EMIT Left();
        return;
    }
    QMainWindow::keyPressEvent(event);
}

void SearchWindow::closeEvent(QCloseEvent* event)
{
    OpensFirst_ = false;
    Settings_.SetState(SearchGeometry, saveGeometry());
    QMainWindow::closeEvent(event);
}
