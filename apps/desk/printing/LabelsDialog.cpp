// SPDX-License-Identifier: Apache-2.0
#include "LabelsDialog.h"

#include "LabelPreview.h"
#include "Words.h"
#include "common/LabelLayout.h"
#include "common/dialogs/LabelSheet.h"
#include "printing/PrintControls.h"
#include "printing/PrintTarget.h"
#include "station/DeskStation.h"
#include "window/SavedNotice.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QPagedPaintDevice>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>

using PrintControls::MakeButton;
using PrintControls::MakeWords;

LabelsDialog::LabelsDialog(DeskStation& station, QWidget* parent)
    : QDialog(parent), Station_(station), Saved_(new SavedNotice(this))
{
    setObjectName(QStringLiteral("labelsDialog"));
    setWindowTitle(tr("Print labels"));
    auto* layout = new QGridLayout(this);
    layout->addWidget(MakeChoice(), 0, 0);
    layout->addWidget(MakeSheet(), 0, 1);
    layout->addWidget(Saved_, 1, 0, 1, 2);
    layout->addWidget(MakeButtons(), 2, 0, 1, 2);
    layout->setColumnStretch(0, 3);
    layout->setColumnStretch(1, 2);
    layout->setRowStretch(0, 1);
    resize(760, 560);
    FillPrizes();
    Fill();
}

template <typename Work>
void LabelsDialog::Run(Work&& work)
{
    try {
        std::forward<Work>(work)();
    } catch (const dao::Error& error) {
        Words::Warn(Station_.Words(error.Number(), error.Description()));
    }
}

QWidget* LabelsDialog::MakeChoice()
{
    auto* side = new QWidget(this);
    FromContacts_ = new QRadioButton(tr("&Contacts of the directory"), side);
    FromContacts_->setObjectName(QStringLiteral("fromContacts"));
    FromContacts_->setChecked(true);
    FromWinners_ = new QRadioButton(tr("&Winners of a prize:"), side);
    FromWinners_->setObjectName(QStringLiteral("fromWinners"));
    Prize_ = new QComboBox(side);
    Prize_->setObjectName(QStringLiteral("prize"));
    Prize_->setAccessibleName(tr("Prize"));
    Prize_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    Prize_->setMinimumContentsLength(12);
    Find_ = new QLineEdit(side);
    Find_->setObjectName(QStringLiteral("find"));
    Find_->setClearButtonEnabled(true);
    auto* findLabel = new QLabel(tr("&Find:"), side);
    findLabel->setBuddy(Find_);
    List_ = new QListWidget(side);
    List_->setObjectName(QStringLiteral("contacts"));
    List_->setAccessibleName(tr("Contacts to print labels for"));
    Note_ = MakeWords(side, "note");
    QPushButton* all = MakeButton(side, "checkAll", tr("Check &all"));
    QPushButton* none = MakeButton(side, "checkNone", tr("Check &none"));

    auto* layout = new QGridLayout(side);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(FromContacts_, 0, 0, 1, 3);
    layout->addWidget(FromWinners_, 1, 0, 1, 2);
    layout->addWidget(Prize_, 1, 2);
    layout->addWidget(findLabel, 2, 0);
    layout->addWidget(Find_, 2, 1, 1, 2);
    layout->addWidget(List_, 3, 0, 1, 3);
    layout->addWidget(Note_, 4, 0, 1, 3);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(all);
    buttons->addWidget(none);
    buttons->addStretch();
    layout->addLayout(buttons, 5, 0, 1, 3);
    layout->setColumnStretch(2, 1);
    layout->setRowStretch(3, 1);

    connect(FromContacts_, &QRadioButton::toggled, this, &LabelsDialog::Fill);
    connect(Prize_, &QComboBox::currentIndexChanged, this, &LabelsDialog::Fill);
    connect(Find_, &QLineEdit::textChanged, this, &LabelsDialog::ApplyFind);
    connect(List_, &QListWidget::itemChanged, this, &LabelsDialog::Update);
    connect(all, &QPushButton::clicked, this, [this] { CheckShown(true); });
    connect(none, &QPushButton::clicked, this, [this] { CheckShown(false); });
    return side;
}

QWidget* LabelsDialog::MakeSheet()
{
    auto* side = new QWidget(this);
    Paper_ = new QComboBox(side);
    Paper_->setObjectName(QStringLiteral("paper"));
    Paper_->addItem(tr("A4"), LabelLayout::A4);
    Paper_->addItem(tr("Letter"), LabelLayout::Letter);
    Paper_->setCurrentIndex(QLocale().measurementSystem() == QLocale::ImperialUSSystem ? 1 : 0);
    auto* paperLabel = new QLabel(tr("Pa&per:"), side);
    paperLabel->setBuddy(Paper_);
    StartAt_ = new QSpinBox(side);
    StartAt_->setObjectName(QStringLiteral("startAt"));
    StartAt_->setToolTip(tr("The first label of a sheet that was begun: 1 is the top left one"));
    auto* startLabel = new QLabel(tr("Start at &label:"), side);
    startLabel->setBuddy(StartAt_);
    Preview_ = new LabelPreview(side);
    Preview_->setObjectName(QStringLiteral("preview"));
    Preview_->setAccessibleName(tr("The first sheet as it will be printed"));
    Count_ = MakeWords(side, "count");
    Problem_ = MakeWords(side, "problem");

    auto* layout = new QGridLayout(side);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(paperLabel, 0, 0);
    layout->addWidget(Paper_, 0, 1);
    layout->addWidget(startLabel, 1, 0);
    layout->addWidget(StartAt_, 1, 1);
    layout->addWidget(Preview_, 2, 0, 1, 2);
    layout->addWidget(Count_, 3, 0, 1, 2);
    layout->addWidget(Problem_, 4, 0, 1, 2);
    layout->setRowStretch(2, 1);
    layout->setColumnStretch(1, 1);

    const int labels = LabelLayout::LabelsPerSheet(Station_.Database().AddressLabelsPageSetup());
    StartAt_->setRange(1, qMax(1, labels));
    connect(Paper_, &QComboBox::currentIndexChanged, this, &LabelsDialog::Update);
    connect(StartAt_, &QSpinBox::valueChanged, this, &LabelsDialog::Update);
    return side;
}

QWidget* LabelsDialog::MakeButtons()
{
    auto* row = new QWidget(this);
    Test_ = MakeButton(row, "testPrint", tr("&Test print..."));
    Test_->setToolTip(tr("Prints one sheet with the outlines and numbers of its labels"));
    Print_ = MakeButton(row, "print", tr("P&rint..."));
    Save_ = MakeButton(row, "savePdf", tr("&Save as PDF..."));
    QPushButton* close = MakeButton(row, "close", tr("Close"));
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(Test_);
    layout->addStretch();
    layout->addWidget(Print_);
    layout->addWidget(Save_);
    layout->addWidget(close);
    connect(Test_, &QPushButton::clicked, this,
            [this] { Print(LabelSheet::TestPrint(Station_.Database().AddressLabelsPageSetup(), Paper())); });
    connect(Print_, &QPushButton::clicked, this,
            [this] { Print(LabelSheet(Station_.Database().AddressLabelsPageSetup(), Paper(), Texts(), StartAt())); });
    connect(Save_, &QPushButton::clicked, this, &LabelsDialog::SavePdf);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    return row;
}

void LabelsDialog::FillPrizes()
{
    const QSignalBlocker quiet(Prize_);
    Run([this] {
        for (const LabelTexts::Prize& prize : LabelTexts::Prizes(Station_))
            Prize_->addItem(prize.Title, prize.Reference);
    });
    const bool hasPrizes = Prize_->count() > 0;
    FromWinners_->setEnabled(hasPrizes);
    Prize_->setEnabled(false);
    if (!hasPrizes)
        Prize_->setPlaceholderText(tr("There are no prizes"));
}

void LabelsDialog::Fill()
{
    Prize_->setEnabled(FromWinners_->isChecked());
    Entries_.clear();
    QString note;
    Run([&] {
        if (FromContacts_->isChecked()) {
            Entries_ = LabelTexts::Contacts(Station_);
            if (Entries_.isEmpty())
                note = tr("The directory has no contacts.");
            else if (Prize_->count() == 0)
                note = tr("This station has no prizes, so there are no winners to choose.");
            return;
        }
        const LabelTexts::Winners winners = LabelTexts::WinnersOf(Station_, Prize_->currentData().toInt());
        Entries_ = winners.Entries;
        if (winners.Missing == 1)
            note = tr("1 winner is not in the directory any more.");
        else if (winners.Missing > 1)
            note = tr("%1 winners are not in the directory any more.").arg(winners.Missing);
        else if (Entries_.isEmpty())
            note = tr("Nobody has won this prize yet.");
    });
    Note_->setText(note);
    Note_->setHidden(note.isEmpty());
    Show(Entries_);
}

/// The winners of a prize are all wanted; of the contacts the user chooses.
void LabelsDialog::Show(const QList<LabelTexts::Entry>& entries)
{
    IsFilling_ = true;
    List_->clear();
    for (const LabelTexts::Entry& entry : entries) {
        auto* item = new QListWidgetItem(List_);
        item->setText(entry.HasAddress ? entry.Name : tr("%1 (no address)").arg(entry.Name));
        item->setToolTip(entry.Text);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setCheckState(FromWinners_->isChecked() && entry.HasAddress ? Qt::Checked : Qt::Unchecked);
    }
    List_->setCurrentRow(0);
    IsFilling_ = false;
    ApplyFind();
    Update();
}

/// What is hidden stays checked as it was.
void LabelsDialog::ApplyFind()
{
    const QString wanted = Find_->text().simplified();
    for (int i = 0; i < List_->count(); ++i)
        List_->item(i)->setHidden(!Entries_.at(i).Text.contains(wanted, Qt::CaseInsensitive));
}

void LabelsDialog::CheckShown(bool checked)
{
    IsFilling_ = true;
    for (int i = 0; i < List_->count(); ++i) {
        if (!List_->item(i)->isHidden())
            List_->item(i)->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
    }
    IsFilling_ = false;
    Update();
}

QStringList LabelsDialog::Texts() const
{
    QStringList texts;
    for (int i = 0; i < List_->count(); ++i) {
        if (List_->item(i)->checkState() == Qt::Checked)
            texts.append(Entries_.at(i).Text);
    }
    return texts;
}

QSizeF LabelsDialog::Paper() const
{
    return Paper_->currentData().toSizeF();
}

int LabelsDialog::StartAt() const
{
    return StartAt_->value();
}

void LabelsDialog::Update()
{
    if (IsFilling_)
        return;
    const cPageSetup& pageSetup = Station_.Database().AddressLabelsPageSetup();
    const QStringList texts = Texts();
    Preview_->Show(pageSetup, Paper(), texts, StartAt());
    const int labels = static_cast<int>(texts.size());
    const int sheets = LabelLayout::SheetCount(pageSetup, labels, StartAt());
    const QString labelWords = labels == 1 ? tr("1 label") : tr("%1 labels").arg(labels);
    const QString sheetWords = sheets == 1 ? tr("1 sheet") : tr("%1 sheets").arg(sheets);
    Count_->setText(labels == 0 ? tr("Check who gets a label.") : tr("%1 on %2").arg(labelWords, sheetWords));
    const QString problem = LabelLayout::Problem(pageSetup, Paper());
    Problem_->setText(problem.isEmpty() ? QString()
                                        : tr("%1 \u201CLabel sheet set-up...\u201D in the menu \u201CStation\u201D "
                                             "corrects it.")
                                              .arg(problem));
    Problem_->setHidden(problem.isEmpty());
    // A sheet that reaches beyond the paper can still be tried; one without labels cannot.
    const bool hasLabels = LabelLayout::LabelsPerSheet(pageSetup) > 0;
    Test_->setEnabled(hasLabels);
    Print_->setEnabled(sheets > 0);
    Save_->setEnabled(sheets > 0);
}

void LabelsDialog::Print(const LabelSheet& sheet)
{
    Saved_->Show(QString());
    const std::unique_ptr<QPagedPaintDevice> printer = PrintTarget::PrinterForSheets(this);
    if (!printer)
        return;
    if (!sheet.Print(*printer))
        Words::Warn(tr("The printer took no labels. Check that it is switched on and has this paper."));
    else if (const QString file = PrintTarget::FileOf(*printer); !file.isEmpty())
        Saved_->ShowFile(file);
}

void LabelsDialog::SavePdf()
{
    Saved_->Show(QString());
    const std::optional<QString> file = PrintTarget::PdfFile(tr("Save labels"), QStringLiteral("labels.pdf"));
    if (!file)
        return;
    QString problem;
    const LabelSheet sheet(Station_.Database().AddressLabelsPageSetup(), Paper(), Texts(), StartAt());
    if (sheet.WritePdf(*file, problem))
        Saved_->ShowFile(*file);
    else
        Words::Warn(problem);
}
