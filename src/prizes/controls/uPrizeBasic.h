// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "prizes/cPrize.h"

#include <QWidget>

class ListView;
class PropertyBag;
class QLabel;
class QPushButton;
class QTimer;
class TabStrip;
class TextArea;
class TextBox;
class clsKVDirectory;

/// One prize on view: its title and script, and its winners with a line that says how many are left. It saves nothing
/// and chooses no winner: the host takes AddWinner and DisplayWinner, changes the winners of the prize, and calls
/// UpdateWinners. What is typed into the boxes marks the prize as edited (the script) but is not copied into it. The
/// names of winners come from the directory, which costs no query of the station. On the user interface thread.
class TOLVA_EXPORT uPrizeBasic : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(qint32 BackColour READ BackColour WRITE SetBackColour)
    Q_PROPERTY(QFont Font READ Font WRITE SetFont)

public:
    explicit uPrizeBasic(QWidget* parent = nullptr);
    ~uPrizeBasic() override;

    const cPrizePtr& Prize() const { return Prize_; }
    /// Null empties the view. Winners show for a prize that was read with them.
    void SetPrize(const cPrizePtr& prize);
    /// The host's directory, which the host owns; null for none. Shows nothing by itself.
    clsKVDirectory* DirectoryDatabase() const { return DirectoryDatabase_; }
    void SetDirectoryDatabase(clsKVDirectory* directory) { DirectoryDatabase_ = directory; }

    /// Brings the status line and the list in line with the prize, item by item, so that the selection and the scroll
    /// position stay. An error of the directory goes to UserInterface::RunTimeError. Runs by itself every 20 seconds,
    /// for the relative times.
    void UpdateWinners();

    /// 32-bit colour.
    qint32 BackColour() const { return BackColour_; }
    void SetBackColour(qint32 colour);
    /// Of the texts.
    QFont Font() const { return font(); }
    void SetFont(const QFont& font);

    /// These act on the selection of the text box that is the control's active part; otherwise they do nothing.
    void Cut();
    void Copy();
    void DELETE();
    void Paste();

    /// "Font" and "BackColour".
    void ReadProperties(const PropertyBag& bag);
    void WriteProperties(PropertyBag& bag) const;

Q_SIGNALS:
    /// The user may add a winner, and wants to.
    void AddWinner();
    void DisplayWinner(const cPrizeWinnerPtr& Winner);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void MakeControls();
    void MakeWinners();
    void ConnectControls();
    void LayOut();
    void ApplyBackColour();
    void ShowWinners();
    void ClearWinners();
    QString StatusLine() const;
    void ShowWinner(qint16 slot, const cPrizeWinner& winner);
    void TakeItemClick(const QString& key);
    void TakeAddWinner();
    void TakeShowWinner();
    void SizeColumns();

    cPrizePtr Prize_;
    clsKVDirectory* DirectoryDatabase_ = nullptr;
    bool Loading_ = false;
    qint32 BackColour_;

    TabStrip* tbsDetails_;
    TextBox* txtTitle_;
    TextArea* txtScript_;
    QWidget* picWinners_;
    QLabel* lblWinners_;
    ListView* lvwWinners_;
    QPushButton* cmdAddWinner_;
    QPushButton* cmdShowWinner_;
    QTimer* tmrRefresh_ = nullptr; ///< The last of the controls.
};
