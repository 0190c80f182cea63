// SPDX-License-Identifier: Apache-2.0

// tolva folders: the tree of folders, and its changes.

#include "DisplayText.h"
#include "FolderPaths.h"
#include "Station.h"
#include "Terminal.h"
#include "commands/Commands.h"
#include "commands/CommonOptions.h"

#include <QJsonObject>

namespace
{
const QString ParentOption = QStringLiteral("parent");

constexpr int LongestFolderName = 255;
constexpr int Indent = 2;

struct FolderCounts
{
    int Total = 0;
    int Unread = 0;
};

/// All folders' counts in one pass over two columns.
QHash<qint32, FolderCounts> CountMessages(Station& station)
{
    QHash<qint32, FolderCounts> counts;
    const auto rows = station.Database().OpenMessageRows({QStringLiteral("Category"), QStringLiteral("Flags")});
    for (; !rows->AtEOF(); rows->MoveNext()) {
        FolderCounts& folder = counts[rows->Collect(QStringLiteral("Category")).toInt()];
        ++folder.Total;
        if ((rows->Collect(QStringLiteral("Flags")).toInt() & mfRead) == 0)
            ++folder.Unread;
    }
    return counts;
}

void PrintFolder(const clsCategory& folder, const QString& path, int depth, const FolderCounts& counts, bool asJson)
{
    if (asJson) {
        const QJsonObject object{
            {QStringLiteral("reference"), folder.Reference()}, {QStringLiteral("parent"), folder.ParentReference()},
            {QStringLiteral("name"), folder.Description()},    {QStringLiteral("path"), path},
            {QStringLiteral("unread"), counts.Unread},         {QStringLiteral("total"), counts.Total},
            {QStringLiteral("fixed"), folder.UserLong() != 0}};
        Terminal::PrintJson(object);
        return;
    }
    const QString name = QString(qsizetype{depth} * Indent, u' ') + OneLine(folder.Description());
    const QString unread = counts.Unread == 0 ? QString() : QString::number(counts.Unread);
    Terminal::PrintLine(
        QStringLiteral("%1 %2 %3  %4").arg(folder.Reference(), 5).arg(unread, 7).arg(counts.Total, 7).arg(name));
}

/// Parents before their children, without recursion: a file may hold a tree of any depth.
void PrintTree(Station& station, bool asJson)
{
    const QHash<qint32, FolderCounts> counts = CountMessages(station);
    const QHash<qint32, QString> paths = FolderPaths(station.Folders());
    if (!asJson)
        Terminal::PrintLine(QStringLiteral("%1 %2 %3  %4")
                                .arg(QStringLiteral("No."), 5)
                                .arg(QStringLiteral("unread"), 7)
                                .arg(QStringLiteral("all"), 7)
                                .arg(QStringLiteral("folder")));
    struct Entry
    {
        const clsCategory* Folder;
        int Depth;
    };
    std::vector<Entry> waiting = {{&station.Folders(), -1}};
    while (!waiting.empty()) {
        const Entry entry = waiting.back();
        waiting.pop_back();
        if (entry.Depth >= 0) {
            const qint32 reference = entry.Folder->Reference();
            PrintFolder(*entry.Folder, FolderPath(paths, reference), entry.Depth, counts.value(reference), asJson);
        }
        for (int i = entry.Folder->SubCategoryCount(); i >= 1; --i)
            waiting.push_back({entry.Folder->SubCategory(i), entry.Depth + 1});
    }
}

/// Failure (usage) for what cannot be a folder's name. A "/" would make its path ambiguous.
QString CheckedName(const QString& typed)
{
    const QString name = typed.simplified();
    if (name.isEmpty() || name.size() > LongestFolderName || name.contains(u'/'))
        throw Failure(exitUsage,
                      QStringLiteral("\"%1\" cannot be a folder's name: it needs 1 to %2 characters and no \"/\".")
                          .arg(typed)
                          .arg(LongestFolderName));
    return name;
}

/// Failure when the parent has another folder of that name.
void RequireFreeName(Station& station, qint32 parent, const QString& name, qint32 except)
{
    const clsCategory* folder = parent == 0 ? &station.Folders() : station.Folders().FindCategory(parent);
    for (int i = 1; folder && i <= folder->SubCategoryCount(); ++i) {
        const clsCategory* sibling = folder->SubCategory(i);
        if (sibling->Reference() != except && sibling->Description().compare(name, Qt::CaseInsensitive) == 0) {
            throw Failure(exitCannotCreate, QStringLiteral("There is a folder \"%1\" at that place already, number %2.")
                                                .arg(sibling->Description())
                                                .arg(sibling->Reference()));
        }
    }
}

const clsCategory& UserFolder(Station& station, const QString& words, const QString& change)
{
    const clsCategory* folder = station.Folders().FindCategory(FindFolder(station.Folders(), words));
    if (folder->UserLong() != 0) {
        throw Failure(exitData,
                      QStringLiteral("\"%1\" is a fixed folder and cannot be %2.").arg(folder->Description(), change));
    }
    return *folder;
}

void AddFolder(Station& station, const Arguments& arguments)
{
    const QString name = CheckedName(arguments.Words().at(2));
    const qint32 parent =
        arguments.Has(ParentOption) ? FindFolder(station.Folders(), arguments.Value(ParentOption)) : 0;
    RequireFreeName(station, parent, name, 0);
    clsCategory folder;
    folder.SetDescription(name);
    folder.SetParentReference(parent);
    station.Try([&] { station.Database().SaveMessageCategory(folder, false); });
    Terminal::PrintLine(QString::number(folder.Reference()));
}

void Rename(Station& station, const Arguments& arguments)
{
    const QString name = CheckedName(arguments.Words().at(3));
    const clsCategory& folder = UserFolder(station, arguments.Words().at(2), QStringLiteral("renamed"));
    RequireFreeName(station, folder.ParentReference(), name, folder.Reference());
    station.Try([&] {
        const auto changed = station.Database().GetMessageCategory(folder.Reference());
        changed->SetDescription(name);
        station.Database().SaveMessageCategory(*changed, false);
    });
}

void DeleteFolder(Station& station, const Arguments& arguments)
{
    const clsCategory& folder = UserFolder(station, arguments.Words().at(2), QStringLiteral("deleted"));
    const qint32 reference = folder.Reference();
    const QString name = folder.Description();
    if (folder.SubCategoryCount() > 0)
        throw Failure(exitData, QStringLiteral("\"%1\" has folders in it. DeleteFolder those first.").arg(name));
    station.Try([&] {
        if (station.Database().DeleteMessageCategory(reference))
            return;
        if (station.Database().LastErrorNumber() != 0)
            throw station.FailureOfStation(station.Database().LastErrorNumber(),
                                           station.Database().LastErrorDescription());
        const auto rows = station.Database().OpenMessageRows({QStringLiteral("Reference")},
                                                             QStringLiteral("[Category]=%1").arg(reference));
        throw rows->RecordCount() > 0
            ? Failure(exitData,
                      QStringLiteral("\"%1\" is not empty: it holds %2. Move or delete that first.")
                          .arg(name, rows->RecordCount() == 1 ? QStringLiteral("1 message")
                                                              : QStringLiteral("%1 messages").arg(rows->RecordCount())))
            : Failure(exitTemporary, QStringLiteral("\"%1\" changed while it was being deleted. Try again.").arg(name));
    });
}

struct FolderChange
{
    QString Name;
    qsizetype Words;
    void (*Run)(Station& station, const Arguments& arguments);
};

int RunFolders(const Arguments& arguments)
{
    if (arguments.Words().size() == 1) {
        if (arguments.Has(ParentOption))
            throw Failure(exitUsage, QStringLiteral("--parent belongs to \"add\"."));
        Station station(arguments);
        station.Try([&] { PrintTree(station, arguments.Has(JsonOption)); });
        return exitOK;
    }
    const FolderChange changes[] = {{QStringLiteral("add"), 3, AddFolder},
                                    {QStringLiteral("rename"), 4, Rename},
                                    {QStringLiteral("delete"), 3, DeleteFolder}};
    for (const FolderChange& change : changes) {
        if (arguments.Words().at(1) != change.Name)
            continue;
        if (arguments.Words().size() != change.Words || arguments.Has(JsonOption) ||
            (arguments.Has(ParentOption) && change.Run != AddFolder))
            break;
        Station station(arguments);
        station.Require(DirectoryRight::CanEditCategories, QStringLiteral("change folders"));
        change.Run(station, arguments);
        return exitOK;
    }
    throw Failure(exitUsage,
                  QStringLiteral("Folders are changed with: add NAME [--parent C], rename C NAME, delete C."));
}
} // namespace

CommandDefinition FoldersCommand()
{
    return {
        QStringLiteral("folders"),
        QStringLiteral("Lists the folders, or changes them."),
        {QStringLiteral("folders FOLDER [--json]"), QStringLiteral("folders FOLDER add NAME [--parent C]"),
         QStringLiteral("folders FOLDER rename C NAME"), QStringLiteral("folders FOLDER delete C")},
        QStringLiteral(
            "C is a folder's number, name, or path. \"add\" prints the new folder's number. Fixed folders such as "
            "Inbox\n"
            "keep their names; a folder is deleted when it is empty. The user needs the right to edit folders."),
        {{JsonOption, QString(), QStringLiteral("One JSON object a line.")},
         {ParentOption, QStringLiteral("C"), QStringLiteral("The folder that the new one stands in.")},
         Station::UserOption()},
        QStringLiteral("tolva folders /srv/station add \"November Hamper\" --parent Competitions"),
        1,
        4,
        RunFolders,
    };
}
