// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/TableSalvage.h"

#include "platform/records/Error.h"
#include "platform/records/TextCodec.h"
#include "platform/records/engines/jet/FileSession.h"
#include "platform/records/engines/jet/IndexTree.h"
#include "platform/records/engines/jet/LongValue.h"
#include "platform/records/engines/jet/SystemTables.h"

#include <QStringList>

#include <algorithm>

namespace dao::jet
{

namespace
{

constexpr quint32 LastSystemDefinition = CatalogueDefinition + 3;

std::optional<TableDefinition> ReadDefinition(PageFile& file, quint32 page)
{
    try {
        return ReadTableDefinition(file, page);
    } catch (const Fault&) {
        return std::nullopt;
    }
}

/// Whether a table has all the columns that another one has, by their names and types; it may have more, in any order.
bool HasColumnsOf(const TableDefinition& table, const TableDefinition& other)
{
    return std::all_of(other.Columns.begin(), other.Columns.end(), [&](const ColumnDefinition& column) {
        const ColumnDefinition* own = table.ColumnNamed(column.Name);
        return own != nullptr && own->Type == column.Type;
    });
}

/// Where a hint's rows would be those of the table that begins on a page.
TableDefinition AsOfPage(TableDefinition definition, quint32 page)
{
    definition.Pages = {page};
    definition.RowCount = 0;
    definition.Counter = 0;
    return definition;
}

const TableHint* HintNamed(const std::vector<TableHint>& hints, const QString& name)
{
    const auto found = std::find_if(hints.begin(), hints.end(), [&](const TableHint& hint) {
        return hint.Name.compare(name, Qt::CaseInsensitive) == 0;
    });
    return found == hints.end() ? nullptr : &*found;
}

/// What the list of tables says of one.
struct ListedObject
{
    qint64 Id = 0;
    QString Name;
    qint64 Type = 0;
    qint64 Flags = 0;
    QByteArray Properties;

    quint32 Page() const { return static_cast<quint32>(Id) & 0xFFFFFF; }
};

TableDefinition UsualCatalogue()
{
    TableDefinition definition = ObjectsShape();
    PlaceColumns(definition);
    return AsOfPage(std::move(definition), CatalogueDefinition);
}

bool IsCatalogue(const TableDefinition& definition)
{
    static const QStringList needed{QStringLiteral("Id"), QStringLiteral("Name"), QStringLiteral("Type"),
                                    QStringLiteral("Flags"), QStringLiteral("LvProp")};
    return definition.State != TableDefinition::Seal::Broken &&
           std::all_of(needed.begin(), needed.end(),
                       [&](const QString& name) { return definition.ColumnNamed(name) != nullptr; });
}

class TableFinder
{
public:
    TableFinder(SalvagedFile& salvaged, const PagesByOwner& pages, const std::vector<TableHint>& hints)
        : Salvaged_(salvaged), Pages_(pages), Hints_(hints)
    {
    }

    FoundTables Run()
    {
        const std::vector<ListedObject> objects = ReadList();
        for (const ListedObject& object : objects)
            AddListed(object);
        AddUnlisted();
        AddByHints();
        NoteMissing();
        return std::move(Found_);
    }

private:
    std::vector<ListedObject> ReadList()
    {
        std::optional<TableDefinition> definition = ReadDefinition(Salvaged_.File, CatalogueDefinition);
        if (!definition || !IsCatalogue(*definition)) {
            definition = UsualCatalogue();
            IsListWhole_ = false;
        }
        RepairedTable result;
        std::vector<ListedObject> objects;
        RowSalvage rows(Salvaged_, *definition, false, result);
        const auto take = [&](std::span<const NewCell> cells, auto) {
            const auto cellOf = [&](const char* name) -> const NewCell& {
                const ColumnDefinition* column = definition->ColumnNamed(QString::fromLatin1(name));
                return cells[static_cast<std::size_t>(column - definition->Columns.data())];
            };
            const auto number = [&](const char* name) {
                const qint64* value = std::get_if<qint64>(&cellOf(name).Value);
                return value == nullptr ? qint64(0) : *value;
            };
            ListedObject object{number("Id"), {}, number("Type"), number("Flags"), {}};
            if (const QByteArray* name = std::get_if<QByteArray>(&cellOf("Name").Value))
                object.Name = TextFromUtf8({name->constData(), static_cast<std::size_t>(name->size())});
            object.Properties = cellOf("LvProp").Octets.value_or(QByteArray());
            objects.push_back(std::move(object));
        };
        if (const auto pages = Pages_.Rows.find(CatalogueDefinition); pages != Pages_.Rows.end()) {
            for (const quint32 page : pages->second)
                rows.TakePage(page, false, take);
        }
        rows.TakeHidden(take);
        const std::optional<qint64> entries = CountEntries(Salvaged_.File, *definition);
        IsListWhole_ =
            IsListWhole_ && result.Lost == 0 && rows.BrokenPages() == 0 && entries && *entries <= result.Saved;
        NoteOthers(objects);
        return objects;
    }

    void NoteOthers(const std::vector<ListedObject>& objects)
    {
        const auto others = std::count_if(objects.begin(), objects.end(), [](const ListedObject& object) {
            return object.Type > static_cast<qint64>(ObjectType::Container) || object.Type < 0;
        });
        if (others > 0)
            Found_.Notes +=
                QStringLiteral("Queries, links and forms of other programs are not in the new file: %1.").arg(others);
    }

    /// A list that lacks something may lack tables of which nothing else is left.
    void NoteMissing()
    {
        if (IsListWhole_)
            return;
        Found_.Notes += QStringLiteral("The list of tables is damaged.");
        for (const TableHint& hint : Hints_) {
            const QString note = QStringLiteral("Nothing is left of the table %1.").arg(hint.Name);
            if (!IsNamed(hint.Name) && !Found_.Notes.contains(note))
                Found_.Notes += note;
        }
    }

    bool IsTaken(quint32 page) const { return Claimed_.count(page) != 0; }
    bool IsNamed(const QString& name) const
    {
        return std::any_of(Found_.Tables.begin(), Found_.Tables.end(),
                           [&](const FoundTable& table) { return table.Name.compare(name, Qt::CaseInsensitive) == 0; });
    }

    void Add(FoundTable table)
    {
        for (const quint32 page : table.Definition.Pages)
            Claimed_.insert(page);
        Found_.Tables.push_back(std::move(table));
    }

    void AddListed(const ListedObject& object)
    {
        if (object.Type != static_cast<qint64>(ObjectType::Table))
            return;
        if ((object.Flags & qint64(SystemObject)) != 0 || object.Page() <= LastSystemDefinition) {
            Claimed_.insert(object.Page());
            return;
        }
        if (IsTaken(object.Page()) || IsNamed(object.Name))
            return;
        FoundTable table{.Name = object.Name, .Properties = object.Properties};
        const std::optional<TableDefinition> own = ReadDefinition(Salvaged_.File, object.Page());
        const TableHint* hint = HintNamed(Hints_, object.Name);
        if (own && own->State != TableDefinition::Seal::Broken) {
            table.Definition = *own;
        } else if (hint != nullptr) {
            table.Definition = AsOfPage(hint->Definition, object.Page());
            table.NeedsSeals = true;
            table.HasRowCount = false;
            table.Notes += QStringLiteral("Its definition is damaged; fields and indexes are as usual.");
        } else if (own) {
            table.Definition = *own;
            table.Notes += QStringLiteral("Its definition is not as it was stored: look at its fields.");
        } else {
            Claimed_.insert(object.Page());
            Found_.Notes += QStringLiteral("The table %1 is lost: its definition cannot be read.").arg(object.Name);
            return;
        }
        Add(std::move(table));
    }

    QString NameFor(const TableDefinition& definition) const
    {
        const TableHint* best = nullptr;
        for (const TableHint& hint : Hints_) {
            const bool isBetter = best == nullptr || hint.Definition.Columns.size() > best->Definition.Columns.size();
            if (isBetter && HasColumnsOf(definition, hint.Definition) && !IsNamed(hint.Name))
                best = &hint;
        }
        return best != nullptr ? best->Name : QStringLiteral("Recovered %1").arg(definition.Page());
    }

    /// Definitions that the list does not name and that have rows.
    void AddUnlisted()
    {
        for (const quint32 page : Pages_.Definitions) {
            const bool hasRows = Pages_.Rows.count(page) != 0;
            const std::optional<TableDefinition> definition = IsTaken(page) || page <= LastSystemDefinition || !hasRows
                                                                  ? std::nullopt
                                                                  : ReadDefinition(Salvaged_.File, page);
            if (!definition || definition->IsSystem || definition->Columns.empty() ||
                definition->State == TableDefinition::Seal::Broken)
                continue;
            FoundTable table{.Name = NameFor(*definition), .Definition = *definition};
            table.Notes += QStringLiteral("The list of tables does not name it any more.");
            Add(std::move(table));
        }
    }

    /// Rows whose list entry and definition are both gone: their seals tell whose they are.
    void AddByHints()
    {
        for (const auto& [owner, pages] : Pages_.Rows) {
            if (owner == 0 || owner == 1 || owner == LongOwner || owner <= LastSystemDefinition || IsTaken(owner))
                continue;
            if (!AddByHint(owner, pages))
                Found_.Stray.insert(Found_.Stray.end(), pages.begin(), pages.end());
        }
    }

    bool AddByHint(quint32 owner, const std::vector<quint32>& pages)
    {
        for (const TableHint& hint : Hints_) {
            FoundTable table{.Name = hint.Name, .Definition = AsOfPage(hint.Definition, owner)};
            RepairedTable none;
            const RowSalvage rows(Salvaged_, table.Definition, true, none);
            if (IsNamed(hint.Name) ||
                std::none_of(pages.begin(), pages.end(), [&](quint32 page) { return rows.OwnsRowOf(page); }))
                continue;
            table.NeedsSeals = true;
            table.HasRowCount = false;
            table.Notes += QStringLiteral("Its definition is gone; fields and indexes are as usual.");
            Add(std::move(table));
            return true;
        }
        return false;
    }

    SalvagedFile& Salvaged_;
    const PagesByOwner& Pages_;
    const std::vector<TableHint>& Hints_;
    FoundTables Found_;
    bool IsListWhole_ = true;
    std::set<quint32> Claimed_; ///< Pages of definitions.
};

} // namespace

std::vector<TableHint> HintsFrom(const QString& fileName)
{
    std::vector<TableHint> hints;
    try {
        FileSession session(fileName, PageFile::Use::Read);
        const ReadingScope scope(session);
        PageFile& file = session.Pages();
        for (const CatalogueObject& object : ReadCatalogue(file)) {
            if (!object.IsTable() || object.IsSystem())
                continue;
            TableHint hint{object.Name, ReadTableDefinition(file, object.Definition()), {}};
            if (!object.PropertyReference.isEmpty())
                hint.Properties = ReadLongValue(file, OctetView(object.PropertyReference));
            if (hint.Definition.State != TableDefinition::Seal::Broken)
                hints.push_back(std::move(hint));
        }
    } catch (const Fault&) {
        return {};
    } catch (const Error&) {
        return {}; // No help then: the repair goes by what the file itself tells.
    }
    return hints;
}

PagesByOwner LookAtPages(PageFile& file, const std::function<void()>& step)
{
    PagesByOwner pages;
    for (quint32 number = 1; number < file.PageCount(); ++number) {
        step();
        QByteArray page;
        try {
            page = file.Page(number);
        } catch (const Fault&) {
            continue; // The disk does not give it: those whose it was lack it.
        }
        const OctetView octets(page);
        const quint8 type = octets.U8(0);
        if (type == static_cast<quint8>(PageType::Data))
            pages.Rows[octets.U32(4)].push_back(number);
        else if (type == static_cast<quint8>(PageType::Definition))
            pages.Definitions.push_back(number);
    }
    return pages;
}

std::optional<qint64> CountEntries(PageFile& file, const TableDefinition& table)
{
    std::optional<qint64> most;
    for (const IndexDefinition& index : table.Indexes) {
        if ((index.Flags & IgnoresNulls) != 0)
            continue;
        try {
            IndexTree tree(file, index.Root);
            qint64 count = 0;
            for (auto entry = tree.First(); entry; entry = tree.Next(*entry))
                ++count;
            most = std::max(most.value_or(0), count);
        } catch (const Fault&) {
            continue; // Another one may be whole.
        }
    }
    return most;
}

FoundTables FindTables(SalvagedFile& salvaged, const PagesByOwner& pages, const std::vector<TableHint>& hints)
{
    return TableFinder(salvaged, pages, hints).Run();
}

} // namespace dao::jet
