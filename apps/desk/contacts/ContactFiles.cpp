// SPDX-License-Identifier: Apache-2.0
#include "ContactFiles.h"

#include "ContactImportDialog.h"
#include "ContactSaving.h"
#include "Words.h"
#include "common/FileDialog.h"
#include "common/UserInterface.h"
#include "platform/files/WholeFile.h"
#include "window/FileChoice.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include <optional>

namespace
{

QString FilesText(const char* text)
{
    return QCoreApplication::translate("ContactFiles", text);
}

QString Cards()
{
    return FilesText("Business cards (vCard)") + QStringLiteral(" (*.vcf)|*.vcf|") + FilesText("All Files") +
           QStringLiteral(" (*.*)|*.*");
}

/// Nothing, after words, when the file cannot be read.
std::optional<QByteArray> OctetsOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        Words::Warn(FilesText("%1 cannot be read: %2").arg(path, file.errorString()));
        return std::nullopt;
    }
    if (file.size() > ContactFiles::LargestFile) {
        Words::Warn(FilesText("%1 is too large to be a file of business cards.").arg(path));
        return std::nullopt;
    }
    QByteArray octets = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        Words::Warn(FilesText("%1 could not be read: %2").arg(path, file.errorString()));
        return std::nullopt;
    }
    return octets;
}

QString DoneWords(const ContactImport::Result& result)
{
    const QLocale locale;
    return FilesText("Imported: %1 new, %2 filled in, %3 left as they are.")
        .arg(locale.toString(result.Added), locale.toString(result.Updated), locale.toString(result.Skipped));
}
} // namespace

QString ContactFiles::Import(EmbeddedDirectory& directory, QWidget* parent)
{
    const auto dialog = FileDialog::Create();
    dialog->DialogTitle = FilesText("Import contacts");
    dialog->Filter = Cards();
    dialog->Flags = FileDialog::FileMustExist | FileDialog::HideReadOnly | FileDialog::KeepFolder;
    const std::optional<QString> path = FileChoice::ToOpen(*dialog);
    const std::optional<QByteArray> octets = path ? OctetsOf(*path) : std::nullopt;
    if (!octets)
        return QString();
    try {
        VCard::Reading reading;
        QList<ContactImport::Entry> plan;
        {
            const BusyPointer busy;
            reading = VCard::Read(*octets);
            plan = ContactImport::Plan(directory, reading.Contacts);
        }
        if (plan.isEmpty()) {
            Words::Warn(FilesText("No contact can be taken over from %1.").arg(QFileInfo(*path).fileName()) + u'\n' +
                        reading.Problems.mid(0, 5).join(u'\n'));
            return QString();
        }
        ContactImportDialog choice(plan, reading.Problems, parent);
        if (choice.exec() != QDialog::Accepted)
            return QString();
        const BusyPointer busy;
        return DoneWords(ContactImport::Run(directory, plan, choice.Duplicates()));
    } catch (const dao::Error& error) {
        Words::Warn(FilesText("Nothing was imported.") + u' ' + ContactSaving::WordsOf(error));
        return QString();
    }
}

ContactFiles::Exported ContactFiles::Export(const QList<clsKVContact>& contacts, const QString& proposed)
{
    const auto dialog = FileDialog::Create();
    dialog->DialogTitle = FilesText("Export contacts");
    dialog->Filter = Cards();
    dialog->Flags = FileDialog::OverwritePrompt | FileDialog::HideReadOnly | FileDialog::KeepFolder;
    dialog->DefaultExt = QStringLiteral("vcf");
    dialog->Filename = proposed;
    const std::optional<QString> path = FileChoice::ToSave(*dialog);
    if (!path)
        return {};
    const FileStatus status = WholeFile::Write(*path, VCard::Write(contacts), IfThere::Replace);
    if (!status.IsDone()) {
        Words::Warn(FilesText("The contacts could not be saved as %1: %2").arg(*path, status.Words()));
        return {};
    }
    return {contacts.size() == 1 ? FilesText("Saved %1").arg(*path)
                                 : FilesText("Saved %1 contacts as %2").arg(QLocale().toString(contacts.size()), *path),
            *path};
}
