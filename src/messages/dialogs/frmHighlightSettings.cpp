// SPDX-License-Identifier: Apache-2.0
#include "messages/dialogs/frmHighlightSettings.h"

#include "common/UserInterface.h"
#include "database/cTolvaDatabase.h"
#include "messages/HighlightMarking.h"
#include "messages/HighlightSettings.h"
#include "platform/directory/clsKVDirectory.h"
#include "platform/html/SafeHtml.h"
#include "platform/widgets/DialogSize.h"
#include "platform/widgets/SystemColour.h"
#include "platform/widgets/Twips.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QFontDatabase>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QSpinBox>

namespace
{
constexpr double LeastHighlightWidth = 6000; // twips
constexpr int WordLines = 7;
constexpr int LargestSize = 7;

/// The words of a stored list or of a typed text, in their order.
QStringList WordsIn(const QString& text)
{
    QString lines = text;
    // What separates words in the station's file cannot be part of one.
    lines.replace(u'|', u'\n');
    QStringList words;
    for (const QString& word : lines.split(u'\n')) {
        // Blanks around a word are meant: they find it as a word of its own. Nothing but blanks would be found
        // everywhere.
        if (!word.trimmed().isEmpty() && !words.contains(word, Qt::CaseInsensitive))
            words.append(word);
    }
    return words;
}

QPixmap Swatch(const QColor& colour, int size)
{
    QPixmap swatch(size, size);
    swatch.fill(colour);
    return swatch;
}
} // namespace

frmHighlightSettings::frmHighlightSettings(cTolvaDatabase& database, QWidget* owner)
    : QDialog(owner), Database_(&database)
{
    setObjectName(QStringLiteral("frmHighlightSettings"));
    setWindowTitle(QStringLiteral("Highlight Words"));
    MakeWords();
    MakeFont();
    MakePreview();
    MakeButtons();
    LayOut();
    database.Highlights().Read();
    Fill(database.Highlights().Words(), database.Highlights().Font());
    txtWords_->setFocus();
    DialogSize::FitContents(*this);
}

void frmHighlightSettings::MakeWords()
{
    lblWords_ = new QLabel(QStringLiteral("&Words to mark in messages, one on each line:"), this);
    txtWords_ = new QPlainTextEdit(this);
    txtWords_->setObjectName(QStringLiteral("txtWords"));
    txtWords_->setTabChangesFocus(true);
    txtWords_->setFixedHeight(txtWords_->fontMetrics().lineSpacing() * (WordLines + 1));
    lblWords_->setBuddy(txtWords_);
    connect(txtWords_, &QPlainTextEdit::textChanged, this, &frmHighlightSettings::UpdatePreview);
    lblNote_ = new QLabel(QStringLiteral("A word is also found within longer words, in capitals and small letters "
                                         "alike. Messages are marked when they are saved."),
                          this);
    lblNote_->setObjectName(QStringLiteral("lblNote"));
    lblNote_->setWordWrap(true);
}

void frmHighlightSettings::MakeFont()
{
    comboFont_ = new QComboBox(this);
    comboFont_->setObjectName(QStringLiteral("comboFont"));
    comboFont_->setEditable(true);
    comboFont_->setInsertPolicy(QComboBox::NoInsert);
    comboFont_->addItems(QFontDatabase::families());
    // Completing would put another font in place of one that is not on this computer, at Enter.
    comboFont_->setCompleter(nullptr);
    comboFont_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    comboFont_->setMinimumContentsLength(16);
    // The name stands within quotes in the messages' HTML.
    comboFont_->lineEdit()->setValidator(
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[^\"<>&]*")), comboFont_));
    comboFont_->lineEdit()->setPlaceholderText(QStringLiteral("As the message has it"));
    connect(comboFont_, &QComboBox::editTextChanged, this, &frmHighlightSettings::UpdatePreview);
    spinSize_ = new QSpinBox(this);
    spinSize_->setObjectName(QStringLiteral("spinSize"));
    spinSize_->setRange(0, LargestSize);
    spinSize_->setSpecialValueText(QStringLiteral("Unchanged"));
    spinSize_->setToolTip(QStringLiteral("1 is the smallest, 3 that of ordinary text, 7 the largest"));
    connect(spinSize_, &QSpinBox::valueChanged, this, &frmHighlightSettings::UpdatePreview);
    cmdColour_ = new QPushButton(this);
    cmdColour_->setObjectName(QStringLiteral("cmdColour"));
    cmdColour_->setAutoDefault(false);
    connect(cmdColour_, &QPushButton::clicked, this, &frmHighlightSettings::ChooseColour);
    chkBold_ = MakeStyle("chkBold", QStringLiteral("&Bold"));
    chkItalic_ = MakeStyle("chkItalic", QStringLiteral("&Italic"));
    chkUnderline_ = MakeStyle("chkUnderline", QStringLiteral("&Underline"));
    chkStrikethrough_ = MakeStyle("chkStrikethrough", QStringLiteral("S&trikethrough"));
}

void frmHighlightSettings::MakePreview()
{
    lblPreview_ = new QLabel(this);
    lblPreview_->setObjectName(QStringLiteral("lblPreview"));
    lblPreview_->setAccessibleName(QStringLiteral("Preview"));
    lblPreview_->setTextFormat(Qt::RichText);
    lblPreview_->setAlignment(Qt::AlignCenter);
    // Mail is shown on a light ground, whatever the theme is.
    QPalette page = palette();
    page.setColor(QPalette::Window, Qt::white);
    page.setColor(QPalette::WindowText, Qt::black);
    page.setColor(QPalette::Text, Qt::black);
    lblPreview_->setPalette(page);
    lblPreview_->setAutoFillBackground(true);
    lblPreview_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    // The largest size has room.
    lblPreview_->setFixedHeight(fontMetrics().height() * 4);
}

void frmHighlightSettings::MakeButtons()
{
    cmdOK_ = new QPushButton(QStringLiteral("OK"), this);
    cmdOK_->setObjectName(QStringLiteral("cmdOK"));
    cmdOK_->setDefault(true);
    connect(cmdOK_, &QPushButton::clicked, this, &frmHighlightSettings::OK);
    cmdCancel_ = new QPushButton(QStringLiteral("Cancel"), this);
    cmdCancel_->setObjectName(QStringLiteral("cmdCancel"));
    connect(cmdCancel_, &QPushButton::clicked, this, &QDialog::reject);
}

QCheckBox* frmHighlightSettings::MakeStyle(const char* name, const QString& text)
{
    auto* box = new QCheckBox(text, this);
    box->setObjectName(QLatin1String(name));
    connect(box, &QCheckBox::toggled, this, &frmHighlightSettings::UpdatePreview);
    return box;
}

void frmHighlightSettings::LayOut()
{
    auto* font = new QGroupBox(QStringLiteral("Marked words look like this:"), this);
    auto* grid = new QGridLayout(font);
    const auto addLabel = [&](const QString& text, QWidget* buddy, int column) {
        auto* label = new QLabel(text, font);
        label->setBuddy(buddy);
        grid->addWidget(label, 0, column);
    };
    addLabel(QStringLiteral("&Font:"), comboFont_, 0);
    grid->addWidget(comboFont_, 0, 1);
    addLabel(QStringLiteral("&Size:"), spinSize_, 2);
    grid->addWidget(spinSize_, 0, 3);
    grid->addWidget(cmdColour_, 0, 4);
    auto* styles = new QHBoxLayout;
    for (QCheckBox* style : {chkBold_, chkItalic_, chkUnderline_, chkStrikethrough_})
        styles->addWidget(style);
    styles->addStretch();
    grid->addLayout(styles, 1, 0, 1, 5);
    grid->addWidget(lblPreview_, 2, 0, 1, 5);
    grid->setColumnStretch(1, 1);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK_);
    buttons->addWidget(cmdCancel_);
    auto* column = new QVBoxLayout(this);
    column->addWidget(lblWords_);
    column->addWidget(txtWords_, 1);
    column->addWidget(lblNote_);
    column->addWidget(font);
    column->addLayout(buttons);
    txtWords_->setMinimumWidth(Twips::ToPixels(*this, LeastHighlightWidth));
    QWidget* before = txtWords_;
    for (QWidget* next : std::initializer_list<QWidget*>{comboFont_, spinSize_, cmdColour_, chkBold_, chkItalic_,
                                                         chkUnderline_, chkStrikethrough_, cmdOK_, cmdCancel_}) {
        setTabOrder(before, next);
        before = next;
    }
}

void frmHighlightSettings::Fill(const QString& words, const clsFont& font)
{
    txtWords_->setPlainText(WordsIn(words).join(u'\n'));
    comboFont_->setEditText(font.Name);
    // Other software may have stored a size of its own.
    spinSize_->setMaximum(qMax(LargestSize, font.Size));
    spinSize_->setValue(font.Size);
    chkBold_->setChecked(font.Bold);
    chkItalic_->setChecked(font.Italic);
    chkUnderline_->setChecked(font.Underline);
    chkStrikethrough_->setChecked(font.Strikethrough);
    SetColour(font.Colour);
}

QString frmHighlightSettings::Words() const
{
    return WordsIn(txtWords_->toPlainText()).join(u'|');
}

clsFont frmHighlightSettings::Font() const
{
    clsFont font;
    font.Name = comboFont_->currentText().trimmed();
    font.Size = spinSize_->value();
    font.Colour = Colour_;
    font.Bold = chkBold_->isChecked();
    font.Italic = chkItalic_->isChecked();
    font.Underline = chkUnderline_->isChecked();
    font.Strikethrough = chkStrikethrough_->isChecked();
    return font;
}

void frmHighlightSettings::ChooseColour()
{
    const QColor chosen = QColorDialog::getColor(SystemColour::ToColour(Colour_, palette()), this,
                                                 QStringLiteral("Colour of marked words"));
    if (chosen.isValid())
        SetColour(SystemColour::FromColour(chosen));
}

void frmHighlightSettings::SetColour(qint32 colour)
{
    Colour_ = colour;
    const QColor shown = SystemColour::ToColour(colour, palette());
    cmdColour_->setText(QStringLiteral("&Colour..."));
    cmdColour_->setIcon(Swatch(shown, fontMetrics().height()));
    cmdColour_->setAccessibleDescription(QStringLiteral("The colour is %1").arg(shown.name().toUpper()));
    UpdatePreview();
}

/// Goes the way of a message: marked as one that is saved, and made safe as one that is shown.
void frmHighlightSettings::UpdatePreview()
{
    const QStringList words = WordsIn(txtWords_->toPlainText());
    const QString word = words.isEmpty() ? QStringLiteral("lighthouse") : words.first().trimmed();
    const HighlightTags tags = MakeHighlightTags(Font());
    const QString page = QStringLiteral("<body>Please play \u201C%1%2%3\u201D again.</body>")
                             .arg(tags.Start, word.toHtmlEscaped(), tags.End);
    lblPreview_->setText(MakeSafe(page).Html);
}

void frmHighlightSettings::OK()
{
    // A failure was shown by the station.
    if (Database_ && Database_->Highlights().Store(Font(), Words()))
        accept();
}

bool DisplayHighlightSettings(cTolvaDatabase& database, QWidget* owner)
{
    const clsKVDirectory* const directory = database.DirectoryDatabase();
    const clsKVUser* const user = directory ? directory->CurrentUser() : nullptr;
    if (user && !user->ChangeSettings()) {
        UserInterface::Current().MessageBox(
            {QStringLiteral("You are not allowed to use or alter the Tolva Database's Settings"), QString(),
             MessageBoxButtons::OK, MessageBoxIcon::Exclamation, MessageBoxAnswer::OK});
        return false;
    }
    // The window below may go while the dialog waits, and takes it along.
    const QPointer<frmHighlightSettings> form(new frmHighlightSettings(database, owner));
    const bool isStored = form->exec() == QDialog::Accepted;
    delete form;
    return isStored;
}
