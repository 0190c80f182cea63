// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessage.h"
#include "messages/search/SearchQuestion.h"
#include "messages/search/SearchResult.h"

#include <QMainWindow>
#include <QTimer>

class DeskSettings;
class DeskStation;
class HitDelegate;
class NoticeBar;
class PreviewPane;
class QComboBox;
class QLabel;
class QLineEdit;
class QMenu;
class QTreeView;
class SearchModel;
class SearchService;

/// Finds messages of all folders while one types, and shows the selected one. Escape leaves it for the window behind.
/// Hides itself on closing, so that the search stands as it was left. The station, the service and the settings outlive
/// it.
class SearchWindow : public QMainWindow
{
    Q_OBJECT

public:
    SearchWindow(DeskStation& station, SearchService& service, DeskSettings& settings);

    /// Puts it on show with the keyboard in its field.
    void Begin();
    /// Looks for a text as if it were typed.
    void Search(const QString& typed);
    /// Looks for the messages that have any of these terms; words in the field narrow them. words: what that is, for
    /// the user.
    void SearchRelated(const QList<QByteArray>& terms, const QString& words);

    /// Whether what is on show is the answer to what was asked last; how many there are may still be counted.
    bool IsSettled() const { return !IsWaiting_ && !TypingTimer_.isActive(); }
    QString Typed() const;
    /// 0 for none.
    qint32 SelectedReference() const;
    /// The searches that were saved, as they were typed.
    QStringList Saved() const;

    /// Rows on show at most; the count tells how many there are.
    static constexpr int MostRows = 300;
    static constexpr int TypingMilliseconds = 60;

Q_SIGNALS:
    void MessageWanted(qint32 reference);
    void WasRead(qint32 reference);
    /// The user goes back to the window behind.
    void Left();

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QWidget* MakeFilters();
    void MakeMenu();
    void FillSavedMenu(QMenu& menu);
    void SaveSearch();
    void SetSaved(const QStringList& saved);
    void Ask();
    SearchOptions OptionsOf(const SearchQuestion& question) const;
    bool HasFilters() const;
    void TakeResult(int search, const SearchResult& result);
    void ShowRows();
    void FillFolders(const SearchResult& result);
    void FillKinds(const SearchResult& result);
    void FillTimes(const SearchResult& result);
    QString CountInWords() const;
    QString NothingInWords() const;
    void ShowState();
    void TakeSelection();
    void Choose();
    void OpenFound();
    void OpenSelected();
    void Complete();

    DeskStation& Station_;
    SearchService& Service_;
    DeskSettings& Settings_;
    QLineEdit* Field_;
    QComboBox* Folder_;
    QComboBox* Kind_;
    QComboBox* Time_;
    QComboBox* Order_;
    QLabel* Count_;
    NoticeBar* Related_;
    NoticeBar* Problem_;
    QTreeView* List_;
    QLabel* Nothing_; ///< In the list, while it has no row.
    SearchModel* Model_;
    HitDelegate* Marks_;
    PreviewPane* Preview_;
    QList<QByteArray> RelatedTerms_;
    SearchQuestion Asked_;
    SearchResult Result_;
    int AskedNumber_ = 0;
    int ShownNumber_ = 0; ///< Whose hits are on show.
    bool IsWaiting_ = false;
    bool IsNewQuestion_ = true; ///< Since there were results; otherwise what is selected stays so.
    bool IsFilling_ = false;    ///< What is selected meanwhile nobody chose.
    bool OpensFirst_ = false;   ///< As soon as there are results.
    QTimer TypingTimer_;
};
