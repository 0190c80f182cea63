// SPDX-License-Identifier: Apache-2.0

// Several messages into files and out of them, and the folder that they go to.

#include "DeskSettings.h"
#include "FolderChoice.h"
#include "MailPriority.h"
#include "MessageCommands.h"
#include "Words.h"
#include "common/FileDialog.h"
#include "common/UserInterface.h"
#include "messageslist/MessageFile.h"
#include "platform/mail/MessageReader.h"
#include "station/DeskStation.h"
#include "window/FileChoice.h"
#include "window/FileNames.h"

#include <QFileInfo>
#include <QLocale>
#include <QScopeGuard>

namespace
{
constexpr qsizetype LongestSubjectInQuestion = 200;
/// As many as a box shows without growing off the screen.
constexpr qsizetype MostNamed = 10;
constexpr qsizetype MostFolders = 5;
const QString FoldersState = QStringLiteral("Messages/LastFolders");

QString Count(qsizetype count)
{
    return QLocale().toString(count);
}

QString Named(const QStringList& names)
{
    const QStringList shown = names.mid(0, MostNamed);
    const QString rest = names.size() > MostNamed
                             ? u'\n' + MessageCommands::tr("and %1 more").arg(Count(names.size() - MostNamed))
                             : QString();
    return shown.join(u'\n') + rest;
}
} // namespace

void MessageCommands::ImportInto(enTolvaMessageCategories folder)
{
    const auto dialog = FileDialog::Create();
    dialog->DialogTitle = tr("Import mail files...");
    dialog->Filter = QStringLiteral("E-mail File (*.eml)|*.eml|All Files (*.*)|*.*");
    dialog->Flags = FileDialog::FileMustExist | FileDialog::SeveralFiles | FileDialog::HideReadOnly;
    dialog->InitDir = FileChoice::StartFolder();
    if (FileChoice::ToOpen(*dialog))
        Import(dialog->Filenames, folder);
}

void MessageCommands::Import(const QStringList& files, enTolvaMessageCategories folder)
{
    cTolvaDatabase& database = Station_.Database();
    if (!Station_.MayEditMessage(0)) {
        Words::Warn(tr("You have no right to file messages here. A technician can give it to you."));
        return;
    }
    QStringList refused;
    qsizetype filed = 0;
    QString failure;
    bool isCancelled = false;
    {
        const bool raises = database.RaiseEvents();
        database.SetRaiseEvents(false); // the list hears of all of them together
        const auto restore = qScopeGuard([&] { database.SetRaiseEvents(raises); });
        const BusyPointer busy;
        const auto progress = UserInterface::Current().Progress(tr("Importing mail files"));
        for (qsizetype i = 0; i < files.size() && failure.isEmpty() && !isCancelled; ++i) {
            const QString& file = files.at(i);
            const cMessagePtr message = LoadMessageFromEml(file);
            if (!message) {
                refused.append(QFileInfo(file).fileName());
            } else {
                message->SetReference(0);
                message->SetCategory(folder);
                message->SetPriority(MailPriority(*message->CDOMessage()));
                if (database.SaveMessage(message))
                    ++filed;
                else
                    failure = Station_.Words(database.LastErrorNumber(), database.LastErrorDescription());
            }
            isCancelled = !progress->Advance(i + 1, files.size()) && i + 1 < files.size();
        }
    }
    List_.ShowChanges();
    if (filed > 0 || refused.isEmpty())
        Q_EMIT Told(filed == 1 ? tr("1 message was filed in %1.").arg(FolderName(folder))
                               : tr("%1 messages were filed in %2.").arg(Count(filed), FolderName(folder)));
    if (!failure.isEmpty())
        Words::Warn(tr("%1 of %2 files were filed. %3").arg(Count(filed), Count(files.size()), failure));
    else if (!refused.isEmpty())
        Words::Warn(tr("These files hold no mail that could be filed:\n\n%1").arg(Named(refused)));
}

void MessageCommands::ExportSelected()
{
    Export(List_.SelectedReferences());
}

void MessageCommands::Export(const QList<qint32>& references)
{
    if (references.isEmpty())
        return;
    const QString folder =
        FileChoice::Folder(&Window_, tr("Export %1 to...").arg(Count(references.size())), FileChoice::StartFolder());
    if (folder.isEmpty())
        return;
    const BusyPointer busy;
    const auto progress = UserInterface::Current().Progress(tr("Exporting messages"));
    qsizetype written = 0;
    qsizetype gone = 0;
    for (qsizetype i = 0; i < references.size(); ++i) {
        if (!progress->Advance(i, references.size()))
            break;
        const cMessagePtr message = Station_.Database().ReadMessage(references.at(i));
        if (!message) {
            ++gone;
            continue;
        }
        const QString subject =
            cdo::HeaderBeginning(*message->CDOMessage(), "Subject", LongestSubjectInQuestion).simplified();
        FileStatus status;
        FileNames::WriteNew(folder, (subject.isEmpty() ? tr("No subject") : subject) + QStringLiteral(".eml"),
                            message->CDOMessage()->Octets(), status);
        if (!status.IsDone()) {
            Words::Warn(tr("%1 of %2 messages could be exported to %3: %4")
                            .arg(Count(written), Count(references.size()), folder, status.Words()));
            return;
        }
        ++written;
    }
    Q_EMIT Exported(written == 1 ? tr("1 message was exported to %1.").arg(folder)
                                 : tr("%1 messages were exported to %2.").arg(Count(written), folder),
                    folder);
    if (gone > 0)
        Words::Warn(tr("%1 of the messages were not there any more: another computer deleted them.").arg(Count(gone)));
}

enTolvaMessageCategories MessageCommands::ChooseFolder(const QString& title)
{
    QList<qint32> last;
    for (const QByteArray& number : Settings_.State(FoldersState).split(','))
        last.append(number.toInt());
    FolderChoice dialog(title, Station_.Database().MessageCategories(), last, &Window_);
    if (dialog.exec() != QDialog::Accepted || dialog.Folder() <= 0)
        return static_cast<enTolvaMessageCategories>(0);
    last.removeAll(dialog.Folder());
    last.prepend(dialog.Folder());
    QByteArrayList numbers;
    for (const qint32 folder : last.mid(0, MostFolders))
        numbers.append(QByteArray::number(folder));
    Settings_.SetState(FoldersState, numbers.join(','));
    return static_cast<enTolvaMessageCategories>(dialog.Folder());
}

void MessageCommands::MoveToFolder()
{
    const QList<qint32> references = List_.SelectedReferences();
    if (references.isEmpty())
        return;
    if (const enTolvaMessageCategories folder = ChooseFolder(tr("Move to folder")); folder > 0)
        MoveTo(references, folder);
}

void MessageCommands::CopyToFolder()
{
    const QList<qint32> references = List_.SelectedReferences();
    if (references.isEmpty())
        return;
    if (const enTolvaMessageCategories folder = ChooseFolder(tr("Copy to folder")); folder > 0)
        CopyTo(references, folder);
}
