// SPDX-License-Identifier: Apache-2.0

// What the print dialog is made of.

#include "DeskSettings.h"
#include "PrizeSheet.h"
#include "printing/PageSheet.h"
#include "printing/PrintControls.h"
#include "printing/PrintDialog.h"
#include "station/DeskStation.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLocale>
#include <QScrollArea>
#include <QSpinBox>

using PrintControls::MakeButton;
using PrintControls::MakeWords;

namespace
{
QCheckBox* MakeCheck(QWidget* parent, const char* name, const QString& text)
{
    auto* check = new QCheckBox(text, parent);
    check->setObjectName(QLatin1String(name));
    return check;
}
} // namespace

QWidget* PrintDialog::MakeChoice()
{
    auto* side = new QWidget(this);
    Template_ = new QComboBox(side);
    Template_->setObjectName(QStringLiteral("template"));
    Template_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    Template_->setMinimumContentsLength(22);
    auto* templateLabel = new QLabel(tr("&Template:"), side);
    templateLabel->setBuddy(Template_);
    Bold_ = MakeCheck(side, "unreadBold", tr("Unread messages in &bold"));
    Italic_ = MakeCheck(side, "pendingItalic", tr("Messages that wait to be sent in &italics"));
    PageEach_ = MakeCheck(side, "pageEach", tr("&Each message on a new page"));
    Paper_ = new QComboBox(side);
    Paper_->setObjectName(QStringLiteral("paper"));
    Paper_->addItem(tr("A4"), PaperSetup::A4);
    Paper_->addItem(tr("Letter"), PaperSetup::Letter);
    auto* paperLabel = new QLabel(tr("Pa&per:"), side);
    paperLabel->setBuddy(Paper_);
    Count_ = MakeWords(side, "count");
    Note_ = MakeWords(side, "note");

    auto* layout = new QGridLayout(side);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(templateLabel, 0, 0);
    layout->addWidget(Template_, 0, 1);
    layout->addWidget(paperLabel, 1, 0);
    layout->addWidget(Paper_, 1, 1);
    layout->addWidget(Bold_, 2, 0, 1, 2);
    layout->addWidget(Italic_, 3, 0, 1, 2);
    layout->addWidget(PageEach_, 4, 0, 1, 2);
    layout->addWidget(Count_, 5, 0, 1, 2);
    layout->addWidget(Note_, 6, 0, 1, 2);
    layout->setRowStretch(7, 1);
    layout->setColumnStretch(1, 1);

    const QString paper = QString::fromUtf8(Settings_.State(QStringLiteral("PrintDialog/Paper")));
    const bool isLetter = paper.isEmpty() ? QLocale().measurementSystem() == QLocale::ImperialUSSystem
                                          : paper == QStringLiteral("Letter");
    Paper_->setCurrentIndex(isLetter ? 1 : 0);
    for (QCheckBox* check : {Bold_, Italic_, PageEach_}) {
        check->setChecked(Settings_.State(QStringLiteral("PrintDialog/") + check->objectName()) == "1");
        check->setVisible(IsOfMessages());
        connect(check, &QCheckBox::toggled, this, &PrintDialog::Fill);
    }
    connect(Template_, &QComboBox::currentIndexChanged, this, &PrintDialog::Fill);
    connect(Paper_, &QComboBox::currentIndexChanged, this, &PrintDialog::LayOut);
    return side;
}

QWidget* PrintDialog::MakePreview()
{
    auto* side = new QWidget(this);
    View_ = new QScrollArea(side);
    View_->setObjectName(QStringLiteral("view"));
    View_->setAccessibleName(tr("The pages as they will be printed"));
    View_->setAlignment(Qt::AlignCenter);
    View_->setBackgroundRole(QPalette::Mid);
    View_->setFocusPolicy(Qt::StrongFocus);
    Sheet_ = new PageSheet;
    Sheet_->setObjectName(QStringLiteral("sheet"));
    View_->setWidget(Sheet_);
    View_->installEventFilter(this);
    View_->viewport()->installEventFilter(this);
    Previous_ = MakeButton(side, "previousPage", tr("Pre&vious page"));
    Next_ = MakeButton(side, "nextPage", tr("&Next page"));
    Page_ = new QSpinBox(side);
    Page_->setObjectName(QStringLiteral("page"));
    Page_->setAccessibleName(tr("Page on show"));
    Zoom_ = new QComboBox(side);
    Zoom_->setObjectName(QStringLiteral("zoom"));
    Zoom_->addItem(tr("Whole page"), PageSheet::WholePage);
    Zoom_->addItem(tr("Page width"), PageSheet::PageWidth);
    for (const int percent : {50, 75, 100, 150, 200})
        Zoom_->addItem(tr("%1%").arg(percent), percent / 100.0);
    auto* zoomLabel = new QLabel(tr("&Zoom:"), side);
    zoomLabel->setBuddy(Zoom_);

    auto* layout = new QGridLayout(side);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(View_, 0, 0, 1, 6);
    layout->addWidget(Previous_, 1, 0);
    layout->addWidget(Page_, 1, 1);
    layout->addWidget(Next_, 1, 2);
    layout->addWidget(zoomLabel, 1, 4);
    layout->addWidget(Zoom_, 1, 5);
    layout->setColumnStretch(3, 1);
    layout->setRowStretch(0, 1);

    connect(Previous_, &QPushButton::clicked, this, [this] { Sheet_->SetPage(Sheet_->Page() - 1); });
    connect(Next_, &QPushButton::clicked, this, [this] { Sheet_->SetPage(Sheet_->Page() + 1); });
    connect(Page_, &QSpinBox::valueChanged, this, [this](int page) { Sheet_->SetPage(page - 1); });
    connect(Sheet_, &PageSheet::PageChanged, this, &PrintDialog::UpdateParts);
    connect(Zoom_, &QComboBox::currentIndexChanged, this, [this] { Sheet_->SetZoom(Zoom_->currentData().toDouble()); });
    return side;
}

QWidget* PrintDialog::MakeButtons()
{
    auto* row = new QWidget(this);
    Print_ = MakeButton(row, "print", tr("P&rint..."));
    Save_ = MakeButton(row, "savePdf", tr("&Save as PDF..."));
    QPushButton* close = MakeButton(row, "close", tr("Close"));
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addStretch();
    layout->addWidget(Print_);
    layout->addWidget(Save_);
    layout->addWidget(close);
    Print_->setDefault(true);
    connect(Print_, &QPushButton::clicked, this, &PrintDialog::Print);
    connect(Save_, &QPushButton::clicked, this, &PrintDialog::SavePdf);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    return row;
}

/// The names as people read them. One that two templates share is told by the whole name.
void PrintDialog::FillTemplates()
{
    const QSignalBlocker quiet(Template_);
    const QStringList names = PagePrinting::TemplateNames(Station_.Database(), Kind());
    QStringList titles;
    for (const QString& name : names)
        titles.append(PagePrinting::TitleOf(name));
    for (qsizetype i = 0; i < names.size(); ++i)
        Template_->addItem(titles.count(titles.at(i)) == 1 ? titles.at(i) : names.at(i), names.at(i));
    const QString remembered = QString::fromUtf8(Settings_.State(TemplateState()));
    const QString usual = IsOfOrder()   ? OnAirPage::UsualTemplate
                          : IsOfPrize() ? PrizeSheet::UsualTemplate
                          : IsOfMany()  ? QStringLiteral("MessageList-Whole messages")
                                        : QStringLiteral("Message-Single message");
    int index = Template_->findData(remembered);
    if (index < 0)
        index = Template_->findData(usual, Qt::UserRole, Qt::MatchFixedString);
    Template_->setCurrentIndex(qMax(index, 0));
}
