// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/jet/FileCheck.h"

#include "platform/records/engines/jet/FileSession.h"
#include "platform/records/engines/jet/PageAllocation.h"
#include "platform/records/engines/jet/TableCheck.h"

#include <algorithm>
#include <numeric>

namespace dao::jet
{

namespace
{

constexpr quint32 FirstMapPage = 1;

void AskOn(const engine::CopyProgress& progress)
{
    if (progress && !progress(1, 1))
        throw Error(errCancelled, QStringLiteral("Cancel was selected."));
}

/// The pages that the global map marks, and those behind its end, which were never used.
std::vector<quint32> FreePages(PageFile& file, PageOwners& owners, int maps)
{
    UsageMap map = ReadUsageMap(file, GlobalMapPointer);
    owners.ClaimShared(FirstMapPage, maps);
    for (const quint32 page : map.BitmapPages)
        owners.Claim(page, maps);
    if (map.CoveredUpTo < file.PageCount()) {
        const std::size_t marked = map.Pages.size();
        map.Pages.resize(marked + file.PageCount() - map.CoveredUpTo);
        std::iota(map.Pages.begin() + static_cast<std::ptrdiff_t>(marked), map.Pages.end(), map.CoveredUpTo);
    }
    return map.Pages;
}

void CheckTables(PageFile& file, Findings& findings, const engine::CopyProgress& progress)
{
    PageOwners owners(file.PageCount(), findings);
    CheckedFile checked{.File = file, .Found = findings, .Owners = owners, .LongOctetsLeft = file.Size()};
    owners.Claim(0, owners.Name(QStringLiteral("the head of the file")));
    checked.Maps = owners.Name(QStringLiteral("the maps of pages"));
    std::vector<quint32> freePages;
    findings.Run(QStringLiteral("The map of free pages cannot be read: "),
                 [&] { freePages = FreePages(file, owners, checked.Maps); });
    std::vector<CatalogueObject> objects;
    findings.Run(QStringLiteral("The list of tables cannot be read: "), [&] { objects = ReadCatalogue(file); });
    const bool namesItself = std::any_of(objects.begin(), objects.end(), [](const CatalogueObject& object) {
        return object.IsTable() && object.Definition() == CatalogueDefinition;
    });
    if (!namesItself)
        findings.AddDamage(QStringLiteral("The list of tables lacks the list itself"));
    for (const CatalogueObject& object : objects) {
        AskOn(progress);
        if (object.IsTable())
            findings.Run(QStringLiteral("The table %1 cannot be read: ").arg(object.Name),
                         [&] { TableCheck(checked, object).Run(); });
    }
    owners.RequireNotFree(freePages);
}

FileReport ExaminePages(PageFile& file, const engine::CopyProgress& progress)
{
    Findings findings;
    const bool isCut = file.Size() % PageSize != 0;
    // Pages that a crash added before they were used are none of the file's yet.
    bool isUnused = false;
    findings.Run(QStringLiteral("The map of free pages cannot be read: "),
                 [&] { isUnused = isCut && IsMarkedFree(file, file.PageCount()); });
    if (isCut && !isUnused)
        findings.AddDamage(QStringLiteral("The file does not end where a page does: a part of it is missing"));
    CheckTables(file, findings, progress);
    return findings.Take();
}

} // namespace

FileReport ExamineFile(const QString& fileName, const engine::CopyProgress& progress)
{
    try {
        FileSession session(fileName, PageFile::Use::Change);
        // Nobody waits for it, unless it was disturbed.
        FileReport report = ExaminePages(session.Pages(), progress);
        const ReadingScope scope(session);
        return scope.SawChanges() ? ExaminePages(session.Pages(), {}) : report;
    } catch (const Error& error) {
        if (error.Number() != errFileDamaged)
            throw;
        Findings findings;
        findings.AddDamage(error.Description());
        return findings.Take();
    }
}

} // namespace dao::jet
