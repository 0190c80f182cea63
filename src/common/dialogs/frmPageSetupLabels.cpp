// SPDX-License-Identifier: Apache-2.0
#include "common/dialogs/frmPageSetupLabels.h"

#include "common/GeneralHelper.h"
#include "common/cPageSetup.h"
#include "platform/widgets/Contrast.h"
#include "platform/widgets/DialogSize.h"
#include "platform/widgets/TextBoxes.h"
#include "platform/widgets/Twips.h"

#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>

#include <limits>

namespace
{
constexpr int Highest = 999;
constexpr double FieldWidth = 660; // twips
constexpr double SketchWidth = 2700;
constexpr double SketchHeight = 3000;

/// A sheet of labels with its measures marked. It shows what the fields mean, not what they hold.
class SheetSketch final : public QWidget
{
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent*) override
    {
        constexpr int Columns = 2;
        constexpr int Rows = 4;
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QColor ground = palette().color(QPalette::Base);
        const QColor ink = palette().color(QPalette::Text);
        const QRectF sheet = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
        painter.fillRect(sheet, ground);
        painter.setPen(Contrast::Blend(ground, ink, 0.6));
        painter.drawRect(sheet);
        const double left = sheet.width() * 0.16;
        const double top = sheet.height() * 0.14;
        const QSizeF label((sheet.width() - 1.6 * left) / Columns, (sheet.height() - 1.6 * top) / Rows);
        painter.setPen(Contrast::Blend(ground, ink, 0.35));
        for (int row = 0; row < Rows; ++row) {
            for (int column = 0; column < Columns; ++column)
                painter.drawRect(QRectF(
                    QPointF(sheet.left() + left + column * label.width(), sheet.top() + top + row * label.height()),
                    label));
        }
        painter.setPen(palette().color(QPalette::Highlight));
        const QPointF first(sheet.left() + left, sheet.top() + top);
        DrawMeasure(painter, QPointF(sheet.left(), first.y() + label.height() / 2),
                    QPointF(first.x(), first.y() + label.height() / 2));
        DrawMeasure(painter, QPointF(first.x() + label.width() / 2, sheet.top()),
                    QPointF(first.x() + label.width() / 2, first.y()));
        const QPointF last = first + QPointF(label.width(), (Rows - 1) * label.height());
        DrawMeasure(painter, last + QPointF(0, label.height() * 0.7),
                    last + QPointF(label.width(), label.height() * 0.7));
        DrawMeasure(painter, last + QPointF(label.width() * 0.8, 0),
                    last + QPointF(label.width() * 0.8, label.height()));
    }

private:
    /// A line with a stop at each end.
    static void DrawMeasure(QPainter& painter, const QPointF& from, const QPointF& to)
    {
        constexpr double Stop = 3;
        const QPointF across = from.y() == to.y() ? QPointF(0, Stop) : QPointF(Stop, 0);
        painter.drawLine(from, to);
        painter.drawLine(from - across, from + across);
        painter.drawLine(to - across, to + across);
    }
};

QLabel* MakeLabel(QWidget* parent, const char* name, const QString& text, QWidget* buddy = nullptr)
{
    auto* label = new QLabel(text, parent);
    label->setObjectName(QLatin1String(name));
    label->setBuddy(buddy);
    return label;
}
} // namespace

frmPageSetupLabels::frmPageSetupLabels(QWidget* owner) : QDialog(owner)
{
    setObjectName(QStringLiteral("frmPageSetupLabels"));
    setWindowTitle(QStringLiteral("Page Setup - Labels"));
    MakeControls();
    LayOut();
    DialogSize::FitContents(*this);
}

NumberBox* frmPageSetupLabels::MakeField(const char* name, const QString& words)
{
    auto* box = new NumberBox(this);
    box->setObjectName(QLatin1String(name));
    box->setAccessibleName(words);
    box->setToolTip(words);
    box->setFixedWidth(Twips::ToPixels(*this, FieldWidth));
    connect(box, &QLineEdit::textChanged, this, [this] { cmdOK_->setEnabled(true); });
    connect(box, &TextBox::LostFocus, this, [box] { box->SetNumber(GeneralHelper::Limit(box->Number(), 0, Highest)); });
    return box;
}

void frmPageSetupLabels::MakeControls()
{
    cmdOK_ = new QPushButton(QStringLiteral("OK"), this);
    cmdOK_->setObjectName(QStringLiteral("cmdOK"));
    cmdOK_->setDefault(true);
    cmdOK_->setEnabled(false);
    connect(cmdOK_, &QPushButton::clicked, this, &frmPageSetupLabels::OK);
    cmdCancel_ = new QPushButton(QStringLiteral("Cancel"), this);
    cmdCancel_->setObjectName(QStringLiteral("cmdCancel"));
    connect(cmdCancel_, &QPushButton::clicked, this, &QDialog::reject);
    txtNumberRows_ = MakeField("txtNumberRows", QStringLiteral("Number of rows"));
    txtNumberColumns_ = MakeField("txtNumberColumns", QStringLiteral("Number of columns"));
    txtTopMargin_ = MakeField("txtTopMargin", QStringLiteral("Top margin in millimetres"));
    txtLeftMargin_ = MakeField("txtLeftMargin", QStringLiteral("Left margin in millimetres"));
    txtRowHeight_ = MakeField("txtRowHeight", QStringLiteral("Height of a label in millimetres"));
    txtColumnWidth_ = MakeField("txtColumnWidth", QStringLiteral("Width of a label in millimetres"));
    picPreview_ = new SheetSketch(this);
    picPreview_->setObjectName(QStringLiteral("picPreview"));
    picPreview_->setAccessibleName(QStringLiteral("Sketch of a sheet of labels with its measures"));
    picPreview_->setFixedSize(Twips::ToPixels(*this, SketchWidth), Twips::ToPixels(*this, SketchHeight));
}

/// The counts stand above, and each measure beside its line in the sketch.
void frmPageSetupLabels::LayOut()
{
    auto* counts = new QHBoxLayout;
    counts->addWidget(MakeLabel(this, "lblNumberRows", QStringLiteral("No. Rows:"), txtNumberRows_));
    counts->addWidget(txtNumberRows_);
    counts->addSpacing(txtNumberRows_->sizeHint().height() / 2);
    counts->addWidget(MakeLabel(this, "lblNumberColumns", QStringLiteral("No. Columns:"), txtNumberColumns_));
    counts->addWidget(txtNumberColumns_);
    counts->addStretch();

    auto* sheet = new QGridLayout;
    sheet->addWidget(MakeLabel(this, "lblPageMargins", QStringLiteral("Page Margins:")), 0, 0,
                     Qt::AlignRight | Qt::AlignVCenter);
    auto* above = new QHBoxLayout;
    above->addSpacing(picPreview_->width() * 3 / 10);
    above->addWidget(txtTopMargin_);
    above->addStretch();
    sheet->addLayout(above, 0, 1);
    auto* beside = new QVBoxLayout;
    beside->addSpacing(picPreview_->height() / 8);
    beside->addWidget(txtLeftMargin_);
    beside->addStretch();
    sheet->addLayout(beside, 1, 0, Qt::AlignRight);
    sheet->addWidget(picPreview_, 1, 1);
    auto* height = new QVBoxLayout;
    height->addStretch();
    height->addWidget(MakeLabel(this, "lblRowHeight", QStringLiteral("Height:"), txtRowHeight_));
    height->addWidget(txtRowHeight_);
    sheet->addLayout(height, 1, 2);
    auto* below = new QHBoxLayout;
    below->addStretch();
    below->addWidget(MakeLabel(this, "lblColumnWidth", QStringLiteral("Width"), txtColumnWidth_));
    below->addWidget(txtColumnWidth_);
    sheet->addLayout(below, 2, 1);
    sheet->setColumnStretch(3, 1);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK_);
    buttons->addWidget(cmdCancel_);
    auto* column = new QVBoxLayout(this);
    column->addWidget(MakeLabel(this, "lblNote", QStringLiteral("Note: All measurements are in Millimeters")));
    column->addLayout(counts);
    column->addLayout(sheet);
    column->addStretch();
    column->addLayout(buttons);
    QWidget* before = txtNumberRows_;
    for (QWidget* next : std::initializer_list<QWidget*>{txtNumberColumns_, txtTopMargin_, txtLeftMargin_,
                                                         txtRowHeight_, txtColumnWidth_, cmdOK_, cmdCancel_}) {
        setTabOrder(before, next);
        before = next;
    }
    txtNumberRows_->setFocus();
}

std::array<frmPageSetupLabels::Field, 6> frmPageSetupLabels::Fields() const
{
    return {{{txtTopMargin_, &cPageSetup::TopMargin, &cPageSetup::SetTopMargin},
             {txtLeftMargin_, &cPageSetup::LeftMargin, &cPageSetup::SetLeftMargin},
             {txtNumberColumns_, &cPageSetup::NumberColumns, &cPageSetup::SetNumberColumns},
             {txtNumberRows_, &cPageSetup::NumberRows, &cPageSetup::SetNumberRows},
             {txtColumnWidth_, &cPageSetup::ColumnWidth, &cPageSetup::SetColumnWidth},
             {txtRowHeight_, &cPageSetup::RowHeight, &cPageSetup::SetRowHeight}}};
}

void frmPageSetupLabels::SetPageSetup(cPageSetup* pageSetup)
{
    PageSetup_ = pageSetup;
    if (!pageSetup)
        return;
    for (const Field& field : Fields())
        field.Box->SetNumber((pageSetup->*field.Get)());
    SelectControlText(*txtNumberRows_);
}

void frmPageSetupLabels::OK()
{
    // Enter leaves no field: the one with the focus is put right as if it had been left.
    for (const Field& field : Fields()) {
        if (field.Box->hasFocus())
            Q_EMIT field.Box->LostFocus();
    }
    if (PageSetup_) {
        for (const Field& field : Fields())
            (PageSetup_->*field.Set)(static_cast<qint32>(GeneralHelper::Limit(
                field.Box->Number(), std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max())));
    }
    accept();
}
