// SPDX-License-Identifier: Apache-2.0
#include "ContactImportDialog.h"

#include "platform/widgets/Icons.h"
#include "platform/widgets/ListView.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace
{
constexpr double ImportNameTwips = 2700;
constexpr double DetailTwips = 2400;
constexpr int ProblemLines = 3;

QString Contacts(int count)
{
    return count == 1 ? ContactImportDialog::tr("1 contact")
                      : ContactImportDialog::tr("%1 contacts").arg(QLocale().toString(count));
}

QString DetailOf(const clsKVContact& contact)
{
    for (const QString& detail : {contact.Mobile, contact.Telephone, contact.Email}) {
        if (!detail.isEmpty())
            return detail;
    }
    return QString();
}

/// The known contacts first: they are what there is to decide.
void FillList(ListView& list, const QList<ContactImport::Entry>& plan)
{
    int row = 0;
    for (const bool known : {true, false}) {
        for (const ContactImport::Entry& entry : plan) {
            if ((entry.Known != nullptr) != known || row >= ContactImportDialog::MostRows)
                continue;
            const QString words = known ? ContactImportDialog::tr("%1 has %2").arg(entry.Known->Name, entry.Detail)
                                        : ContactImportDialog::tr("New");
            list.AddItem(QString::number(++row), {entry.Contact->Name, DetailOf(*entry.Contact), words});
        }
    }
}

void AddProblems(const QStringList& problems, QWidget& dialog, QVBoxLayout& layout)
{
    auto* caption = new QLabel(problems.size() == 1
                                   ? ContactImportDialog::tr("One card &cannot be taken over:")
                                   : ContactImportDialog::tr("%1 cards &cannot be taken over:").arg(problems.size()),
                               &dialog);
    auto* box = new QPlainTextEdit(problems.join(u'\n'), &dialog);
    box->setObjectName(QStringLiteral("importProblems"));
    box->setAccessibleName(ContactImportDialog::tr("Cards that cannot be taken over"));
    box->setReadOnly(true);
    box->setTabChangesFocus(true);
    box->setMaximumHeight(box->fontMetrics().lineSpacing() * (ProblemLines + 1));
    caption->setBuddy(box);
    layout.addWidget(caption);
    layout.addWidget(box);
}
} // namespace

ContactImportDialog::ContactImportDialog(const QList<ContactImport::Entry>& plan, const QStringList& problems,
                                         QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("contactImportDialog"));
    setWindowTitle(tr("Import contacts"));
    setWindowIcon(Icons::Get(QStringLiteral("users")));
    const int known = ContactImport::KnownIn(plan);
    const int count = static_cast<int>(plan.size());
    auto* summary = new QLabel(this);
    summary->setObjectName(QStringLiteral("importSummary"));
    summary->setWordWrap(true);
    summary->setText(known == 0 ? tr("%1 in the file, all of them new.").arg(Contacts(count))
                                : tr("%1 in the file; %2 known already by an address or number.")
                                      .arg(Contacts(count), QLocale().toString(known)));
    auto* list = new ListView(this);
    list->setObjectName(QStringLiteral("importList"));
    list->setAccessibleName(tr("Contacts of the file"));
    list->AddColumn(tr("Name"), ImportNameTwips);
    list->AddColumn(tr("Number or address"), DetailTwips);
    list->AddColumn(tr("In the directory"), ImportNameTwips);
    list->header()->setStretchLastSection(true);
    FillList(*list, plan);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(summary);
    layout->addWidget(list, 1);
    if (count > MostRows) {
        auto* more = new QLabel(tr("The first %1 are shown.").arg(QLocale().toString(MostRows)), this);
        more->setObjectName(QStringLiteral("importMore"));
        layout->addWidget(more);
    }
    if (!problems.isEmpty())
        AddProblems(problems, *this, *layout);
    const auto addChoice = [&](const char* name, const QString& text) {
        auto* choice = new QRadioButton(text, this);
        choice->setObjectName(QLatin1String(name));
        choice->setVisible(known > 0);
        layout->addWidget(choice);
        return choice;
    };
    Skip_ = addChoice("importSkip", tr("&Leave the known ones as they are"));
    Update_ = addChoice("importUpdate", tr("&Fill in what the known ones lack"));
    Add_ = addChoice("importAdd", tr("&Add them all as new contacts"));
    Skip_->setChecked(true);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    QPushButton* import = buttons->button(QDialogButtonBox::Ok);
    import->setObjectName(QStringLiteral("importContacts"));
    import->setText(tr("&Import"));
    import->setEnabled(count > 0);
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("cancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    resize(620, 460);
}

ContactImport::Duplicates ContactImportDialog::Duplicates() const
{
    if (Add_->isChecked())
        return ContactImport::Duplicates::Add;
    return Update_->isChecked() ? ContactImport::Duplicates::Update : ContactImport::Duplicates::Skip;
}
