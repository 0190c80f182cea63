// SPDX-License-Identifier: Apache-2.0
#include "common/dialogs/QtFileDialog.h"

#include "common/UserInterface.h"
#include "platform/records/Error.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QPointer>

namespace
{
QFileDialog* MakeDialog()
{
    QWidget* const modal = QApplication::activeModalWidget();
    return new QFileDialog(modal ? modal : QApplication::activeWindow());
}
} // namespace

QStringList QtFileDialog::NameFilters(const QString& filter)
{
    QStringList filters;
    const QStringList parts = filter.split(u'|');
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        const QString pattern = parts.at(i + 1).trimmed();
        QString words = parts.at(i).trimmed();
        // The words often name the pattern already.
        const QString named = u'(' + pattern + u')';
        if (words.endsWith(named))
            words = words.chopped(named.size()).trimmed();
        QStringList patterns = pattern.split(u';', Qt::SkipEmptyParts);
        for (QString& one : patterns) {
            one = one.trimmed();
            // Every file, also those without a dot.
            if (one == u"*.*")
                one = QStringLiteral("*");
        }
        filters.append(QStringLiteral("%1 (%2)").arg(words, patterns.join(u' ')));
    }
    return filters;
}

void QtFileDialog::ShowOpen()
{
    QFileDialog* const dialog = MakeDialog();
    dialog->setAcceptMode(QFileDialog::AcceptOpen);
    if ((Flags & SeveralFiles) != 0)
        dialog->setFileMode(QFileDialog::ExistingFiles);
    else
        dialog->setFileMode((Flags & FileMustExist) != 0 ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    Show(*dialog);
}

void QtFileDialog::ShowSave()
{
    QFileDialog* const dialog = MakeDialog();
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setOption(QFileDialog::DontConfirmOverwrite, (Flags & OverwritePrompt) == 0);
    Show(*dialog);
}

void QtFileDialog::Show(QFileDialog& shown)
{
    const DefaultPointer pointer;
    const QPointer<QFileDialog> dialog(&shown);
    if (!DialogTitle.isEmpty())
        dialog->setWindowTitle(DialogTitle);
    const QStringList filters = NameFilters(Filter);
    if (!filters.isEmpty()) {
        dialog->setNameFilters(filters);
        dialog->selectNameFilter(filters.value(FilterIndex - 1, filters.first()));
    }
    dialog->setDefaultSuffix(DefaultExt);
    if (!InitDir.isEmpty())
        dialog->setDirectory(InitDir);
    if (!Filename.isEmpty() && !Filename.contains(u'*') && !Filename.contains(u'?'))
        dialog->selectFile(Filename);

    const bool isChosen = dialog->exec() == QDialog::Accepted && dialog && !dialog->selectedFiles().isEmpty();
    if (isChosen) {
        Filenames.clear();
        for (const QString& file : dialog->selectedFiles())
            Filenames.append(QDir::toNativeSeparators(file));
        Filename = Filenames.first();
        FilterIndex = qMax(1, static_cast<int>(filters.indexOf(dialog->selectedNameFilter())) + 1);
    }
    delete dialog;
    if (!isChosen && CancelError)
        throw dao::Error(dao::errCancelled, QStringLiteral("Cancel was selected."));
}
